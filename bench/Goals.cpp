#include "bench/Goals.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include <benchmark/benchmark.h>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

std::vector<Goal>& Goals() {
    static std::vector<Goal> goals;
    return goals;
}

std::vector<Measurement>& Measurements() {
    static std::vector<Measurement> measurements;
    return measurements;
}

double SecondsOf(const std::function<void()>& work, int calls) {
    const auto start = Clock::now();
    for (int call = 0; call < calls; ++call) work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Short enough to fall between two interruptions, long enough for the clock.
int CallsPerRound(const std::function<void()>& work) {
    constexpr double kRoundSeconds = 0.0005;
    work();
    const double once = std::max(SecondsOf(work, 3) / 3, 1e-9);
    return std::max(1, static_cast<int>(kRoundSeconds / once));
}

void RunGoal(benchmark::State& state, const Goal& goal, bool isWide, double seconds) {
    using tdkviz::InstructionSet;
    const InstructionSet available = tdkviz::BestInstructionSet();
    const bool isThere = available >= (isWide ? InstructionSet::kVector256 : InstructionSet::kVector128);
    const Trial trial{isWide ? available : InstructionSet::kVector128, seconds};
    std::optional<double> time;
    for (auto _ : state) {
        if (!isThere) break;
        tdkviz::LimitInstructionSet(trial.set);
        time = goal.measure(trial);
        tdkviz::LimitInstructionSet(available);
    }
    if (!time) {
        state.SkipWithError(isThere ? "not measured: the peer isn't installed" : "not measured: no such vectors");
        return;
    }
    const double limit = isWide ? goal.wideLimit : goal.anyLimit;
    const double ratio = goal.isSpeedUp ? 1 / *time : *time;
    state.counters["ratio"] = ratio;
    state.counters["goal"] = limit;
    state.counters["met"] = (goal.isSpeedUp ? ratio >= limit : ratio <= limit) ? 1 : 0;
    state.counters["speed_up"] = goal.isSpeedUp ? 1 : 0;
    state.SetLabel(goal.peer);
}

void RunMeasurement(benchmark::State& state, const Measurement& measurement) {
    std::optional<double> value;
    for (auto _ : state) value = measurement.measure();
    if (!value) return state.SkipWithError("not measured");
    state.counters["value"] = *value;
    state.SetLabel(measurement.unit);
}

}  // namespace

void AddMeasurement(Measurement measurement) {
    Measurements().push_back(std::move(measurement));
}

void AddGoal(Goal goal) {
    Goals().push_back(std::move(goal));
}

void RegisterGoals(double seconds) {
    for (const Goal& goal : Goals()) {
        for (const bool isWide : {false, true}) {
            const std::string name = "Goal/" + goal.name + (isWide ? "/wide" : "/any");
            benchmark::RegisterBenchmark(name.c_str(), RunGoal, goal, isWide, seconds)->Iterations(1);
        }
    }
    for (const Measurement& measurement : Measurements()) {
        const std::string name = "Measured/" + measurement.name;
        benchmark::RegisterBenchmark(name.c_str(), RunMeasurement, measurement)->Iterations(1);
    }
}

double Contest(const std::function<void()>& ours, const std::function<void()>& theirs, double seconds) {
    const int ourCalls = CallsPerRound(ours), theirCalls = CallsPerRound(theirs);
    double best = std::numeric_limits<double>::max(), theirBest = best;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    do {
        best = std::min(best, SecondsOf(ours, ourCalls) / ourCalls);
        theirBest = std::min(theirBest, SecondsOf(theirs, theirCalls) / theirCalls);
    } while (Clock::now() < end);
    return best / theirBest;
}

}  // namespace bench
