// The bench command: what an application's most frequent questions cost, per call, and how
// many spooler and registry calls the driver makes for each; beside them the floor, the calls
// that no answer can do without, measured the same way in the same run. Both tools run it, so
// scripts/test-wine.sh measures the host and Wine in the same run. A benchmark, never a test.
#include "commands.h"
#include "driverlib.h"
#include "sheetrun.h"

#include "driver/devmode/devmodeex.h"

#ifndef _WIN32
#include <ctime>
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

using DocumentPropertiesFn = LONG(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW, DWORD);
using DeviceCapabilitiesFn = DWORD(HANDLE, PWSTR, WORD, void*, PDEVMODEW);
using SheetFn = LONG WINAPI(PPROPSHEETUI_INFO, LPARAM);

// The goals: spooler calls per export call, the time of a call against the floor's, and the
// host's rate of paper name answers.
constexpr long long kCAPABILITIES_CALLS = 8;
constexpr long long kPROPERTIES_CALLS = 10;
constexpr long long kSHEET_CALLS = 15;
constexpr double kFLOOR_RATIO = 2.0;
constexpr double kHOST_RATE = 50000;

struct Measure
{
    const char* name;
    std::function<void()> call;
    long long goalCalls; // 0: none
    bool againstFloor;
    const char* calls = nullptr; // what the tool itself calls, which is not counted
    double median = 0;
    CallCountSummary counts;
};

double Microseconds(const std::function<void()>& call)
{
    auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
        .count();
}

double Median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times.empty() ? 0 : times[times.size() / 2];
}

double MedianMicroseconds(const std::function<void()>& call, int calls)
{
    std::vector<double> times;
    for (int i = 0; i < calls; ++i)
        times.push_back(Microseconds(call));
    return Median(times);
}

// The processor time of this thread, in seconds: what one core spent, whatever else the
// machine runs meanwhile.
double ThreadSeconds()
{
#ifdef _WIN32
    FILETIME created, exited, kernel, user;
    if (!GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user))
        return 0;
    auto seconds = [](const FILETIME& t) {
        return ((static_cast<unsigned long long>(t.dwHighDateTime) << 32) | t.dwLowDateTime) / 1e7;
    };
    return seconds(kernel) + seconds(user);
#else
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
#endif
}

// Calls a second a core does: as many calls as take a second of this thread's time.
double CallsPerCoreSecond(const std::function<void()>& call)
{
    const double start = ThreadSeconds();
    long long calls = 0;
    double spent = 0;
    while (spent < 1.0 && calls < 1000000) {
        for (int i = 0; i < 100; ++i)
            call();
        calls += 100;
        spent = ThreadSeconds() - start;
    }
    return spent > 0 ? static_cast<double>(calls) / spent : 0;
}

const char* Verdict(bool met)
{
    return met ? "met" : "NOT MET";
}

} // namespace

