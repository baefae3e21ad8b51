// The property sheets through the driver's exports, run by the host's common UI as a person
// would run them: what the caller's output record, the queue's stored record and the user's
// store hold afterwards.
#include "driver/devmode/devmodeex.h"
#include "driver/foundation/qlmutils.h"
#include "pjlsim/pjlsim_support.h"
#include "server.h"
#include "support/hostprinter.h"

#include "platform/host/hostsheet.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using pjlsim_test::Serve;

using SheetFn = LONG WINAPI(PPROPSHEETUI_INFO, LPARAM);
using DocumentPropertiesFn = LONG WINAPI(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);

constexpr DWORD kPrompt = DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER;

// The record the driver gives a caller that asks for its default.
std::vector<uint8_t> DefaultRecord(DocumentPropertiesFn* properties, HostPrinter& printer)
{
    std::vector<uint8_t> record(sizeof(DEVMODEEX), 0);
    EXPECT_EQ(1, properties(nullptr, printer.handle(), const_cast<PWSTR>(printer.name().c_str()),
                            reinterpret_cast<PDEVMODEW>(record.data()), nullptr, DM_OUT_BUFFER));
    return record;
}

DEVMODEEX& Edit(std::vector<uint8_t>& bytes)
{
    return *reinterpret_cast<DEVMODEEX*>(bytes.data());
}

const DEVMODEEX& AsRecord(const std::vector<uint8_t>& bytes)
{
    return *reinterpret_cast<const DEVMODEEX*>(bytes.data());
}

struct Outcome
{
    LONG rc = 0;
    DWORD result = 0;
    std::vector<uint8_t> out;
    host::SheetRun run;
    std::vector<std::string> failures;
};

class Sheets : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_handle = dlopen(QLM_TEST_BINARY_DIR "/driver/QLMUIDrv.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(s_handle, nullptr) << dlerror();
        auto* dllMain =
            reinterpret_cast<BOOL WINAPI (*)(HINSTANCE, DWORD, LPVOID)>(dlsym(s_handle, "DllMain"));
        ASSERT_NE(dllMain, nullptr);
        // As the spooler loads it: the address dialog becomes the refresh's question.
        dllMain(static_cast<HINSTANCE>(s_handle), DLL_PROCESS_ATTACH, nullptr);
    }
    static void TearDownTestSuite()
    {
        if (s_handle)
            dlclose(s_handle);
        s_handle = nullptr;
    }
    void TearDown() override { host::ClearUserScript(); }
    template <typename F> static F* Export(const char* name)
    {
        return reinterpret_cast<F*>(dlsym(s_handle, name));
    }

    // The document sheet with fMode, pdmIn and an output record prepared as given.
    Outcome Document(HostPrinter& printer, DWORD fMode, const std::string& script,
                     std::vector<uint8_t> in = {}, std::vector<uint8_t> out = {})
    {
        Outcome outcome;
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        outcome.out = out.empty() ? std::vector<uint8_t>(sizeof(DEVMODEEX), 0) : out;
        DOCUMENTPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.hPrinter = printer.handle();
        header.pszPrinterName = const_cast<LPWSTR>(printer.name().c_str());
        header.pdmIn = in.empty() ? nullptr : reinterpret_cast<PDEVMODEW>(in.data());
        header.pdmOut = reinterpret_cast<PDEVMODEW>(outcome.out.data());
        header.cbOut = static_cast<DWORD>(outcome.out.size());
        header.fMode = fMode;
        outcome.rc = CommonPropertySheetUIW(
            nullptr, reinterpret_cast<PFNPROPSHEETUI>(Export<SheetFn>("DrvDocumentPropertySheets")),
            reinterpret_cast<LPARAM>(&header), &outcome.result);
        outcome.run = host::LastSheetRun();
        outcome.failures = host::UserScriptFailures();
        return outcome;
    }
    Outcome Device(HostPrinter& printer, WORD flags, const std::string& script)
    {
        Outcome outcome;
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        DEVICEPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.Flags = flags;
        header.hPrinter = printer.handle();
        header.pszPrinterName = const_cast<LPWSTR>(printer.name().c_str());
        outcome.rc = CommonPropertySheetUIW(
            nullptr, reinterpret_cast<PFNPROPSHEETUI>(Export<SheetFn>("DrvDevicePropertySheets")),
            reinterpret_cast<LPARAM>(&header), &outcome.result);
        outcome.run = host::LastSheetRun();
        outcome.failures = host::UserScriptFailures();
        return outcome;
    }
    std::vector<uint8_t> Default(HostPrinter& printer)
    {
        return DefaultRecord(Export<DocumentPropertiesFn>("DrvDocumentProperties"), printer);
    }

    static void* s_handle;
};
void* Sheets::s_handle = nullptr;

