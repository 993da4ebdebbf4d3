#include "src/audio/SpectrumTables.h"

#include <cmath>
#include <mutex>
#include <new>
#include <numbers>

namespace tdkviz {
namespace {

using std::numbers::pi;

constexpr int kFftBits = 7;
static_assert(1 << kFftBits == kFftPoints);

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
    }
    const auto post = [](int j) {
        return static_cast<float>(std::cos(j * pi / kTransformBands) * std::sqrt(2.0 / kTransformBands));
    };
    for (int p = 0; p < kFftPoints; ++p) {
        // Blocks of 4 x 4 points come out transposed.
        const int point = (p & ~15) | (p & 3) << 2 | (p >> 2 & 3);
        const int j = static_cast<int>(ReverseBits(static_cast<uint32_t>(point)));
        BandAt[p] = static_cast<uint8_t>(2 * j);
        BandAt[kFftPoints + p] = static_cast<uint8_t>(kTransformBands - 1 - 2 * j);
        PostP[p] = post(j);
        PostQ[p] = post(kFftPoints - j);
    }
    for (int i = 0; i < kFftPoints / 2; ++i) {
        const double angle = 2 * pi * ReverseBits(2 * i) / kFftPoints;
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

int32_t LoudnessScale::LoudnessOfLeading(int32_t leading) {
    constexpr int kLog2Unit = 256;  // log2 in units of 1/256
    // 6165 / 2^18 is 20 log10(2) / 256. The offset takes away the exponent's bias and adds the rounding half.
    constexpr int kDecibelScale = 6165, kDecibelShift = 18;
    constexpr int kDecibelOffset = kExponentBias * kLog2Unit * kDecibelScale - (1 << (kDecibelShift - 1));
    constexpr int kSilentDecibels = 70, kLoudest = 255;
    const int32_t fraction = leading & ((1 << kFractionBits) - 1), exponent = leading >> kFractionBits;
    const double mantissa = 1 + (fraction + 0.5) / (1 << kFractionBits);
    const int32_t log2 = static_cast<int32_t>(kLog2Unit * std::log2(mantissa) + 0.5) + kLog2Unit * exponent;
    const int32_t decibels = (log2 * kDecibelScale - kDecibelOffset) >> kDecibelShift;
    return std::clamp(2 * (decibels - kSilentDecibels), 0, kLoudest);
}

LoudnessScale::Table LoudnessScale::MakeTable() {
    Table table;
    for (int i = 0; i < kEntries; ++i) table[i] = static_cast<uint8_t>(LoudnessOfLeading(kFirstLeading + i));
    return table;
}

LoudnessScale::LoudnessScale()
    : table_([] {
          static const Table table = MakeTable();
          return table.data();
      }()) {}

}  // namespace tdkviz
