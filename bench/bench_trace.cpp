// What tracing costs a function when its flags are off, and when its lines are printed.
#include "driver/foundation/qlmtrace.h"
#include "driver/foundation/tvofixed.h"

#include <benchmark/benchmark.h>

namespace {

int TracedFunction(int x)
{
    QLM_TRACE_SCOPE(TEXT("TracedFunction"), g_bTraceTVODevMode);
    Trace(TEXT("x is %d"), x);
    return x + 1;
}

void BM_ScopeAndLineWithFlagsOff(benchmark::State& state)
{
    g_bTraceTVODevMode = FALSE;
    g_bTraceFunctionEntry = FALSE;
    int x = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(x = TracedFunction(x));
}
BENCHMARK(BM_ScopeAndLineWithFlagsOff);

void BM_ScopeAndLineFormatted(benchmark::State& state)
{
    // Lines are formatted and handed to OutputDebugStringW, which the host drops.
    g_bTraceTVODevMode = TRUE;
    int x = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(x = TracedFunction(x));
    g_bTraceTVODevMode = FALSE;
}
BENCHMARK(BM_ScopeAndLineFormatted);

void BM_FixedToString(benchmark::State& state)
{
    TVOFixed value(25.4);
    for (auto _ : state)
        benchmark::DoNotOptimize(value.toString(kFIXED_MM));
}
BENCHMARK(BM_FixedToString);

} // namespace

BENCHMARK_MAIN();