std::vector<uint8_t> StoredRecord(const std::u16string& name)
{
    host::PrinterRecord record;
    EXPECT_TRUE(host::GetPrinterRecord(name, &record));
    return record.devMode;
}

// As an application stores a queue's record: level 2 read, pDevMode replaced, written back.
void StoreRecord(HostPrinter& printer, std::vector<uint8_t>& record)
{
    DWORD cb = 0;
    GetPrinterW(printer.handle(), 2, nullptr, 0, &cb);
    std::vector<uint8_t> info(cb);
    ASSERT_TRUE(GetPrinterW(printer.handle(), 2, info.data(), cb, &cb));
    reinterpret_cast<PRINTER_INFO_2W*>(info.data())->pDevMode =
        reinterpret_cast<PDEVMODEW>(record.data());
    ASSERT_TRUE(SetPrinterW(printer.handle(), 2, info.data(), 0));
}

DWORD LastActiveTab(HostPrinter& printer)
{
    DWORD value = 0xFFFF, type = 0, cb = 0;
    GetPrinterDataW(printer.handle(), const_cast<LPWSTR>(u"LastActiveTab"), &type,
                    reinterpret_cast<LPBYTE>(&value), sizeof(value), &cb);
    return value;
}

std::u16string ControlText(const host::SheetPage& page, int id)
{
    for (const host::ControlState& control : page.controls) {
        if (control.id == id)
            return control.text;
    }
    return u"<no control>";
}

} // namespace

// OK hands the caller the merged record; Cancel leaves what the opening put there; Apply then
// Cancel still reports OK, and under a prompt without OK the caller gets the merged record.
TEST_F(Sheets, TheDocumentSheetsResultReachesTheCallersRecordOnlyOnOK)
{
    HostPrinter printer(u"Sheet OK");
    std::vector<uint8_t> in = Default(printer);
    Edit(in).dmPublic.dmCopies = 3;

    Outcome ok = Document(printer, kPrompt, "ok\n", in);
    EXPECT_EQ(1, ok.rc);
    EXPECT_EQ(DWORD(CPSUI_OK), ok.result);
    EXPECT_EQ(3, AsRecord(ok.out).dmPublic.dmCopies);
    EXPECT_EQ(DRIVER_SIGNATURE, AsRecord(ok.out).dmxSignature);
    EXPECT_TRUE(ok.failures.empty());

    // An output record that does not claim the driver's size is not filled at the opening.
    Outcome cancel = Document(printer, kPrompt, "cancel\n", in);
    EXPECT_EQ(DWORD(CPSUI_CANCEL), cancel.result);
    EXPECT_EQ(std::vector<uint8_t>(sizeof(DEVMODEEX), 0), cancel.out);
    // One that does gets the merged record at once, and keeps it after Cancel.
    std::vector<uint8_t> claimed = Default(printer);
    Outcome early = Document(printer, kPrompt, "cancel\n", in, claimed);
    EXPECT_EQ(DWORD(CPSUI_CANCEL), early.result);
    EXPECT_EQ(3, AsRecord(early.out).dmPublic.dmCopies);

    // Apply stays unlit until a page reports a change, so a person cannot press it.
    Outcome applied = Document(printer, kPrompt, "apply\ncancel\n", in);
    EXPECT_EQ(DWORD(CPSUI_CANCEL), applied.result);
    ASSERT_EQ(1u, applied.failures.size());
    EXPECT_NE(std::string::npos, applied.failures[0].find("no apply button"));

    // Without an output flag nothing is written, whatever the user does.
    Outcome noOutput = Document(printer, DM_IN_PROMPT | DM_IN_BUFFER, "ok\n", in);
    EXPECT_EQ(DWORD(CPSUI_OK), noOutput.result);
    EXPECT_EQ(std::vector<uint8_t>(sizeof(DEVMODEEX), 0), noOutput.out);

    // No script: the user closes the sheet.
    Outcome closed = Document(printer, kPrompt, "", in);
    EXPECT_EQ(DWORD(CPSUI_CANCEL), closed.result);
}

