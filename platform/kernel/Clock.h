// The one clock of the layer: the machine's, or a stepped one that moves only when it is told to.
#pragma once

#include <cstdint>

namespace tdkp {

constexpr uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr uint64_t kNanosecondsPerMillisecond = 1'000'000;

// Settles the choice of the clock: after the first call it can't be changed any more. Any thread.
bool UsesSteppedClock();

// Nanoseconds since a fixed point. Any thread.
uint64_t Now();
// The same of the machine, whatever the layer's clock is.
uint64_t MachineNow();

// The point of time `milliseconds` from now; kNoDeadline for kInfinite.
uint64_t DeadlineAfter(uint32_t milliseconds);

}  // namespace tdkp
