// What one DrvDeviceCapabilities call costs on the host, and what it is made of. Each call
// builds and releases its whole configuration, as applications see it on Windows: the debug
// switches, the configuration with its resource library and user forms, the queue's record,
// and the answer itself.
#include "driver/config/tvoconfg.h"
#include "driver/config/tvodev.h"
#include "driver/devmode/tvodm.h"
#include "driver/entry/tvouidrv.h"
#include "driver/foundation/qlmtrace.h"
#include "driver/foundation/qlmswitches.h"
#include "driver/foundation/qlmutils.h"
#include "driver/foundation/wstr.h"
#include "platform/host/host.h"

#include "benchhome.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

// A private home with the built resource library installed and one queue of a 2440 with two
// user forms; the handle stays open for the program's life.
HANDLE Printer()
{
    static HANDLE hPrinter = [] {
        HANDLE h = benchhome::Plan2440();
        TVOPrinterConfiguration config(TEXT("Tarvo Plan Output System 2440"));
        config.m_UserFormCount = 2;
        const WCHAR* kNames[] = {TEXT("Banner"), TEXT("Poster")};
        for (int i = 0; i < 2; i++) {
            WstrCopy(config.m_UserForms[i].name, 32, kNames[i]);
            config.m_UserForms[i].width = 9144;
            config.m_UserForms[i].length = 30000 + i;
        }
        config.setUserForms(h);
        return h;
    }();
    return hPrinter;
}

void BM_DrvDeviceCapabilities(benchmark::State& state)
{
    HANDLE h = Printer();
    WORD index = static_cast<WORD>(state.range(0));
    TVONTUIDriver driver;
    LONG count =
        static_cast<LONG>(driver.DrvDeviceCapabilities(h, nullptr, index, nullptr, nullptr));
    std::vector<BYTE> buffer(static_cast<size_t>(count > 0 ? count : 1) * 128);
    for (auto _ : state) {
        DWORD answer = driver.DrvDeviceCapabilities(h, nullptr, index, buffer.data(), nullptr);
        benchmark::DoNotOptimize(answer);
    }
    // Answers a second of one core's time: the host's goal is 50,000 paper name answers.
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(index == DC_PAPERNAMES ? "DC_PAPERNAMES"
                   : index == DC_BINS     ? "DC_BINS"
                                          : "DC_ENUMRESOLUTIONS");
}
BENCHMARK(BM_DrvDeviceCapabilities)->Arg(DC_PAPERNAMES)->Arg(DC_BINS)->Arg(DC_ENUMRESOLUTIONS);

// The parts of one call, each on its own.
void BM_Part_ReadDebugSwitches(benchmark::State& state)
{
    HANDLE h = Printer();
    // Inside an entry the traces are off, as they are here.
    TVOTraceFlagScope scope(0);
    for (auto _ : state)
        ReadAllDebugSwitches(h);
}
BENCHMARK(BM_Part_ReadDebugSwitches);

void BM_Part_ConfigurationWithForms(benchmark::State& state)
{
    HANDLE h = Printer();
    for (auto _ : state) {
        TVOPrinterConfiguration config(QLMGetDriverName(h));
        config.setPrinterHandle(h);
        config.getUserForms(h);
        benchmark::DoNotOptimize(config.m_UserFormCount);
    }
}
BENCHMARK(BM_Part_ConfigurationWithForms);

void BM_Part_PrinterInfo(benchmark::State& state)
{
    HANDLE h = Printer();
    for (auto _ : state) {
        LPBYTE p = QLMGetPrinterInfo(h, 2);
        benchmark::DoNotOptimize(p);
        GlobalFree(p);
    }
}
BENCHMARK(BM_Part_PrinterInfo);

void BM_Part_DeviceObject(benchmark::State& state)
{
    for (auto _ : state) {
        TVODevice device;
        benchmark::DoNotOptimize(device.m_pConfig);
    }
}
BENCHMARK(BM_Part_DeviceObject);

void BM_Part_QueueRecord(benchmark::State& state)
{
    HANDLE h = Printer();
    for (auto _ : state) {
        TVODevMode devMode(h);
        devMode.getDeviceMode(h, nullptr, TEXT(""), nullptr);
        DEVMODEEX copy;
        memcpy(static_cast<void*>(&copy), devMode.m_lpDM, sizeof(copy));
        benchmark::DoNotOptimize(copy.dmPublic.dmPaperSize);
    }
}
BENCHMARK(BM_Part_QueueRecord);

void BM_Part_PaperNamesAnswer(benchmark::State& state)
{
    HANDLE h = Printer();
    TVOPrinterConfiguration config(TEXT("Tarvo Plan Output System 2440"));
    config.setPrinterHandle(h);
    config.getUserForms(h);
    TVODevMode devMode;
    std::vector<WCHAR> names(64 * 64);
    for (auto _ : state) {
        int n = config.getPaperInfo(devMode.m_lpDM, nullptr, DC_PAPERNAMES);
        n += config.getPaperInfo(devMode.m_lpDM, names.data(), DC_PAPERNAMES);
        benchmark::DoNotOptimize(n);
    }
}
BENCHMARK(BM_Part_PaperNamesAnswer);

} // namespace

BENCHMARK_MAIN();
