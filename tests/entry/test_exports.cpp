// The export table and the driver's immediate answers, through the loaded library as the
// spooler sees it, and through the driver object.
#include "support/tracecapture.h"

#include "driver/entry/tvouidrv.h"

#include "support/hostprinter.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <set>
#include <string>

namespace {

// QLMUIDrv.so, loaded on its own like a DLL: its symbols stay out of this executable's way.
class DriverLibrary : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_handle = dlopen(QLM_TEST_BINARY_DIR "/driver/QLMUIDrv.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(s_handle, nullptr) << dlerror();
    }
    static void TearDownTestSuite()
    {
        if (s_handle)
            dlclose(s_handle);
        s_handle = nullptr;
    }
    template <typename F> static F* Export(const char* name)
    {
        return reinterpret_cast<F*>(dlsym(s_handle, name));
    }
    static void* s_handle;
};
void* DriverLibrary::s_handle = nullptr;

} // namespace

TEST_F(DriverLibrary, ExportsEveryEntryByName)
{
    const char* kExports[] = {"DevQueryPrint",
                              "DrvDeviceCapabilities",
                              "DrvDocumentProperties",
                              "PrinterProperties",
                              "DevQueryPrintEx",
                              "DrvConvertDevMode",
                              "DrvDevicePropertySheets",
                              "DrvDocumentPropertySheets",
                              "DrvPrinterEvent",
                              "DrvDocumentEvent",
                              "NumericEditSubclassProc",
                              "TVODialogProcedure",
                              "TVOTabProcedure",
                              "TVODialogNumericEditSubclassProc",
                              "DllMain"};
    for (const char* name : kExports)
        EXPECT_NE(dlsym(s_handle, name), nullptr) << name;
    EXPECT_EQ(dlsym(s_handle, "g_bTrace"), nullptr) << "the library's globals stay inside it";
}

TEST_F(DriverLibrary, DllMainAcceptsEveryReason)
{
    auto* dllMain = Export<BOOL(HINSTANCE, DWORD, LPVOID)>("DllMain");
    ASSERT_NE(dllMain, nullptr);
    HINSTANCE instance = reinterpret_cast<HINSTANCE>(s_handle);
    for (DWORD reason :
         {DWORD(DLL_PROCESS_ATTACH), DWORD(DLL_THREAD_ATTACH), DWORD(DLL_THREAD_DETACH), 99u})
        EXPECT_EQ(dllMain(instance, reason, nullptr), TRUE) << reason;
}

TEST_F(DriverLibrary, DevQueryPrintAcceptsEveryJob)
{
    auto* devQueryPrint = Export<BOOL(HANDLE, LPDEVMODEW, DWORD*)>("DevQueryPrint");
    DWORD resId = 0xdeadbeef;
    EXPECT_EQ(devQueryPrint(nullptr, nullptr, &resId), 1);
    EXPECT_EQ(resId, 0u);

    auto* devQueryPrintEx = Export<BOOL(PDEVQUERYPRINT_INFO)>("DevQueryPrintEx");
    WCHAR error[8] = {u'x', 0};
    DEVQUERYPRINT_INFO info = {sizeof(info), 1, nullptr, nullptr, error, 8, 0xdeadbeef};
    EXPECT_EQ(devQueryPrintEx(&info), 1);
    EXPECT_EQ(error[0], u'x') << "no reason string is written";
    EXPECT_EQ(info.cchNeeded, 0xdeadbeefu);
}

TEST_F(DriverLibrary, PrinterPropertiesShowsNothing)
{
    auto* printerProperties = Export<BOOL(HWND, HANDLE)>("PrinterProperties");
    EXPECT_EQ(printerProperties(GetDesktopWindow(), reinterpret_cast<HANDLE>(0x1234)), 1);
    EXPECT_EQ(printerProperties(nullptr, nullptr), 1);
    EXPECT_TRUE(host::MessageBoxCalls().empty());
}

TEST_F(DriverLibrary, DocumentEventsAreAcceptedButTheFilterQuery)
{
    auto* documentEvent =
        Export<int(HANDLE, HDC, int, ULONG, PVOID, ULONG, PVOID)>("DrvDocumentEvent");
    for (int iEsc = -1; iEsc <= 20; iEsc++) {
        int expected = iEsc == DOCUMENTEVENT_QUERYFILTER ? 0 : 1;
        EXPECT_EQ(documentEvent(nullptr, nullptr, iEsc, 0, nullptr, 0, nullptr), expected) << iEsc;
    }
}

