// tdkbench: what the hot paths cost, each beside what it is measured against. Options of Google Benchmark.
#include <benchmark/benchmark.h>

#include <windows.h>

#include <tdkplatform.h>

int main(int argc, char** argv) {
    constexpr int kDisplayWidth = 1920, kDisplayHeight = 1080, kDisplayDepth = 32;
    TdkpUseMemoryDisplay(kDisplayWidth, kDisplayHeight, kDisplayDepth);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
