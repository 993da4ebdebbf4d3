#include "src/audio/SpectrumTables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <mutex>
#include <new>
#include <numbers>

namespace tdkviz {
namespace {

using std::numbers::pi;

constexpr int kFftBits = 7;
static_assert(1 << kFftBits == kFftPoints);

constexpr int kFractionEntries = 64;
constexpr int kFractionBits = 6;
constexpr int kMantissaBits = 23;
constexpr int kExponentBias = 127;
constexpr int kLog2Unit = 256;  // log2 in units of 1/256
// 6165 / 2^18 is 20 log10(2) / 256. The offset takes away the exponent's bias and adds the rounding half.
constexpr int kDecibelScale = 6165;
constexpr int kDecibelShift = 18;
constexpr int kDecibelOffset = kExponentBias * kLog2Unit * kDecibelScale - (1 << (kDecibelShift - 1));
constexpr int kSilentDecibels = 70;
constexpr int kLoudest = 255;

using FractionTable = std::array<int32_t, kFractionEntries>;

FractionTable MakeLog2Fraction() {
    FractionTable table;
    for (int i = 0; i < kFractionEntries; ++i) {
        table[i] = static_cast<int32_t>(kLog2Unit * std::log2(1 + (i + 0.5) / kFractionEntries) + 0.5);
    }
    return table;
}

const FractionTable& Log2Fraction() {
    static const FractionTable table = MakeLog2Fraction();
    return table;
}

uint32_t ReverseBits(uint32_t value) {
    uint32_t reversed = 0;
    for (int bit = 0; bit < kFftBits; ++bit, value >>= 1) reversed = reversed << 1 | (value & 1);
    return reversed;
}

}  // namespace

SpectrumTables::SpectrumTables() {
    for (int i = 0; i < kTransformBands; ++i) {
        Window[i] = static_cast<float>(std::sin((i + 0.5) * pi / kTransformSamples));
    }
    for (int j = 0; j < kFftPoints; ++j) {
        PreCos[j] = static_cast<float>(std::cos((j + 0.25) * pi / kTransformBands));
        PreSin[j] = static_cast<float>(std::sin((j + 0.25) * pi / kTransformBands));
        BitReverse[j] = ReverseBits(j);
    }
    for (int j = 0; j <= kFftPoints; ++j) {
        Post[j] = static_cast<float>(std::cos(j * pi / kTransformBands) * std::sqrt(2.0 / kTransformBands));
    }
    for (int i = 0; i < kFftPoints / 2; ++i) {
        const double angle = 2 * pi * BitReverse[2 * i] / kFftPoints;
        TwiddleCos[i] = static_cast<float>(std::cos(angle));
        TwiddleSin[i] = static_cast<float>(std::sin(angle));
    }
}

std::shared_ptr<const SpectrumTables> SpectrumTables::Acquire() {
    static std::mutex guard;
    static std::weak_ptr<const SpectrumTables> shared;
    const std::lock_guard<std::mutex> lock(guard);
    auto tables = shared.lock();
    if (!tables) {
        try {
            tables = std::make_shared<const SpectrumTables>();
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
        shared = tables;
    }
    return tables;
}

int32_t LoudnessOfEnergy(float energy) {
    const auto bits = std::bit_cast<uint32_t>(energy);
    const uint32_t mantissa = bits >> (kMantissaBits - kFractionBits) & (kFractionEntries - 1);
    const auto exponent = static_cast<int32_t>(bits >> kMantissaBits);
    const int32_t log2 = Log2Fraction()[mantissa] + kLog2Unit * exponent;
    const int32_t decibels = (log2 * kDecibelScale - kDecibelOffset) >> kDecibelShift;
    return std::clamp(2 * (decibels - kSilentDecibels), 0, kLoudest);
}

}  // namespace tdkviz