int BenchCommand(Args& args, const Options& options)
{
    std::string callsText = "200";
    args.Take("--calls", &callsText);
    const bool noSheet = args.Flag("--no-sheet");
    const bool parts = args.Flag("--parts");
    long long calls = 0;
    int rc;
    if (!Expect(args, 1, 1, &rc))
        return rc;
    if (!ParseNumber(callsText, 1, 100000, &calls))
        return UsageError(args.Called(), "--calls takes a number from 1 to 100000");
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    DriverLibrary driver;
    std::string error;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    auto* documentProperties = driver.Entry<DocumentPropertiesFn>("DrvDocumentProperties");
    auto* deviceCapabilities = driver.Entry<DeviceCapabilitiesFn>("DrvDeviceCapabilities");
    auto* documentSheets = driver.Entry<SheetFn>("DrvDocumentPropertySheets");
    if (!documentProperties || !deviceCapabilities || !documentSheets)
        return Fail(options.driverLibrary + " lacks an entry of the export table");
    if (!StartCallCounts(driver, &error))
        return Fail(error);

    std::vector<BYTE> record(sizeof(DEVMODEEX) * 2);
    std::vector<WCHAR> names(64 * 256);
    HANDLE h = printer.get();
    LPWSTR name = printer.name();

    // The floor: what any answer needs of the platform. One PRINTER_INFO_2 in its two calls,
    // the resource library loaded and released, and the switch key read in one enumeration of
    // two calls (size, then data). The library's path is the driver's, found once.
    WCHAR directory[MAX_PATH] = {};
    DWORD cbDirectory = 0;
    GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(directory),
                               sizeof(directory), &cbDirectory);
    std::u16string resources =
        std::u16string(reinterpret_cast<const char16_t*>(directory)) + u"\\3\\QLMRes.DLL";
    std::vector<BYTE> floorBuffer;
    auto floor = [&] {
        DWORD cb = 0, count = 0;
        GetPrinterW(h, 2, nullptr, 0, &cb);
        floorBuffer.resize(std::max<DWORD>(cb, 1));
        GetPrinterW(h, 2, floorBuffer.data(), cb, &cb);
        if (HMODULE module = LoadLibraryW(reinterpret_cast<LPCWSTR>(resources.c_str())))
            FreeLibrary(module);
        cb = 0;
        EnumPrinterDataExW(h, TEXT("DebugSettings"), nullptr, 0, &cb, &count);
        floorBuffer.resize(std::max<DWORD>(cb, 1));
        EnumPrinterDataExW(h, TEXT("DebugSettings"), floorBuffer.data(), cb, &cb, &count);
    };

    // Where the platform has the spooler's own entries, the application's way goes through
    // them; the host answers as Windows documents them, through the export with a handle.
    auto appDocument = [&] {
#ifdef _WIN32
        DocumentPropertiesW(nullptr, h, name, nullptr, nullptr, 0);
        DocumentPropertiesW(nullptr, h, name, reinterpret_cast<PDEVMODEW>(record.data()), nullptr,
                            DM_OUT_BUFFER);
#else
        documentProperties(nullptr, h, name, nullptr, nullptr, 0);
        documentProperties(nullptr, h, name, reinterpret_cast<PDEVMODEW>(record.data()), nullptr,
                           DM_OUT_BUFFER);
#endif
    };
    auto appCaps = [&](WORD index) {
#ifdef _WIN32
        DeviceCapabilitiesW(name, nullptr, index, nullptr, nullptr);
        DeviceCapabilitiesW(name, nullptr, index, names.data(), nullptr);
#else
        deviceCapabilities(h, name, index, nullptr, nullptr);
        deviceCapabilities(h, name, index, names.data(), nullptr);
#endif
    };
    auto paperNames = [&] { deviceCapabilities(h, name, DC_PAPERNAMES, names.data(), nullptr); };
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.hPrinter = h;
    header.pszPrinterName = name;
    header.pdmOut = reinterpret_cast<PDEVMODEW>(record.data());
    header.cbOut = sizeof(DEVMODEEX);
    header.fMode = DM_OUT_BUFFER;
    Measure measures[] = {
        {"floor: PRINTER_INFO_2, QLMRes.DLL, DebugSettings", floor, 0, false,
         "the tool's own: 2 GetPrinterW, 2 EnumPrinterDataExW, LoadLibraryW, FreeLibrary"},
        {"DrvDeviceCapabilities DC_PAPERNAMES, queue's handle", paperNames, kCAPABILITIES_CALLS,
         true},
        {"DrvDocumentProperties DM_OUT_BUFFER",
         [&] {
             documentProperties(nullptr, h, name, reinterpret_cast<PDEVMODEW>(record.data()),
                                nullptr, DM_OUT_BUFFER);
         },
         kPROPERTIES_CALLS, true},
        {"DrvDocumentPropertySheets default record",
         [&] { documentSheets(nullptr, reinterpret_cast<LPARAM>(&header)); }, kPROPERTIES_CALLS,
         true},
        {"DocumentPropertiesW size + DM_OUT_BUFFER", appDocument, 0, false},
        {"DeviceCapabilitiesW DC_PAPERNAMES count + names", [&] { appCaps(DC_PAPERNAMES); }, 0,
         false},
        {"DeviceCapabilitiesW DC_BINS count + codes", [&] { appCaps(DC_BINS); }, 0, false},
    };
    printf("%-54s %12s  %s\n", "call", "median (us)",
           "the driver's spooler and registry calls, one call");
    for (Measure& m : measures) {
        m.call(); // loaded and warm
        TakeCallCounts();
        m.call();
        m.counts = SummarizeCallCounts(TakeCallCounts());
    }
    // Round after round, each call once a round: whatever else slows the machine meanwhile
    // slows all of them, and the floor and the calls it is held against stay comparable.
    std::vector<std::vector<double>> times(std::size(measures));
    for (long long round = 0; round < calls; ++round) {
        for (size_t i = 0; i < std::size(measures); ++i)
            times[i].push_back(Microseconds(measures[i].call));
    }
    for (size_t i = 0; i < std::size(measures); ++i) {
        Measure& m = measures[i];
        m.median = Median(times[i]);
        std::string detail = m.counts.spoolerText;
        if (!m.counts.registryText.empty())
            detail += (detail.empty() ? "" : ", ") + m.counts.registryText;
        if (m.calls)
            printf("%-54s %12.1f  %s\n", m.name, m.median, m.calls);
        else
            printf("%-54s %12.1f  %lld: %s\n", m.name, m.median,
                   m.counts.spooler + m.counts.registry, detail.c_str());
    }

    // The platform's calls of an export one by one, where the time of an answer goes.
    if (parts) {
        std::vector<BYTE> buffer(64 * 1024);
        WCHAR text[512];
        // Loaded for the strings after its own load and release are measured: a library that
        // stays loaded costs nothing to load again.
        HMODULE resourceModule = nullptr;
        const Measure kParts[] = {
            {"  GetPrinterW level 2, size then data",
             [&] {
                 DWORD cb = 0;
                 GetPrinterW(h, 2, nullptr, 0, &cb);
                 GetPrinterW(h, 2, buffer.data(), DWORD(buffer.size()), &cb);
             }},
            {"  EnumPortsW level 2, one call",
             [&] {
                 DWORD cb = 0, count = 0;
                 EnumPortsW(nullptr, 2, buffer.data(), DWORD(buffer.size()), &cb, &count);
             }},
            {"  EnumPrinterDataExW DebugSettings, one call",
             [&] {
                 DWORD cb = 0, count = 0;
                 EnumPrinterDataExW(h, TEXT("DebugSettings"), buffer.data(), DWORD(buffer.size()),
                                    &cb, &count);
             }},
            {"  EnumPrinterDataExW PrinterDriverData, one call",
             [&] {
                 DWORD cb = 0, count = 0;
                 EnumPrinterDataExW(h, TEXT("PrinterDriverData"), buffer.data(),
                                    DWORD(buffer.size()), &cb, &count);
             }},
            {"  GetPrinterDriverDirectoryW",
             [&] {
                 DWORD cb = 0;
                 GetPrinterDriverDirectoryW(nullptr, nullptr, 1, buffer.data(),
                                            DWORD(buffer.size()), &cb);
             }},
            {"  LoadLibraryW and FreeLibrary of QLMRes.DLL",
             [&] {
                 if (HMODULE module = LoadLibraryW(reinterpret_cast<LPCWSTR>(resources.c_str())))
                     FreeLibrary(module);
             }},
            {"  LoadStringW, 30 strings of the paper list",
             [&] {
                 if (!resourceModule)
                     resourceModule = LoadLibraryW(reinterpret_cast<LPCWSTR>(resources.c_str()));
                 for (UINT id = 5701; id < 5731; id++)
                     LoadStringW(resourceModule, id, text, 512);
             }},
            {"  GetUserNameW",
             [&] {
                 DWORD cch = 512;
                 GetUserNameW(text, &cch);
             }},
        };
        printf("the platform's calls, one by one:\n");
        for (const Measure& m : kParts)
            printf("%-54s %12.1f\n", m.name, MedianMicroseconds(m.call, int(calls)));
        if (resourceModule)
            FreeLibrary(resourceModule);
    }

    // The document sheet opened and closed with OK: its INIT, the first page, the result and
    // the teardown. A queue's first opening also marks it for raw spooling and may store the
    // form count; the second shows what every later opening costs.
    long long sheetCalls[2] = {-1, -1};
    const char* const kSheetNames[2] = {"document sheet opened, OK",
                                        "document sheet opened again, OK"};
    for (int i = 0; i < 2 && !noSheet; i++) {
        std::vector<BYTE> out(sizeof(DEVMODEEX) * 2);
        DOCUMENTPROPERTYHEADER sheet = header;
        sheet.pdmOut = reinterpret_cast<PDEVMODEW>(out.data());
        sheet.fMode = DM_IN_PROMPT | DM_OUT_BUFFER;
        SheetRunReport report;
        TakeCallCounts();
        if (!RunSheet(reinterpret_cast<PFNPROPSHEETUI>(documentSheets),
                      reinterpret_cast<LPARAM>(&sheet), "ok\n", &report, &error) ||
            report.rc <= 0)
            break;
        CallCountSummary counts = SummarizeCallCounts(TakeCallCounts());
        sheetCalls[i] = counts.spooler;
        printf("%-54s %12s  %lld: %s%s%s\n", kSheetNames[i], "-", counts.spooler + counts.registry,
               counts.spoolerText.c_str(), counts.registryText.empty() ? "" : ", ",
               counts.registryText.c_str());
    }

    const double rate = CallsPerCoreSecond(paperNames);
    const double floorMedian = measures[0].median;
    printf("\ngoals, this run:\n");
    for (const Measure& m : measures) {
        if (m.goalCalls)
            printf("  spooler calls, %-48s %5lld (at most %lld)  %s\n", m.name, m.counts.spooler,
                   m.goalCalls, Verdict(m.counts.spooler <= m.goalCalls));
    }
    for (int i = 0; i < 2; i++) {
        if (sheetCalls[i] >= 0)
            printf("  spooler calls, %-48s %5lld (at most %lld)  %s\n", kSheetNames[i],
                   sheetCalls[i], kSHEET_CALLS, Verdict(sheetCalls[i] <= kSHEET_CALLS));
    }
    for (const Measure& m : measures) {
        if (!m.againstFloor || floorMedian <= 0)
            continue;
            // Where the spooler is a service, its calls are the cost; the host's are nearly free.
#ifdef _WIN32
        printf("  time, %-57s %5.2f x the floor's %.1f us (at most %.0f x)  %s\n", m.name,
               m.median / floorMedian, floorMedian, kFLOOR_RATIO,
               Verdict(m.median <= kFLOOR_RATIO * floorMedian));
#else
        printf("  time, %-57s %5.2f x the floor's %.1f us (the goal is Windows')\n", m.name,
               m.median / floorMedian, floorMedian);
#endif
    }
