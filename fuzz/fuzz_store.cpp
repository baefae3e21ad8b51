// Any stored state the driver reads back: the user forms ("UserFormCount", "UserForm%d") of any
// count and bytes, "LastActiveTab", the port map "QLMMapPort:<port>", the "DebugSettings"
// switches, and the per-user "Accounting", "QLMIsFirstTime" and "PrinterIPDlg_WindowPos", each
// of any type and size. They are written into a fresh in-memory store, then the exports and the
// configuration read them: capabilities, DocumentProperties, the user forms read and written
// back, the last tab, the address map, the accounting block and the address dialog's placement.
//
// The input is a selector byte (model, address dialog), then a list of (which value, its
// number, type, length, bytes).
#include "driver/config/tvoconfg.h"
#include "driver/config/tvodev.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogue/qlmport.h"
#include "driver/dialogue/qlmrefresh.h"
#include "driver/foundation/qlmtrace.h"
#include "driver/foundation/qlmutils.h"
#include "fuzzhost.h"
#include "platform/host/host.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

extern "C" {
DWORD WINAPI DrvDeviceCapabilities(HANDLE, PWSTR, WORD, void*, PDEVMODEW);
LONG WINAPI DrvDocumentProperties(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);
}

namespace {

const std::u16string kQueue = u"Fuzz";
const std::u16string kPort = u"IP_10.0.0.5";

// The switches an input may set, and their values as the process started, put back after each
// input: a switch lives in a global, and no input may see another's.
std::vector<std::pair<BOOL*, std::u16string>> g_switches;
std::vector<BOOL> g_switchDefaults;

void CollectSwitches()
{
    if (!g_switches.empty())
        return;
    g_switches.push_back({&g_bAssertMsgBox, u"DBG_AssertMsgBox"});
    g_switches.push_back({&g_bToggleEMFSpooling, u"DBG_Toggle_EMF_Spooling"});
    g_switches.push_back({nullptr, u"DBG_BidiFromFile"});
    for (const TVOTraceFlag* row = g_TraceFlags; row->pFlag; row++)
        g_switches.push_back({row->pFlag, reinterpret_cast<const char16_t*>(row->pszName)});
    for (const auto& s : g_switches)
        g_switchDefaults.push_back(s.first ? *s.first : 0);
}

void RestoreSwitches()
{
    for (size_t i = 0; i < g_switches.size(); i++)
        if (g_switches[i].first)
            *g_switches[i].first = g_switchDefaults[i];
    g_bDontBeOptimized = FALSE;
}

void SetUserValue(const std::u16string& name, DWORD type, const std::vector<uint8_t>& bytes)
{
    std::u16string key = std::u16string(u"Software\\Tarvo\\Wide Format\\") + kQueue;
    HKEY hKey = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &hKey, nullptr) != ERROR_SUCCESS)
        return;
    RegSetValueExW(hKey, name.c_str(), 0, type, bytes.empty() ? nullptr : bytes.data(),
                   DWORD(bytes.size()));
    RegCloseKey(hKey);
}

