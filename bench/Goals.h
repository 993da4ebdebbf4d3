// What the hot paths are held to: each goal a ratio of two times taken in one run, for two kinds of processor.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "src/render/effects/InstructionSet.h"

namespace bench {

// What a goal is measured with.
struct Trial {
    tdkviz::InstructionSet set;  // no wider vectors than these
    double seconds;              // to spend
};

// Our time divided by the peer's, or nothing if the peer isn't there.
using Measure = std::function<std::optional<double>(const Trial&)>;

struct Goal {
    std::string name, peer;
    bool isSpeedUp;              // the limits say how many times faster at least, else how much of the time at most
    double anyLimit, wideLimit;  // on any processor of 64 bits; with vectors of 256 bits or more
    Measure measure;
};

// A number that is told without a limit.
struct Measurement {
    std::string name, unit;
    std::function<std::optional<double>()> measure;  // nothing if it can't be taken
};

// Goals stand in the order in which they were added; each is a benchmark "Goal/<name>/any" and "/wide" with the
// counters ratio, goal and met.
void AddGoal(Goal goal);
// Each is a benchmark "Measured/<name>" with the counter value.
void AddMeasurement(Measurement measurement);
// After all were added. `seconds` is spent on each trial of a goal.
void RegisterGoals(double seconds);

// The best times of one call each, taken in turns, divided.
double Contest(const std::function<void()>& ours, const std::function<void()>& theirs, double seconds);

// The goals of each subject, for main.
void AddEffectGoals();
void AddSpectrumGoals();
void AddConverterGoals();
void AddChainGoals();
void AddPlayerMeasurements();

}  // namespace bench
