// What the driver's load-per-string pattern costs on the host: LoadLibraryW, LoadStringW and
// FreeLibrary of the installed resource library, against reading and parsing it afresh.
#include "platform/host/host.h"
#include "platform/host/modules.h"
#include "resources/qlmres.h"

#include "benchhome.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>

namespace {

// The build's QLMRes.DLL, installed into the benchmarks' private home.
const std::u16string& InstalledLibrary()
{
    static const std::u16string path =
        benchhome::PrepareHome() ? host::DriverDirectory() + u"\\3\\QLMRes.DLL" : std::u16string();
    return path;
}

void BM_LoadStringFree(benchmark::State& state)
{
    const std::u16string& path = InstalledLibrary();
    if (path.empty()) {
        state.SkipWithError("QLMRes.DLL is not built");
        return;
    }
    WCHAR buffer[64];
    for (auto _ : state) {
        HMODULE module = LoadLibraryW(path.c_str());
        benchmark::DoNotOptimize(LoadStringW(module, IDS_PAPER_CUSTOM, buffer, 64));
        FreeLibrary(module);
    }
}
BENCHMARK(BM_LoadStringFree);

void BM_LoadStringHeld(benchmark::State& state)
{
    const std::u16string& path = InstalledLibrary();
    HMODULE module = path.empty() ? nullptr : LoadLibraryW(path.c_str());
    if (!module) {
        state.SkipWithError("QLMRes.DLL is not built");
        return;
    }
    WCHAR buffer[64];
    for (auto _ : state) {
        benchmark::DoNotOptimize(LoadStringW(module, IDS_PAPER_CUSTOM, buffer, 64));
    }
    FreeLibrary(module);
}
BENCHMARK(BM_LoadStringHeld);

// What every load would cost without the cache.
void BM_ParseLibrary(benchmark::State& state)
{
    const std::u16string& path = InstalledLibrary();
    if (path.empty()) {
        state.SkipWithError("QLMRes.DLL is not built");
        return;
    }
    std::ifstream in(host::InstalledDriverFilePath(u"QLMRes.DLL", 3), std::ios::binary);
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    for (auto _ : state) {
        benchmark::DoNotOptimize(host::detail::PeImage::Parse(bytes, nullptr));
    }
}
BENCHMARK(BM_ParseLibrary);

} // namespace

BENCHMARK_MAIN();
