// What the frequent questions cost the spooler: the spooler and registry calls that one export
// call makes, through the driver library as the spooler loads it. Each piece of the queue's
// state is fetched once per call, so the counts are the same whatever the queue stores.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/devmodeex.h"
#include "driver/entry/tvouidrv.h"
#include "driver/foundation/qlmtrace.h"
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "platform/host/hostsheet.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using Counts = std::map<std::string, long long>;
using DeviceCapabilitiesFn = DWORD WINAPI(HANDLE, PWSTR, WORD, void*, PDEVMODEW);
using DocumentPropertiesFn = LONG WINAPI(HWND, HANDLE, PWSTR, PDEVMODEW, PDEVMODEW, DWORD);
using SheetFn = LONG WINAPI(PPROPSHEETUI_INFO, LPARAM);

// The goals per export call, in spooler calls.
constexpr long long kCAPABILITIES_GOAL = 8;
constexpr long long kPROPERTIES_GOAL = 10;
constexpr long long kSHEET_GOAL = 15;

Counts Take()
{
    Counts counts;
    for (const auto& [name, count] : host::CallCounts())
        counts[name] = count;
    host::ResetCallCounts();
    return counts;
}

long long Spooler(const Counts& counts)
{
    long long total = 0;
    for (const auto& [name, count] : counts)
        total += name.rfind("Reg", 0) == 0 ? 0 : count;
    return total;
}

std::string Describe(const Counts& counts)
{
    std::string text;
    for (const auto& [name, count] : counts)
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + name;
    return text.empty() ? "none" : text;
}

void StoreData(const std::u16string& printer, const std::u16string& key, const std::u16string& name,
               DWORD type, const void* data, size_t cb)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    host::DataValue value{key, name, type, std::vector<uint8_t>(bytes, bytes + cb)};
    ASSERT_TRUE(host::SetPrinterData(printer, value)) << host::Utf16ToUtf8(name);
}

// The most a queue holds: 64 user forms, and every switch of the table stored (all off, as
// they are by default).
void FillStore(const std::u16string& printer)
{
    const DWORD count = kMAX_USER_FORMS;
    StoreData(printer, u"PrinterDriverData", u"UserFormCount", REG_DWORD, &count, sizeof(count));
    for (int i = 0; i < kMAX_USER_FORMS; i++) {
        USERFORM form = {};
        form.name[0] = u'F';
        form.name[1] = static_cast<WCHAR>(u'A' + i % 26);
        form.width = 3000 + i;
        form.length = 6000;
        StoreData(printer, u"PrinterDriverData",
                  u"UserForm" + host::Utf8ToUtf16(std::to_string(i + 1)), REG_BINARY, &form,
                  sizeof(form));
    }
    const DWORD off = 0;
    for (const char16_t* name : {u"DBG_AssertMsgBox", u"DBG_Toggle_EMF_Spooling"})
        StoreData(printer, u"DebugSettings", name, REG_DWORD, &off, sizeof(off));
    for (const TVOTraceFlag* row = g_TraceFlags; row->pFlag; row++)
        StoreData(printer, u"DebugSettings", row->pszName, REG_DWORD, &off, sizeof(off));
}

