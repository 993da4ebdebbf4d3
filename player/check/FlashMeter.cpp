#include "player/check/FlashMeter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tdkplay::check {
namespace {

constexpr int kColumns = 16, kRows = 12;
constexpr float kSwing = 0.1F;
constexpr float kDark = 0.8F;
constexpr size_t kQuarter = kColumns * kRows / 4;
// A change of the whole picture takes this many pictures at most.
constexpr int kTogether = 3;

// Relative luminance, 0 to 1, of a channel's value by itself.
const std::array<float, 256>& Linear() {
    static const std::array<float, 256> table = [] {
        std::array<float, 256> made;
        for (size_t i = 0; i < made.size(); ++i) {
            const double value = static_cast<double>(i) / 255;
            made[i] = static_cast<float>(value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
        }
        return made;
    }();
    return table;
}

float Luminance(uint32_t pixel) {
    const std::array<float, 256>& linear = Linear();
    return 0.2126F * linear[pixel >> 16 & 255] + 0.7152F * linear[pixel >> 8 & 255] + 0.0722F * linear[pixel & 255];
}

std::vector<float> BlockLuminances(const std::vector<uint32_t>& pixels, int width, int height) {
    std::vector<float> sums(kColumns * kRows), counts(kColumns * kRows);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto block = static_cast<size_t>(y * kRows / height * kColumns + x * kColumns / width);
            sums[block] +=
                Luminance(pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]);
            counts[block] += 1;
        }
    }
    for (size_t i = 0; i < sums.size(); ++i) sums[i] /= std::max(1.0F, counts[i]);
    return sums;
}

}  // namespace

FlashMeter::FlashMeter(int rate) : rate_(rate), blocks_(kColumns * kRows) {}

void FlashMeter::Follow(Block& block, float luminance) const {
    if (block.IsRising ? luminance > block.Extreme : luminance < block.Extreme) block.Extreme = luminance;
    if (std::fabs(luminance - block.Extreme) < kSwing || std::min(luminance, block.Extreme) >= kDark) return;
    block.IsRising = !block.IsRising;
    block.Extreme = luminance;
    block.LastSwing = picture_;
}

void FlashMeter::Add(const std::vector<uint32_t>& pixels, int width, int height) {
    const std::vector<float> luminances = BlockLuminances(pixels, width, height);
    size_t rises = 0, falls = 0;
    for (size_t i = 0; i < blocks_.size(); ++i) {
        Follow(blocks_[i], luminances[i]);
        if (blocks_[i].LastSwing < 0 || blocks_[i].LastSwing <= picture_ - kTogether) continue;
        ++(blocks_[i].IsRising ? rises : falls);
    }
    const bool isRise = rises > kQuarter && rises >= falls;
    const bool isFall = falls > kQuarter && falls > rises;
    if ((isRise && (swings_.empty() || !lastWasRise_)) || (isFall && (swings_.empty() || lastWasRise_))) {
        swings_.push_back(picture_);
        lastWasRise_ = isRise;
    }
    while (!swings_.empty() && swings_.front() <= picture_ - rate_) swings_.pop_front();
    mostSwings_ = std::max(mostSwings_, swings_.size());
    ++picture_;
}

}  // namespace tdkplay::check