// The library answers through its exports as it does through the driver object.
TEST_F(DriverLibrary, ExportsAnswerForAHostPrinter)
{
    HostPrinter printer(u"Plan", u"Tarvo 3320 Wide Format");
    auto* caps = Export<DWORD(HANDLE, PWSTR, WORD, void*, PDEVMODEW)>("DrvDeviceCapabilities");
    EXPECT_EQ(caps(printer.handle(), nullptr, DC_SIZE, nullptr, nullptr), 220u);
    EXPECT_EQ(caps(printer.handle(), nullptr, DC_PAPERS, nullptr, nullptr), 23u);
    EXPECT_EQ(caps(printer.handle(), nullptr, DC_ENUMRESOLUTIONS, nullptr, nullptr), 4u);
    auto* properties =
        Export<LONG(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD)>("DrvDocumentProperties");
    EXPECT_EQ(properties(nullptr, printer.handle(), nullptr, nullptr, nullptr, 0), 13484);
    auto* sheets = Export<LONG(PPROPSHEETUI_INFO, LPARAM)>("DrvDocumentPropertySheets");
    EXPECT_EQ(sheets(nullptr, 0), -1);
    auto* device = Export<LONG(PPROPSHEETUI_INFO, LPARAM)>("DrvDevicePropertySheets");
    EXPECT_EQ(device(nullptr, 0), -1);
}

TEST(DocumentEventNames, EveryEventHasItsNameAndOthersAreDefault)
{
    std::set<std::string> names;
    for (int iEsc = 1; iEsc <= 15; iEsc++) {
        std::string name = host::Utf16ToUtf8(DocumentEventName(iEsc));
        EXPECT_EQ(name.rfind("DOCUMENTEVENT_", 0), 0u) << iEsc;
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 15u) << "each event a name of its own";
    EXPECT_EQ(host::Utf16ToUtf8(DocumentEventName(1)), "DOCUMENTEVENT_CREATEDCPRE");
    EXPECT_EQ(host::Utf16ToUtf8(DocumentEventName(DOCUMENTEVENT_QUERYFILTER)),
              "DOCUMENTEVENT_QUERYFILTER");
    EXPECT_EQ(host::Utf16ToUtf8(DocumentEventName(15)), "DOCUMENTEVENT_LAST");
    for (int iEsc : {0, 16, -1, 0x10005})
        EXPECT_EQ(host::Utf16ToUtf8(DocumentEventName(iEsc)), "DEFAULT") << iEsc;
}

TEST(DriverObject, EntriesTraceUnderTheDriversFlags)
{
    SwitchGuard guard;
    TraceCapture capture;
    TVONTUIDriver driver;
    DWORD resId = 7;
    EXPECT_EQ(driver.DevQueryPrint(nullptr, nullptr, &resId), 1);
    EXPECT_TRUE(capture.lines().empty()) << "flags off: silent";

    g_bTraceUIDDI = TRUE;
    EXPECT_EQ(driver.DevQueryPrintEx(nullptr), 1);
    ASSERT_EQ(capture.lines().size(), 2u);
    EXPECT_EQ(capture.lines()[0], "QLMUIDrv:Entered function:TVONTUIDriver::DevQueryPrintEx\n");
    EXPECT_EQ(capture.lines()[1], "QLMUIDrv:Exited  function:TVONTUIDriver::DevQueryPrintEx\n");
}

TEST(DriverObject, SwitchesAreNotReadWhileASheetIsDestroyed)
{
    SwitchGuard guard;
    HostPrinter printer(u"Plotter");
    ASSERT_TRUE(
        host::SetPrinterData(u"Plotter", {u"DebugSettings", u"Finisher", REG_DWORD, {1, 0, 0, 0}}));
    TVONTUIDriver driver;
    g_bTraceFinisher = FALSE;
    driver.ReadDebugSwitches(printer.handle(), PROPSHEETUI_REASON_DESTROY);
    EXPECT_EQ(g_bTraceFinisher, FALSE);
    driver.ReadDebugSwitches(printer.handle(), PROPSHEETUI_REASON_INIT);
    EXPECT_EQ(g_bTraceFinisher, TRUE);
}
