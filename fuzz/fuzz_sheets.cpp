// A person at the sheets: the document or the device sheet opened on any record, then a random
// run of a person's actions in the user simulation's script language, then OK. The actions are
// built from the input by a small grammar (a tab, then clicks, checks, selections, typing,
// spins and slides on the controls that the page or an open dialog has), so that nearly every
// input is a script that runs. A dialog or message box the actions leave open ends as the host
// ends it when a script runs out: Cancel. Nothing may be reported (no failed assertion of the
// driver), and every record that comes out, to the caller or into the queue, is the driver's.
//
// The input: a selector byte (sheet, model, caller's record), a count of changes to the
// caller's record (field, element, value), then the actions.
#include "driver/devmode/devmodeex.h"
#include "fuzzhost.h"
#include "platform/host/host.h"
#include "platform/host/hostsheet.h"
#include "resources/qlmres.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

extern "C" {
LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO, LPARAM);
LONG WINAPI DrvDevicePropertySheets(PPROPSHEETUI_INFO, LPARAM);
LONG WINAPI DrvDocumentProperties(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);
}

namespace {

const std::u16string kQueue = u"Fuzz";

struct Control
{
    int id;
    std::string kind;
};

struct Setup
{
    std::map<int, std::vector<Control>> pages; // by tab template
    std::vector<Control> dialogs;              // every control of every dialog a page opens
    std::vector<uint8_t> record;               // the queue's default record
    std::string finisherFile;                  // a description a file dialog may be given
    std::string captureFile;                   // a printer's six replies, for the refresh
};

INT_PTR CALLBACK Quiet(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

// The controls of a template as the resource library builds it.
std::vector<Control> TemplateControls(HMODULE hRes, int id)
{
    std::vector<Control> controls;
    HWND hDlg = CreateDialogParamW(hRes, MAKEINTRESOURCEW(id), nullptr, Quiet, 0);
    if (!hDlg)
        return controls;
    for (const host::ControlState& c : host::DescribeWindow(hDlg))
        if (c.id > 0 && c.id != 0xFFFF && c.kind != "groupbox" && c.className != "Static")
            controls.push_back({c.id, c.kind});
    DestroyWindow(hDlg);
    return controls;
}

void CopyFixture(const char* source, const std::string& target)
{
    std::string path = std::string(QLM_FUZZ_SOURCE_DIR) + "/" + source;
    FILE* in = std::fopen(path.c_str(), "rb");
    std::vector<uint8_t> bytes;
    if (in) {
        uint8_t buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof(buffer), in)) > 0)
            bytes.insert(bytes.end(), buffer, buffer + n);
        std::fclose(in);
    }
    fuzzhost::WriteFile(target, bytes.data(), bytes.size());
}

const Setup& Once()
{
    static Setup setup = [] {
        Setup s;
        HANDLE hPrinter = fuzzhost::FreshQueue(kQueue, fuzzhost::kDriver, u"LPT1:");
        std::string lib = host::InstalledDriverFilePath(u"QLMRes.DLL", 3);
        HMODULE hRes = LoadLibraryW(host::Utf8ToUtf16(lib).c_str());
        for (int id = IDD_PAPER_TAB; id <= IDD_ABOUT_TAB; id++)
            s.pages[id] = TemplateControls(hRes, id);
        for (int id : {IDD_ABOUT, IDD_LABEL, IDD_UNPRINTABLE, IDD_CUSTOMISE, IDD_PLOTNEST,
                       IDD_ACCOUNT, IDD_STAMP, IDD_ROLLCONFIG, IDD_USERMEDIA, IDD_FINISH, IDD_JBA})
            for (const Control& c : TemplateControls(hRes, id))
                s.dialogs.push_back(c);
        s.record.resize(sizeof(DEVMODEEX));
        DrvDocumentProperties(nullptr, hPrinter, const_cast<PWSTR>(kQueue.c_str()),
                              reinterpret_cast<PDEVMODEW>(s.record.data()), nullptr, DM_OUT_BUFFER);
        s.finisherFile = fuzzhost::HomeFile("good.ini");
        CopyFixture("tests/fixtures/finisher/good.ini", s.finisherFile);
        s.captureFile = fuzzhost::HomeFile("plan2440.pjl");
        CopyFixture("tests/fixtures/pjl/plan2440.pjl", s.captureFile);
        fuzzhost::CountAssertions();
        return s;
    }();
    return setup;
}

