#include "src/audio/FrameRate.h"

#include <algorithm>

#include "src/support/Relaxed.h"

namespace tdkviz {
namespace {

Relaxed<uint32_t> frameRate{kDefaultFrameRate};

}  // namespace

uint32_t GetAnalysisFrameRate() {
    return frameRate;
}

void SetAnalysisFrameRate(uint32_t rate) {
    frameRate = std::clamp(rate, kLowestFrameRate, kHighestFrameRate);
}

}  // namespace tdkviz
