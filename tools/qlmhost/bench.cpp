// The bench command: what an application's most frequent questions cost, per call, and how
// many spooler and registry calls the driver makes for each. Both tools run it, so
// scripts/test-wine.sh measures the host and Wine in the same run. A benchmark, never a test.
#include "commands.h"
#include "driverlib.h"

#include "driver/devmode/devmodeex.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using DocumentPropertiesFn = LONG(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW, DWORD);
using DeviceCapabilitiesFn = DWORD(HANDLE, PWSTR, WORD, void*, PDEVMODEW);

struct Measure
{
    const char* name;
    std::function<void()> call;
};

double MedianMicroseconds(const std::function<void()>& call, int calls)
{
    std::vector<double> times;
    for (int i = 0; i < calls; ++i) {
        auto start = std::chrono::steady_clock::now();
        call();
        times.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
                .count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int BenchCommand(Args& args, const Options& options)
{
    std::string callsText = "200";
    args.Take("--calls", &callsText);
    long long calls = 0;
    int rc;
    if (!Expect(args, "bench", 1, 1, &rc))
        return rc;
    if (!ParseNumber(callsText, 1, 100000, &calls))
        return UsageError(FindCommand("bench"), "--calls takes a number from 1 to 100000");
    OpenedPrinter printer(args.Rest()[0]);
    if (!printer.get())
        return Fail("no printer named '" + args.Rest()[0] + "'");
    DriverLibrary driver;
    std::string error;
    if (!driver.Load(options.driverLibrary, &error))
        return Fail(error);
    auto* documentProperties = driver.Entry<DocumentPropertiesFn>("DrvDocumentProperties");
    auto* deviceCapabilities = driver.Entry<DeviceCapabilitiesFn>("DrvDeviceCapabilities");
    if (!documentProperties || !deviceCapabilities)
        return Fail(options.driverLibrary + " lacks an entry of the export table");
    if (!StartCallCounts(driver, &error))
        return Fail(error);

    std::vector<BYTE> record(sizeof(DEVMODEEX) * 2);
    std::vector<WCHAR> names(64 * 256);
    HANDLE h = printer.get();
    LPWSTR name = printer.name();
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
    const Measure measures[] = {
        {"DocumentPropertiesW size + DM_OUT_BUFFER", appDocument},
        {"DeviceCapabilitiesW DC_PAPERNAMES count + names", [&] { appCaps(DC_PAPERNAMES); }},
        {"DeviceCapabilitiesW DC_BINS count + codes", [&] { appCaps(DC_BINS); }},
        {"DrvDeviceCapabilities DC_PAPERNAMES with the queue's handle",
         [&] {
             deviceCapabilities(h, name, DC_PAPERNAMES, nullptr, nullptr);
             deviceCapabilities(h, name, DC_PAPERNAMES, names.data(), nullptr);
         }},
    };
    printf("%-62s %12s  %s\n", "call", "median (us)", "spooler and registry calls, one call");
    for (const Measure& m : measures) {
        m.call(); // loaded and warm
        TakeCallCounts();
        m.call();
        std::vector<std::pair<std::string, long long>> counts = TakeCallCounts();
        double median = MedianMicroseconds(m.call, int(calls));
        long long total = 0;
        std::string detail;
        for (const auto& [callName, count] : counts) {
            total += count;
            detail += (detail.empty() ? "" : ", ") + std::to_string(count) + " " + callName;
        }
        printf("%-62s %12.1f  %lld: %s\n", m.name, median, total, detail.c_str());
    }
    return 0;
}

extern const Command g_BenchCommand = {
    "bench", "PRINTER [--calls N]",
    "Measures an application's frequent questions: median time and spooler calls per call.",
    BenchCommand,
    "DocumentPropertiesW (size, then DM_OUT_BUFFER), DeviceCapabilitiesW with DC_PAPERNAMES\n"
    "  and DC_BINS (count, then output), and DrvDeviceCapabilities with the queue's handle;\n"
    "  N calls each (200 by default) after a warm one. The calls counted are the driver's own\n"
    "  spooler and registry calls during one call. A benchmark: the figures vary by machine."};
