// SpectrumTables: what all spectrum analysers of the process share.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

namespace tdkviz {

inline constexpr int kTransformBands = 256;                    // coefficients of a transform
inline constexpr int kTransformSamples = 2 * kTransformBands;  // samples that it spans
inline constexpr int kFftPoints = kTransformBands / 2;         // complex points in its middle

// Trigonometric tables, rounded to single precision.
struct SpectrumTables {
    SpectrumTables();

    // The tables while anybody has them, else new ones; null without memory. [any]
    static std::shared_ptr<const SpectrumTables> Acquire();

    // The rising half of a sine window: sin((i + 0.5) pi / 512).
    std::array<float, kTransformBands> Window;
    // cos and sin of (j + 0.25) pi / 256.
    std::array<float, kFftPoints> PreCos;
    std::array<float, kFftPoints> PreSin;
    // cos(j pi / 256) sqrt(2 / 256).
    std::array<float, kFftPoints + 1> Post;
    // The index with its 7 bits reversed.
    std::array<uint32_t, kFftPoints> BitReverse;
    // cos t and sin t with t = 2 pi BitReverse[2 i] / 128.
    std::array<float, kFftPoints / 2> TwiddleCos;
    std::array<float, kFftPoints / 2> TwiddleSin;
};

// Loudness of a band: 2 x (20 log10(energy) - 70) limited to 0..255, worked out in integers on the bits of
// the single-precision number. `energy` is 0 or positive.
int32_t LoudnessOfEnergy(float energy);

}  // namespace tdkviz