// The sheet's reasons come in the common UI's order; the document sheet opens on the paper tab
// and ends with the about tab, whose activation is remembered as the offset of its template.
TEST_F(Sheets, TheSheetIsBuiltAndTornDownInOrderAndRemembersTheLastTab)
{
    HostPrinter printer(u"Sheet order");
    Outcome first = Document(printer, kPrompt, "tab 106\nok\n");
    ASSERT_EQ(1, first.rc);
    ASSERT_FALSE(first.run.pages.empty());
    EXPECT_EQ(106, first.run.pages.back().templateId);
    // The resource library is installed; the rendering library is not, so its line is empty.
    EXPECT_EQ(u"12.7.0.0", ControlText(first.run.pages.back(), 1932));
    EXPECT_EQ(u"", ControlText(first.run.pages.back(), 1931));
    EXPECT_EQ((std::vector<int>{101, 106}), first.run.activations) << "nothing stored: the first";
    EXPECT_EQ(5u, LastActiveTab(printer));
    EXPECT_EQ("INIT 1", first.run.calls.front());
    EXPECT_EQ("DESTROY 1", first.run.calls.back());
    EXPECT_EQ("SET_RESULT 1", first.run.calls[first.run.calls.size() - 2]);

    // The stored 5 is compared with the running position of the pages: the about tab is the
    // sixth page, at position 5, so the next sheet opens on it.
    Outcome second = Document(printer, kPrompt, "ok\n");
    EXPECT_EQ((std::vector<int>{106}), second.run.activations);
}

// A device sheet shows the about tab alone; its OK writes the sheet's record over the queue's
// stored one, and Cancel leaves it.
TEST_F(Sheets, TheDeviceSheetWritesThePrintersStoredRecordOnOK)
{
    HostPrinter printer(u"Sheet device");
    std::vector<uint8_t> stored = Default(printer);
    Edit(stored).dmPublic.dmCopies = 9;
    StoreRecord(printer, stored);

    Outcome cancel = Device(printer, 0, "cancel\n");
    EXPECT_EQ(CPSUI_CANCEL, cancel.rc) << "the common UI returns the sheet's result";
    ASSERT_EQ(1u, cancel.run.pages.size());
    EXPECT_EQ(106, cancel.run.pages[0].templateId);
    EXPECT_EQ(9, AsRecord(StoredRecord(printer.name())).dmPublic.dmCopies);

    Outcome ok = Device(printer, 0, "ok\n");
    EXPECT_EQ(DWORD(CPSUI_OK), ok.result);
    std::vector<uint8_t> after = StoredRecord(printer.name());
    ASSERT_GE(after.size(), sizeof(DEVMODEEX));
    EXPECT_EQ(1, AsRecord(after).dmPublic.dmCopies) << "the sheet's record is the default one";
}

