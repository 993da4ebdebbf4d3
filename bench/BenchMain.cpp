// tdkbench: what the hot paths cost, each against what it is held to. Without options it prints the table of
// goals and what is measured without one; --short takes less than a minute; other options are those of Google
// Benchmark: --benchmark_filter=. runs everything, --benchmark_format=json is for machines.
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include <windows.h>

#include <tdkplatform.h>

#include "bench/GoalReporter.h"
#include "bench/Goals.h"

int main(int argc, char** argv) {
    constexpr int kDisplayWidth = 1920, kDisplayHeight = 1080, kDisplayDepth = 32;
    constexpr double kSeconds = 1.5, kShortSeconds = 0.3;
    TdkpUseMemoryDisplay(kDisplayWidth, kDisplayHeight, kDisplayDepth);
    bool isShort = false, isForMachines = false, hasFilter = false;
    std::vector<char*> arguments;
    for (int i = 0; i < argc; ++i) {
        const bool isOwn = std::strcmp(argv[i], "--short") == 0;
        isShort |= isOwn;
        hasFilter |= std::strncmp(argv[i], "--benchmark_filter", 18) == 0;
        isForMachines |= std::strncmp(argv[i], "--benchmark_format", 18) == 0;
        if (!isOwn) arguments.push_back(argv[i]);
    }
    char tablesOnly[] = "--benchmark_filter=^(Goal|Measured)/";
    if (!hasFilter) arguments.push_back(tablesOnly);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);

    bench::AddEffectGoals();
    bench::AddSpectrumGoals();
    bench::AddConverterGoals();
    bench::AddChainGoals();
    bench::AddPlayerMeasurements();
    bench::RegisterGoals(isShort ? kShortSeconds : kSeconds);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    bench::GoalReporter table;
    benchmark::RunSpecifiedBenchmarks(isForMachines ? nullptr : &table);
    benchmark::Shutdown();
    return 0;
}
