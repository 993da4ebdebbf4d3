// The frame rate of the whole add-on, in frames a second. [any]
#pragma once

#include <cstdint>

namespace tdkviz {

inline constexpr uint32_t kLowestFrameRate = 10;
inline constexpr uint32_t kHighestFrameRate = 30;
inline constexpr uint32_t kDefaultFrameRate = 20;

uint32_t GetAnalysisFrameRate();

// Limits `rate` to kLowestFrameRate..kHighestFrameRate. Analysers follow with their next block, the
// audio processor with the next format.
void SetAnalysisFrameRate(uint32_t rate);

}  // namespace tdkviz
