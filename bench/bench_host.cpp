// What one read of the host's state costs: the printer data, queue and port calls that the
// driver makes on every DrvDeviceCapabilities, against a private in-memory store (Arg 0) and
// a file store in a temporary home (Arg 1), where each read must notice other processes'
// commits. A write is measured too, for scale: a read after it pays one full freshness check.
#include "platform/host/host.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path& Home()
{
    static const fs::path home = [] {
        fs::path dir = fs::temp_directory_path() / ("qlmbench-host-" + std::to_string(getpid()));
        fs::create_directories(dir);
        host::SetHomeDirectory(dir.string());
        return dir;
    }();
    static struct Cleanup
    {
        ~Cleanup()
        {
            host::CloseStore();
            std::error_code ignored;
            fs::remove_all(home, ignored);
        }
    } cleanup;
    return home;
}

// Opens a fresh store of the kind the benchmark's argument names, with one queue, a few
// ports and a handful of debug switches, and gives an open handle to the queue.
HANDLE Setup(benchmark::State& state)
{
    const fs::path& home = Home();
    std::string path = ":memory:";
    if (state.range(0) == 1) {
        path = (home / "store.db").string();
        host::CloseStore();
        for (const char* suffix : {"", "-wal", "-shm"}) {
            std::error_code ignored;
            fs::remove(path + suffix, ignored);
        }
    }
    std::string error;
    if (!host::OpenStore(path, &error)) {
        state.SkipWithError(error.c_str());
        return nullptr;
    }
    host::PrinterRecord printer;
    printer.name = u"Plan 2440";
    printer.driverName = u"Tarvo Plan Output System 2440";
    printer.portName = u"LPT1:";
    printer.devMode.assign(sizeof(DEVMODEW) + 400, 0);
    auto* dm = reinterpret_cast<DEVMODEW*>(printer.devMode.data());
    dm->dmSize = sizeof(DEVMODEW);
    dm->dmDriverExtra = 400;
    host::AddPrinter(printer);
    for (const char16_t* port : {u"LPT1:", u"COM1:", u"FILE:", u"IP_10.0.0.9"}) {
        host::AddPort({port, u"Local Port", u"Local Port"});
    }
    for (int i = 0; i < 8; ++i) {
        std::u16string name = u"g_bSwitch" + host::Utf8ToUtf16(std::to_string(i));
        host::SetPrinterData(printer.name, {u"DebugSettings", name, REG_DWORD, {1, 0, 0, 0}});
    }
    HANDLE h = nullptr;
    OpenPrinterW(const_cast<LPWSTR>(u"Plan 2440"), &h, nullptr);
    state.SetLabel(state.range(0) == 1 ? "file" : "memory");
    return h;
}

void BM_GetPrinterDataExAbsent(benchmark::State& state)
{
    HANDLE h = Setup(state);
    DWORD value = 0, type = 0, needed = 0;
    for (auto _ : state) {
        DWORD rc = GetPrinterDataExW(h, u"DebugSettings", u"g_bNotThere", &type,
                                     reinterpret_cast<LPBYTE>(&value), sizeof value, &needed);
        benchmark::DoNotOptimize(rc);
    }
    ClosePrinter(h);
}
BENCHMARK(BM_GetPrinterDataExAbsent)->Arg(0)->Arg(1);

void BM_GetPrinterDataExPresent(benchmark::State& state)
{
    HANDLE h = Setup(state);
    DWORD value = 0, type = 0, needed = 0;
    for (auto _ : state) {
        DWORD rc = GetPrinterDataExW(h, u"DebugSettings", u"g_bSwitch3", &type,
                                     reinterpret_cast<LPBYTE>(&value), sizeof value, &needed);
        benchmark::DoNotOptimize(rc);
        benchmark::DoNotOptimize(value);
    }
    ClosePrinter(h);
}
BENCHMARK(BM_GetPrinterDataExPresent)->Arg(0)->Arg(1);

void BM_GetPrinterLevel2(benchmark::State& state)
{
    HANDLE h = Setup(state);
    DWORD needed = 0;
    GetPrinterW(h, 2, nullptr, 0, &needed);
    std::vector<BYTE> buffer(needed + 16);
    for (auto _ : state) {
        BOOL ok = GetPrinterW(h, 2, buffer.data(), DWORD(buffer.size()), &needed);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(buffer.data());
    }
    ClosePrinter(h);
}
BENCHMARK(BM_GetPrinterLevel2)->Arg(0)->Arg(1);

void BM_EnumPortsLevel2(benchmark::State& state)
{
    HANDLE h = Setup(state);
    DWORD needed = 0, returned = 0;
    EnumPortsW(nullptr, 2, nullptr, 0, &needed, &returned);
    std::vector<BYTE> buffer(needed);
    for (auto _ : state) {
        BOOL ok = EnumPortsW(nullptr, 2, buffer.data(), DWORD(buffer.size()), &needed, &returned);
        benchmark::DoNotOptimize(ok);
        benchmark::DoNotOptimize(buffer.data());
    }
    ClosePrinter(h);
}
BENCHMARK(BM_EnumPortsLevel2)->Arg(0)->Arg(1);

void BM_SetPrinterDataEx(benchmark::State& state)
{
    HANDLE h = Setup(state);
    DWORD value = 0;
    for (auto _ : state) {
        ++value;
        DWORD rc = SetPrinterDataExW(h, u"DebugSettings", u"g_bSwitch3", REG_DWORD,
                                     reinterpret_cast<LPBYTE>(&value), sizeof value);
        benchmark::DoNotOptimize(rc);
    }
    ClosePrinter(h);
}
BENCHMARK(BM_SetPrinterDataEx)->Arg(0)->Arg(1);

} // namespace

BENCHMARK_MAIN();
