// What the driver's load-per-string pattern costs on the host: LoadLibraryW, LoadStringW and
// FreeLibrary of the installed resource library, against reading and parsing it afresh.
#include "platform/host/host.h"
#include "platform/host/modules.h"
#include "resources/qlmres.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

// The build's QLMRes.DLL, beside this program's directory, installed into a private home.
const std::u16string& InstalledLibrary()
{
    static const std::u16string path = [] {
        const fs::path built = fs::read_symlink("/proc/self/exe").parent_path().parent_path() /
                               "resources" / "QLMRes.DLL";
        const fs::path home = fs::temp_directory_path() / ("qlmbench-" + std::to_string(getpid()));
        fs::create_directories(home);
        static struct Cleanup
        {
            fs::path dir;
            ~Cleanup()
            {
                std::error_code ignored;
                fs::remove_all(dir, ignored);
            }
        } cleanup{home};
        host::SetHomeDirectory(home.string());
        if (!host::InstallDriverFile(built.string(), u"QLMRes.DLL", 3)) {
            return std::u16string();
        }
        return host::DriverDirectory() + u"\\3\\QLMRes.DLL";
    }();
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