#ifdef _WIN32
    printf("  %-63s %5.0f a second on one core (the goal is the host's)\n",
           "DrvDeviceCapabilities DC_PAPERNAMES", rate);
#else
    printf("  %-63s %5.0f a second on one core (at least %.0f)  %s\n",
           "DrvDeviceCapabilities DC_PAPERNAMES", rate, kHOST_RATE, Verdict(rate >= kHOST_RATE));
#endif
    return 0;
}

extern const Command g_BenchCommand = {
    "bench", "PRINTER [--calls N] [--no-sheet] [--parts]",
    "Measures an application's frequent questions: median time and spooler calls per call.",
    BenchCommand,
    "The floor (one PRINTER_INFO_2 fetch, QLMRes.DLL loaded and released, one enumeration of\n"
    "  DebugSettings), DrvDeviceCapabilities with DC_PAPERNAMES and the queue's handle,\n"
    "  DrvDocumentProperties and DrvDocumentPropertySheets without a sheet (DM_OUT_BUFFER), and\n"
    "  the applications' DocumentPropertiesW and DeviceCapabilitiesW; N calls each (200 by\n"
    "  default) after a warm one. Then the document sheet opened and closed with OK twice (not\n"
    "  with --no-sheet), and the goals: spooler calls per export call, each median against the\n"
    "  floor's (under Windows), and the paper name answers one core gives in a second (on the\n"
    "  host). --parts measures the platform's calls of the exports one by one as well. The\n"
    "  calls counted are the driver's own. A benchmark: the figures vary by machine."};
