// The fade byte by byte, for any weight.
#pragma once

#include <cstdint>

#include "src/render/effects/EffectPass.h"

namespace tdkviz {

// Weights outside of 0 to 256 wrap around; the result is its low 8 bits.
constexpr uint8_t FadeByte(uint8_t byte, uint8_t color, int32_t fade) {
    constexpr uint32_t kRound = 128;
    const uint32_t weight = static_cast<uint32_t>(fade);
    const uint32_t sum = color * weight + byte * (static_cast<uint32_t>(kOffsetUnit) - weight) + kRound;
    return static_cast<uint8_t>(sum >> kOffsetBits);
}

}  // namespace tdkviz
