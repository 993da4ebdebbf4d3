// SpectrumTables: what all spectrum analysers of the process share.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
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
    // Entry p of a transform is the coefficient of this band; see TransformSamples.
    std::array<uint8_t, kTransformBands> BandAt;
    // cos(j pi / 256) sqrt(2 / 256) and the same of 128 - j, where 2 j is the band of the entry.
    std::array<float, kFftPoints> PostP;
    std::array<float, kFftPoints> PostQ;
    // cos t and sin t with t = 2 pi r / 128, r being 2 i with its 7 bits reversed.
    std::array<float, kFftPoints / 2> TwiddleCos;
    std::array<float, kFftPoints / 2> TwiddleSin;
};

// Loudness of a band: 2 x (20 log10(energy) - 70) limited to 0..255, worked out in integers on the exponent
// and the first six bits of the single-precision number. What those can give stands in a table, made once,
// by the first.
class LoudnessScale {
public:
    LoudnessScale();

    // The step of the table for an energy, which is 0 or positive.
    static int32_t StepOfEnergy(float energy) {
        const int32_t leading = static_cast<int32_t>(std::bit_cast<uint32_t>(energy) >> kDroppedBits);
        return std::clamp(leading - kFirstLeading, 0, kEntries - 1);
    }
    int32_t OfStep(int32_t step) const { return table_[step]; }

private:
    static constexpr int kFractionBits = 6;
    static constexpr int kDroppedBits = 23 - kFractionBits;  // of the mantissa
    static constexpr int kExponentBias = 127;
    // All below 2^11 is silence, all from 2^34 on the loudest.
    static constexpr int kFirstExponent = 11, kEndExponent = 34;
    static constexpr int kFirstLeading = (kExponentBias + kFirstExponent) << kFractionBits;
    static constexpr int kEntries = (kEndExponent - kFirstExponent) << kFractionBits;
    using Table = std::array<uint8_t, kEntries>;
    static Table MakeTable();
    static int32_t LoudnessOfLeading(int32_t leading);

    const uint8_t* const table_;
};

}  // namespace tdkviz
