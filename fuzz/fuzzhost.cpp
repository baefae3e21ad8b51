// The fuzz targets' host: one set-up per process, a fresh store per input.
#include "fuzzhost.h"

#include "driver/devmode/devmodeex.h"
#include "driver/foundation/qlmtrace.h"
#include "platform/host/host.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD reason, LPVOID reserved);

namespace fuzzhost {

const char16_t* const kDrivers[] = {
    u"Tarvo Plan Output System 2440",
    u"Tarvo Plan Output System 2420",
    u"Tarvo Plan Output System 2410",
    u"Tarvo Plan Output System 2445",
    u"Tarvo Plan Output System 318p",
    u"Tarvo Plan Output System 427dp",
    u"Tarvo 3310 Wide Format with Lumivar Pentara",
    u"Tarvo 3320 Wide Format with Lumivar Pentara",
    u"Tarvo 3320A Wide Format with Lumivar Pentara",
    u"Tarvo 3344 Wide Format with Lumivar Pentara",
    u"Some Other Plotter", // no alias: the default model
};
const size_t kDriverCount = sizeof(kDrivers) / sizeof(kDrivers[0]);

namespace {

std::string g_home;
HANDLE g_hPrinter = nullptr;
int g_nAssertions = 0;

} // namespace

void SetUp()
{
    if (!g_home.empty())
        return;
    // A home per process, so that parallel jobs do not share the trace log or picked files.
    g_home =
        (std::filesystem::temp_directory_path() / ("qlmfuzz-" + std::to_string(getpid()))).string();
    std::filesystem::create_directories(g_home);
    host::SetHomeDirectory(g_home);
    host::OpenStore(":memory:");
    std::string error;
    if (!host::InstallDriverFile(QLM_FUZZ_BINARY_DIR "/resources/QLMRes.DLL", u"QLMRes.DLL", 3,
                                 &error)) {
        std::fprintf(stderr, "the resource library is not installed: %s\n", error.c_str());
        std::abort();
    }
    host::InstallDriverFile(QLM_FUZZ_BINARY_DIR "/resources/QLMUIDrv.DLL", u"QLMUIDrv.DLL", 3,
                            &error);
    // As the spooler loads the library: the refresh's address question becomes the dialog.
    DllMain(reinterpret_cast<HINSTANCE>(&g_home), DLL_PROCESS_ATTACH, nullptr);
    std::atexit([] { std::filesystem::remove_all(g_home); });
}

HANDLE FreshQueue(const std::u16string& name, const std::u16string& driver,
                  const std::u16string& port, const std::vector<uint8_t>& storedRecord)
{
    SetUp();
    if (g_hPrinter)
        ClosePrinter(g_hPrinter);
    g_hPrinter = nullptr;
    host::OpenStore(":memory:");
    host::ClearUserScript();
    host::ClearMessageBoxAnswers();
    host::ClearMessageBoxCalls();
    host::ClearFilePickerAnswers();
    host::ClearFilePickerTitles();
    host::PrinterRecord printer;
    printer.name = name;
    printer.driverName = driver;
    printer.portName = port;
    printer.devMode = storedRecord;
    host::AddPrinter(printer);
    OpenPrinterW(const_cast<LPWSTR>(name.c_str()), &g_hPrinter, nullptr);
    // The trace log, should an input switch it on, starts empty each time.
    std::error_code ec;
    std::filesystem::remove(g_home + "/QLM_DEBUG.TXT", ec);
    return g_hPrinter;
}

std::string Home()
{
    SetUp();
    return g_home;
}

std::string HomeFile(const char* name)
{
    return Home() + "/" + name;
}

void WriteFile(const std::string& path, const uint8_t* data, size_t size)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), std::streamsize(size));
}

const char* RecordFault(const void* record, size_t cb)
{
    if (cb < sizeof(DEVMODEEX))
        return "the record is shorter than the driver's";
    const DEVMODEEX* dm = static_cast<const DEVMODEEX*>(record);
    const DEVMODEW& pub = dm->dmPublic;
    // The identity getDeviceMode takes a stored record for its own by.
    if (GetDevmodeKind(&pub) != kDM_OWN_CURRENT)
        return "the record is not the driver's current record";
    // What the driver keeps in every record it hands out.
    if (pub.dmFields != kTVO_DM_FIELDS || pub.dmColor != 1)
        return "dmFields or dmColor is not the driver's";
    // A fresh default record has 0 here until a merge makes the two equal.
    if (pub.dmYResolution != pub.dmPrintQuality && pub.dmYResolution != 0)
        return "dmYResolution differs from dmPrintQuality";
    if (dm->dmxBiDi == 0 && dm->dmxRefreshOnOpen != 0)
        return "a refresh on open without a bidirectional port";
    for (int i = 0; i < 8; i++)
        if (dm->padding_1[i] != TVO_GUARD_WORD || dm->padding_2[i] != TVO_GUARD_WORD)
            return "a guard word of the record was written over";
    return nullptr;
}

void Require(const char* fault, const char* where)
{
    if (!fault)
        return;
    std::fprintf(stderr, "%s: %s\n", where, fault);
    std::abort();
}

void CountAssertions()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    g_bTraceASSERT = TRUE;
    host::SetDebugOutputSink([](const std::u16string& line) {
        if (line.find(u"***ASSERT***") != std::u16string::npos) {
            ++g_nAssertions;
            if (std::getenv("QLMFUZZ_SHOW_ASSERTS"))
                std::fprintf(stderr, "%s", host::Utf16ToUtf8(line).c_str());
        }
    });
}

int AssertionCount()
{
    return g_nAssertions;
}

std::vector<uint8_t> Input::Bytes(size_t n)
{
    n = std::min(n, Left());
    std::vector<uint8_t> out(m_p, m_p + n);
    m_p += n;
    return out;
}

} // namespace fuzzhost