// One field of the record set from the input: a field of the table, one of its elements.
// The guard blocks, the layout version and dmSize are left alone: the merge takes a caller's
// guards and version as they stand (its release reports damage, as it is meant to), and an own
// record's shorter dmSize moves where its private part is read from, guards and all.
void Patch(std::vector<uint8_t>& record, fuzzhost::Input& in)
{
    const DEVMODEEX_FIELD& field = g_DevmodeFields[in.Byte() % g_cDevmodeFields];
    if (field.dwOffset == offsetof(DEVMODEEX, dmxDevmodeVersion) ||
        field.dwOffset == offsetof(DEVMODEW, dmSize) ||
        field.dwOffset == offsetof(DEVMODEEX, padding_1) ||
        field.dwOffset == offsetof(DEVMODEEX, padding_2)) {
        in.Byte();
        in.Dword();
        return;
    }
    const DWORD elements = field.cbSize / field.cbElement;
    const DWORD element = in.Byte() % elements;
    const DWORD value = in.Dword();
    memcpy(record.data() + field.dwOffset + element * field.cbElement, &value,
           std::min<DWORD>(field.cbElement, sizeof(value)));
}

const Control* Pick(const Setup& s, int page, fuzzhost::Input& in)
{
    const uint8_t b = in.Byte();
    const std::vector<Control>& pool =
        (b & 0x80) || !s.pages.count(page) || s.pages.at(page).empty() ? s.dialogs
                                                                       : s.pages.at(page);
    if (pool.empty())
        return nullptr;
    return &pool[(b & 0x7F) % pool.size()];
}