// Another driver's bare DEVMODEW leaves the printer's information block no room for this
// driver's record: OK must store the whole record without writing past the block.
TEST_F(Sheets, TheDeviceSheetReplacesAForeignStoredRecordWhole)
{
    std::vector<uint8_t> foreign(sizeof(DEVMODEW), 0);
    auto* pForeign = reinterpret_cast<DEVMODEW*>(foreign.data());
    pForeign->dmSize = sizeof(DEVMODEW);
    pForeign->dmSpecVersion = 0x0401;
    pForeign->dmCopies = 4;
    HostPrinter printer(u"Sheet foreign", u"Tarvo Plan Output System 2440", u"LPT1:", foreign);

    Outcome ok = Device(printer, 0, "ok\n");
    EXPECT_EQ(DWORD(CPSUI_OK), ok.result);
    std::vector<uint8_t> after = StoredRecord(printer.name());
    ASSERT_EQ(sizeof(DEVMODEEX), after.size()) << "the stored record is this driver's, whole";
    EXPECT_EQ(kDEVMODEEX_DRIVER_EXTRA, AsRecord(after).dmPublic.dmDriverExtra);
}

// A first opening on a port that answers asks the printer; OK marks the user as having seen
// the sheet, after which the printer is asked no more.
TEST_F(Sheets, TheFirstOpeningRefreshesAndOKEndsTheFirstTime)
{
    auto server = Serve("127.0.0.81");
    auto printer = NetworkQueue(u"Sheet first", "127.0.0.81");
    DWORD seen = 0;
    EXPECT_NE(0, QLMGetUserDWORD(printer->handle(), u"QLMIsFirstTime", &seen));

    Outcome cancelled = Document(*printer, kPrompt, "cancel\n");
    EXPECT_EQ(1u, server->Connections());
    EXPECT_NE(0, QLMGetUserDWORD(printer->handle(), u"QLMIsFirstTime", &seen))
        << "Cancel leaves the first time as it was";

    Outcome ok = Document(*printer, kPrompt, "ok\n");
    EXPECT_EQ(2u, server->Connections());
    EXPECT_EQ(2, AsRecord(ok.out).dmxNumRolls) << "the printer's rolls reach the caller";
    ASSERT_EQ(0, QLMGetUserDWORD(printer->handle(), u"QLMIsFirstTime", &seen));
    EXPECT_EQ(1u, seen);

    Document(*printer, kPrompt, "ok\n");
    EXPECT_EQ(2u, server->Connections()) << "no refresh once the first time is over";
}

// An unreachable printer brings the address dialog; without permission its fields are locked,
// and Cancel opens the sheet with the stored values.
TEST_F(Sheets, AnUnreachablePrinterAsksForItsAddressWithinTheUsersRights)
{
    auto printer = NetworkQueue(u"Sheet unreachable", "127.0.0.82");
    Outcome locked = Document(*printer, kPrompt | DM_NOPERMISSION,
                              "expect 1351 text 127.0.0.82\n"
                              "expect 1349 disabled\n"
                              "expect 1350 disabled\n"
                              "cancel\n"
                              "ok\n");
    EXPECT_TRUE(locked.failures.empty()) << locked.failures.front();
    EXPECT_EQ(DWORD(CPSUI_OK), locked.result);
    EXPECT_EQ(3, AsRecord(locked.out).dmxNumRolls)
        << "the stored record's six rolls, cut to the model's three by the paper tab";

    // The first OK above ended the first time of that queue; a new queue asks again.
    auto server = Serve("127.0.0.83");
    printer = NetworkQueue(u"Sheet unreachable 2", "127.0.0.84");
    Outcome answered = Document(*printer, kPrompt,
                                "type 1349 127.0.0.83\n"
                                "ok\n"
                                "ok\n");
    EXPECT_TRUE(answered.failures.empty()) << answered.failures.front();
    EXPECT_EQ(1u, server->Connections());
    EXPECT_EQ(2, AsRecord(answered.out).dmxNumRolls);
}