void WriteValue(fuzzhost::Input& in)
{
    const uint8_t which = in.Byte();
    const uint8_t index = in.Byte(); // a form's number or a switch's row
    const uint8_t typeByte = in.Byte();
    // Mostly the registry's own types; now and then any number.
    const DWORD type = typeByte < 0xF0 ? typeByte % 12 : 0x100u * typeByte;
    const size_t cb = in.Byte() < 0xF0 ? in.Byte() : size_t(in.Word());
    std::vector<uint8_t> bytes = in.Bytes(cb);
    switch (which % 9) {
    case 0:
        host::SetPrinterData(kQueue, {u"PrinterDriverData", u"UserFormCount", type, bytes});
        break;
    case 1:
    case 2: {
        // Forms 1 to 70: beyond the 64 the driver keeps, too.
        std::u16string name = u"UserForm" + host::Utf8ToUtf16(std::to_string(1 + index % 70));
        host::SetPrinterData(kQueue, {u"PrinterDriverData", name, type, bytes});
        break;
    }
    case 3:
        host::SetPrinterData(kQueue, {u"PrinterDriverData", u"LastActiveTab", type, bytes});
        break;
    case 4:
        host::SetPrinterData(kQueue, {u"PrinterDriverData", u"QLMMapPort:" + kPort, type, bytes});
        break;
    case 5:
        host::SetPrinterData(
            kQueue, {u"DebugSettings", g_switches[index % g_switches.size()].second, type, bytes});
        break;
    case 6:
        SetUserValue(u"Accounting", type, bytes);
        break;
    case 7:
        SetUserValue(u"PrinterIPDlg_WindowPos", type, bytes);
        break;
    case 8:
        SetUserValue(u"QLMIsFirstTime", type, bytes);
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CollectSwitches();
    fuzzhost::Input in(data, size);
    const uint8_t selector = in.Byte();
    const std::u16string driver = fuzzhost::kDrivers[selector % fuzzhost::kDriverCount];
    HANDLE hPrinter = fuzzhost::FreshQueue(kQueue, driver, kPort);
    host::AddPort({kPort, u"TCPMON.DLL", u"Standard TCP/IP Port"});
    // A person at an assertion's box (DBG_AssertMsgBox) says Ignore.
    for (int i = 0; i < 64; i++)
        host::QueueMessageBoxAnswer(IDIGNORE);
    while (!in.Empty())
        WriteValue(in);

    // The exports, as an application asks.
    PWSTR name = const_cast<PWSTR>(kQueue.c_str());
    for (int index : {DC_PAPERS, DC_PAPERNAMES, DC_PAPERSIZE, DC_BINS, DC_BINNAMES,
                      DC_ENUMRESOLUTIONS, DC_MAXEXTENT, DC_IDSYSPRN, DC_MMINCH}) {
        DWORD count = DrvDeviceCapabilities(hPrinter, name, index, nullptr, nullptr);
        if (count == GDI_ERROR || count > 4096)
            continue;
        std::vector<uint8_t> out(size_t(count) * 128 + 64);
        DrvDeviceCapabilities(hPrinter, name, index, out.data(), nullptr);
    }
    std::vector<uint8_t> record(sizeof(DEVMODEEX));
    if (DrvDocumentProperties(nullptr, hPrinter, name, reinterpret_cast<PDEVMODEW>(record.data()),
                              nullptr, DM_OUT_BUFFER) == 1)
        fuzzhost::Require(fuzzhost::RecordFault(record.data(), record.size()), "fuzz_store");

    // The configuration: forms read, written back and read again must agree.
    {
        TVOPrinterConfiguration config(driver.c_str());
        config.setPrinterHandle(hPrinter);
        config.getUserForms(hPrinter);
        if (config.m_UserFormCount < 0 || config.m_UserFormCount > kMAX_USER_FORMS)
            fuzzhost::Require("a user form count beyond the table", "fuzz_store");
        const int count = config.m_UserFormCount;
        std::vector<USERFORM> forms(config.m_UserForms, config.m_UserForms + count);
        config.setUserForms(hPrinter);
        config.getUserForms(hPrinter);
        if (config.m_UserFormCount != count ||
            (count && memcmp(forms.data(), config.m_UserForms, count * sizeof(USERFORM)) != 0))
            fuzzhost::Require("the user forms changed on their way through the store",
                              "fuzz_store");
        config.GetLastActiveTab();

        char address[kQLM_ADDRESS_CB + 1] = {};
        QLMGetIPAddressMap(hPrinter, kPort.c_str(), address, sizeof(address) - 1);
        QLMGetIPAddressFromPort(hPrinter, kPort.c_str());
        QLMIsFirstTimeEver(hPrinter);

        // The accounting block, read into a record and stored again.
        TVODevMode devMode(hPrinter);
        devMode.GetAccountingInfo(hPrinter);
        devMode.SetAccountingInfo(hPrinter, FALSE);
        devMode.GetAccountingInfo(hPrinter);

        // The address dialog places itself where the stored placement says; no script: Cancel.
        if (selector & 0x80) {
            QLMRefreshQuestions questions = QLMSetRefreshQuestions({});
            QLMSetRefreshQuestions(questions);
            char answer[kQLM_ADDRESS_CB + 1] = {};
            questions.askAddress(kPort.c_str(), &config, devMode.m_lpDM, nullptr, answer,
                                 sizeof(answer));
        }
    }
    RestoreSwitches();
    return 0;
}