std::string Text(fuzzhost::Input& in)
{
    static const char kChars[] = "0123456789.-, abcXYZ<>%:\\/";
    const size_t n = in.Byte() % 12;
    std::string text;
    for (size_t i = 0; i < n; i++)
        text += kChars[in.Byte() % (sizeof(kChars) - 1)];
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

// The actions, one line each, ending in OK.
std::string Script(const Setup& s, fuzzhost::Input& in)
{
    static const char* const kAnswers[] = {"ok", "yes", "no", "cancel"};
    static const long long kData[] = {0, 1, 2, 3, 4, 5, 7, 8, 256, 257, 258, 262, 271, 281, -1};
    int page = IDD_PAPER_TAB;
    std::string script;
    for (int n = 0; n < 48 && !in.Empty(); n++) {
        const uint8_t op = in.Byte();
        const Control* c = nullptr;
        const std::string id = [&] {
            c = Pick(s, page, in);
            return c ? std::to_string(c->id) : std::string("1045");
        }();
        switch (op % 16) {
        case 0:
            page = IDD_PAPER_TAB + in.Byte() % 6;
            script += "tab " + std::to_string(page) + "\n";
            break;
        case 1:
        case 2:
        case 3:
            script += "click " + id + "\n";
            break;
        case 4:
            script += (op & 0x10 ? "check " : "uncheck ") + id + "\n";
            break;
        case 5:
        case 6:
            script += "key " + id + (op & 0x10 ? " down\n" : " up\n");
            break;
        case 7:
            script +=
                "select " + id + " " + std::to_string(kData[in.Byte() % std::size(kData)]) + "\n";
            break;
        case 8:
            script += "type " + id + " " + Text(in) + "\n";
            break;
        case 9:
            script += "spin " + id + (op & 0x10 ? " up " : " down ") +
                      std::to_string(1 + in.Byte() % 8) + "\n";
            break;
        case 10:
            script += "slide " + id + " " + std::to_string(int(in.Byte() % 21) - 10) + "\n";
            break;
        case 11:
            script += std::string("answer ") + kAnswers[in.Byte() % 4] + "\n";
            break;
        case 12: {
            const uint8_t which = in.Byte() % 3;
            script += which == 0   ? "file " + s.finisherFile + "\n"
                      : which == 1 ? "file " + s.captureFile + "\n"
                                   : std::string("file cancel\n");
            break;
        }
        case 13:
            script += "ok\n";
            break;
        case 14:
            script += op & 0x10 ? "cancel\n" : "apply\n";
            break;
        case 15:
            script += "menu " + std::to_string(IDM_FIELD_DATE + in.Byte() % 8) + "\n";
            break;
        }
    }
    return script + "ok\n";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const Setup& s = Once();
    fuzzhost::Input in(data, size);
    const uint8_t selector = in.Byte();
    const bool bDevice = selector & 1;
    const std::u16string driver = fuzzhost::kDrivers[(selector >> 1) % fuzzhost::kDriverCount];

    // The caller's record (or the queue's, for the device sheet), changed field by field.
    std::vector<uint8_t> record(s.record);
    for (int n = in.Byte() % 8; n > 0; n--)
        Patch(record, in);
    const bool bStored = bDevice || (selector & 0x80);
    HANDLE hPrinter =
        fuzzhost::FreshQueue(kQueue, driver, u"LPT1:", bStored ? record : std::vector<uint8_t>{});
    // The queue's record as the store holds it (the store keeps what the record declares).
    host::PrinterRecord queued;
    host::GetPrinterRecord(kQueue, &queued);
    // The device tab's refresh reads its replies from a file instead of a socket.
    DWORD on = 1;
    std::vector<uint8_t> one(4);
    memcpy(one.data(), &on, 4);
    host::SetPrinterData(kQueue, {u"DebugSettings", u"DBG_BidiFromFile", REG_DWORD, one});

    std::string error;
    if (!host::SetUserScript(Script(s, in), &error)) {
        std::fprintf(stderr, "the grammar made a script the host refuses: %s\n", error.c_str());
        std::abort();
    }
    const int assertionsBefore = fuzzhost::AssertionCount();
    DWORD result = 0;
    std::vector<uint8_t> out(sizeof(DEVMODEEX), 0);
    if (bDevice) {
        DEVICEPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.hPrinter = hPrinter;
        header.pszPrinterName = const_cast<LPWSTR>(kQueue.c_str());
        CommonPropertySheetUIW(nullptr, DrvDevicePropertySheets, reinterpret_cast<LPARAM>(&header),
                               &result);
    } else {
        DOCUMENTPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.hPrinter = hPrinter;
        header.pszPrinterName = const_cast<LPWSTR>(kQueue.c_str());
        header.pdmIn = reinterpret_cast<PDEVMODEW>(record.data());
        header.pdmOut = reinterpret_cast<PDEVMODEW>(out.data());
        header.cbOut = static_cast<DWORD>(out.size());
        header.fMode = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;
        LONG rc = CommonPropertySheetUIW(nullptr, DrvDocumentPropertySheets,
                                         reinterpret_cast<LPARAM>(&header), &result);
        if (rc > 0 && result == CPSUI_OK)
            fuzzhost::Require(fuzzhost::RecordFault(out.data(), out.size()),
                              "fuzz_sheets: the caller's record");
    }
    host::ClearUserScript();
    if (fuzzhost::AssertionCount() != assertionsBefore)
        fuzzhost::Require(
            "the driver reported a failed assertion (QLMFUZZ_SHOW_ASSERTS=1 shows it)",
            "fuzz_sheets");
    host::PrinterRecord printer;
    // Only a record the driver wrote is its to answer for; one stored before stays as it was.
    if (host::GetPrinterRecord(kQueue, &printer) && !printer.devMode.empty() &&
        printer.devMode != queued.devMode)
        fuzzhost::Require(fuzzhost::RecordFault(printer.devMode.data(), printer.devMode.size()),
                          "fuzz_sheets: the queue's record");
    return 0;
}