class SpoolerCalls : public ::testing::TestWithParam<bool>
{
protected:
    static void SetUpTestSuite()
    {
        s_handle = dlopen(QLM_TEST_BINARY_DIR "/driver/QLMUIDrv.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(s_handle, nullptr) << dlerror();
        auto* dllMain =
            reinterpret_cast<BOOL WINAPI (*)(HINSTANCE, DWORD, LPVOID)>(dlsym(s_handle, "DllMain"));
        ASSERT_NE(dllMain, nullptr);
        dllMain(static_cast<HINSTANCE>(s_handle), DLL_PROCESS_ATTACH, nullptr);
    }
    static void TearDownTestSuite()
    {
        if (s_handle)
            dlclose(s_handle);
        s_handle = nullptr;
    }
    void SetUp() override
    {
        if (GetParam())
            FillStore(m_printer.name());
        // As the spooler leaves a new queue: with the driver's record stored.
        std::vector<uint8_t> record(sizeof(DEVMODEEX), 0);
        ASSERT_EQ(1, Export<DocumentPropertiesFn>("DrvDocumentProperties")(
                         nullptr, m_printer.handle(), Name(),
                         reinterpret_cast<PDEVMODEW>(record.data()), nullptr, DM_OUT_BUFFER));
    }
    void TearDown() override { host::ClearUserScript(); }
    template <typename F> static F* Export(const char* name)
    {
        return reinterpret_cast<F*>(dlsym(s_handle, name));
    }
    LPWSTR Name() { return const_cast<LPWSTR>(m_printer.name().c_str()); }

    // The document sheet, opened for a prompt and closed by the script with the result
    // given; the calls from its INIT to its DESTROY.
    Counts Sheet(const std::string& script, LONG expected)
    {
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        std::vector<uint8_t> out(sizeof(DEVMODEEX), 0);
        DOCUMENTPROPERTYHEADER header = {};
        header.cbSize = sizeof(header);
        header.hPrinter = m_printer.handle();
        header.pszPrinterName = Name();
        header.pdmOut = reinterpret_cast<PDEVMODEW>(out.data());
        header.cbOut = static_cast<DWORD>(out.size());
        header.fMode = DM_IN_PROMPT | DM_OUT_BUFFER;
        DWORD result = 0;
        Take();
        EXPECT_EQ(expected, CommonPropertySheetUIW(nullptr,
                                                   reinterpret_cast<PFNPROPSHEETUI>(Export<SheetFn>(
                                                       "DrvDocumentPropertySheets")),
                                                   reinterpret_cast<LPARAM>(&header), &result));
        Counts counts = Take();
        host::SheetRun run = host::LastSheetRun();
        EXPECT_FALSE(run.activations.empty()) << "a page was shown";
        EXPECT_EQ("DESTROY 1", run.calls.empty() ? "" : run.calls.back());
        return counts;
    }

    HostPrinter m_printer{u"Counted"};
    static void* s_handle;
};
void* SpoolerCalls::s_handle = nullptr;

// An application's question, count then names: each call reads the switches, the queue's
// information and the user forms once, whatever the number of forms. The port list is not
// asked: no answer tells whether the port answers.
TEST_P(SpoolerCalls, DeviceCapabilitiesFetchesEachPieceOnce)
{
    auto* capabilities = Export<DeviceCapabilitiesFn>("DrvDeviceCapabilities");
    const Counts kExpected = {
        {"EnumPrinterDataExW", 2}, {"GetPrinterDriverDirectoryW", 1}, {"GetPrinterW", 2}};
    Take();
    DWORD count = capabilities(m_printer.handle(), Name(), DC_PAPERNAMES, nullptr, nullptr);
    Counts first = Take();
    std::vector<WCHAR> names(size_t(count) * kPAPER_NAME_CCH);
    EXPECT_EQ(count,
              capabilities(m_printer.handle(), Name(), DC_PAPERNAMES, names.data(), nullptr));
    Counts second = Take();
    EXPECT_EQ(kExpected, first) << Describe(first);
    EXPECT_EQ(kExpected, second) << Describe(second);
    EXPECT_LE(Spooler(second), kCAPABILITIES_GOAL);
    // The forms are read, not skipped: each one is a paper.
    EXPECT_EQ(DWORD(GetParam() ? 23 + kMAX_USER_FORMS : 23), count);
}

// The record with and without a sheet: the spooler's own DocumentPropertiesW reaches the
// second through DrvDocumentPropertySheets without a sheet.
TEST_P(SpoolerCalls, DocumentPropertiesFetchesEachPieceOnce)
{
    std::vector<uint8_t> record(sizeof(DEVMODEEX), 0);
    Take();
    EXPECT_EQ(1, Export<DocumentPropertiesFn>("DrvDocumentProperties")(
                     nullptr, m_printer.handle(), Name(),
                     reinterpret_cast<PDEVMODEW>(record.data()), nullptr, DM_OUT_BUFFER));
    Counts properties = Take();
    EXPECT_EQ((Counts{{"EnumPortsW", 1}, {"GetPrinterW", 2}}), properties) << Describe(properties);
    EXPECT_LE(Spooler(properties), kPROPERTIES_GOAL);
    // Asked only for the size, the caller gets no record to read the port's answer in.
    EXPECT_EQ(DWORD(sizeof(DEVMODEEX)),
              DWORD(Export<DocumentPropertiesFn>("DrvDocumentProperties")(
                  nullptr, m_printer.handle(), Name(), nullptr, nullptr, 0)));
    Counts size = Take();
    EXPECT_EQ((Counts{{"GetPrinterW", 2}}), size) << Describe(size);

    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.hPrinter = m_printer.handle();
    header.pszPrinterName = Name();
    header.pdmOut = reinterpret_cast<PDEVMODEW>(record.data());
    header.cbOut = static_cast<DWORD>(record.size());
    header.fMode = DM_OUT_BUFFER;
    EXPECT_EQ(1, Export<SheetFn>("DrvDocumentPropertySheets")(nullptr,
                                                              reinterpret_cast<LPARAM>(&header)));
    Counts defaults = Take();
    EXPECT_EQ((Counts{{"EnumPortsW", 1}, {"GetPrinterW", 2}}), defaults) << Describe(defaults);
    EXPECT_LE(Spooler(defaults), kPROPERTIES_GOAL);
}

// A person opens the document sheet on a queue that asks no printer, looks at the first page and
// closes it: with OK (the tabs apply, the result is set) or with Cancel. The user forms are
// written back only where the store lacks them, so an unchanged set costs no call per form.
// The very first opening of a queue also marks it for raw spooling and, on a queue without
// forms, stores their count: two writes that later openings no longer make.
TEST_P(SpoolerCalls, TheDocumentSheetFetchesEachPieceOncePerReason)
{
    Counts first = Sheet("ok\n", CPSUI_OK);
    Counts again = Sheet("ok\n", CPSUI_OK);
    Counts cancel = Sheet("cancel\n", CPSUI_CANCEL);
    for (const Counts* counts : {&again, &cancel}) {
        EXPECT_LE(Spooler(*counts), kSHEET_GOAL) << Describe(*counts);
        EXPECT_EQ(1, counts->count("SetPrinterDataW") ? counts->at("SetPrinterDataW") : 0)
            << "only the last active tab is written: " << Describe(*counts);
        EXPECT_EQ(0u, counts->count("SetPrinterW")) << Describe(*counts);
    }
    Counts firstOnly = again;
    firstOnly["SetPrinterW"] += 1;
    firstOnly["SetPrinterDataW"] += GetParam() ? 0 : 1;
    EXPECT_EQ(firstOnly, first) << Describe(first);
    // Cancel sets no result and applies nothing: no switches read for the result, no name
    // looked up for the per-user store.
    EXPECT_LT(Spooler(cancel), Spooler(again));
}

// The port is asked whenever its answer can be seen: in the record saved for a queue that had
// none, and in the trace when a switch shows the port test.
TEST(SpoolerCallsOfCapabilities, ThePortIsAskedWhereItsAnswerShows)
{
    SwitchGuard guard;
    TVONTUIDriver driver;
    std::unique_ptr<HostPrinter> printer = NetworkQueue(u"Network", "10.1.2.3");
    LPWSTR name = const_cast<LPWSTR>(printer->name().c_str());
    auto bins = [&] {
        Take();
        EXPECT_EQ(DWORD(5),
                  driver.DrvDeviceCapabilities(printer->handle(), name, DC_BINS, nullptr, nullptr));
        return Take();
    };

    Counts saved = bins();
    EXPECT_EQ(1, saved["EnumPortsW"]) << Describe(saved);
    EXPECT_EQ(1, saved["SetPrinterW"]) << Describe(saved);
    host::PrinterRecord record;
    ASSERT_TRUE(host::GetPrinterRecord(printer->name(), &record));
    ASSERT_GE(record.devMode.size(), sizeof(DEVMODEEX));
    EXPECT_EQ(1u, reinterpret_cast<const DEVMODEEX*>(record.devMode.data())->dmxBiDi)
        << "the saved record knows the port answers";

    Counts quiet = bins();
    EXPECT_EQ(0u, quiet.count("EnumPortsW")) << Describe(quiet);

    g_bTraceQLMPrinterFunctions = TRUE;
    TraceCapture capture;
    Counts traced = bins();
    EXPECT_EQ(1, traced["EnumPortsW"]) << Describe(traced);
    EXPECT_TRUE(capture.contains("Entered function:QLMPortIsBiDi")) << capture.text();
    EXPECT_TRUE(capture.contains("Entered function:QLMPortIsStdTCPIP")) << capture.text();
}

INSTANTIATE_TEST_SUITE_P(Store, SpoolerCalls, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? "FormsAndSwitches" : "Empty";
                         });

} // namespace
