#include "companions/qzcolor/Adjustments.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

#include "companions/qzcolor/Scratch.h"

namespace qzcolor {

namespace {

constexpr int32_t kColors = 3;  // blue, green, red, in the order of memory
constexpr int32_t kMiddle = 128, kFull = 255;
constexpr int32_t kOne = 256;  // of the factors

std::mutex g_lock;
Adjustments g_adjustments;

bool IsInRange(float value) {
    return std::abs(value) <= 1;  // false for what isn't a number
}

uint8_t Clamp(int32_t value) {
    return static_cast<uint8_t>(std::clamp(value, 0, kFull));
}

int32_t Factor(float value) {
    return static_cast<int32_t>(std::lround(value * kOne));
}

void AdjustColors(const Rows& words, const ColorAdjustments& colors) {
    const int32_t contrast = Factor(1 + colors.Contrast), saturation = Factor(1 + colors.Saturation);
    const int32_t offset = kMiddle + static_cast<int32_t>(std::lround(colors.Brightness * kFull));
    for (int32_t y = 0; y < words.height; ++y) {
        uint8_t* pixel = words.At(y);
        for (int32_t x = 0; x < words.width; ++x, pixel += 4) {
            const int32_t grey = (29 * pixel[0] + 150 * pixel[1] + 77 * pixel[2]) / kOne;
            for (int32_t c = 0; c < kColors; ++c) {
                const int32_t saturated = grey + (pixel[c] - grey) * saturation / kOne;
                pixel[c] = Clamp((saturated - kMiddle) * contrast / kOne + offset);
            }
        }
    }
}

// `above`, `here` and `below` are rows as they were before.
void SharpenRow(const uint8_t* above, const uint8_t* here, const uint8_t* below, uint8_t* to, int32_t width,
                int32_t amount, int32_t threshold) {
    for (int32_t x = 0; x < width; ++x) {
        const int32_t i = 4 * x, left = x > 0 ? i - 4 : i, right = x + 1 < width ? i + 4 : i;
        for (int32_t c = 0; c < kColors; ++c) {
            const int32_t around = (here[left + c] + here[right + c] + above[i + c] + below[i + c]) / 4;
            const int32_t difference = here[i + c] - around;
            if (std::abs(difference) > threshold) to[i + c] = Clamp(here[i + c] + difference * amount / kOne);
        }
    }
}

bool SharpenRows(const Rows& words, int32_t amount, int32_t threshold) {
    const size_t bytes = size_t(words.width) * 4;
    const Scratch scratch(2 * bytes);
    if (!scratch.Bytes()) return false;
    uint8_t* above = scratch.Bytes();
    uint8_t* here = above + bytes;
    std::memcpy(above, words.At(0), bytes);
    for (int32_t y = 0; y < words.height; ++y) {
        std::memcpy(here, words.At(y), bytes);
        const uint8_t* below = y + 1 < words.height ? words.At(y + 1) : here;
        SharpenRow(above, here, below, words.At(y), words.width, amount, threshold);
        std::swap(above, here);
    }
    return true;
}

}  // namespace

bool StoreAdjustments(const ColorAdjustments& adjustments) {
    if (!IsInRange(adjustments.Brightness) || !IsInRange(adjustments.Contrast) || !IsInRange(adjustments.Saturation))
        return false;
    const std::lock_guard guard(g_lock);
    g_adjustments.Colors = adjustments;
    return true;
}

bool StoreAdjustments(const SharpnessAdjustments& adjustments) {
    if (!IsInRange(adjustments.Sharpness)) return false;
    const std::lock_guard guard(g_lock);
    g_adjustments.Sharpness = adjustments;
    return true;
}

Adjustments CurrentAdjustments() {
    const std::lock_guard guard(g_lock);
    return g_adjustments;
}

bool ApplyAdjustments(const Rows& words, int32_t threshold) {
    const Adjustments now = CurrentAdjustments();
    const ColorAdjustments& colors = now.Colors;
    if (colors.Brightness != 0 || colors.Contrast != 0 || colors.Saturation != 0) AdjustColors(words, colors);
    const int32_t amount = Factor(now.Sharpness.Sharpness);
    return amount == 0 || SharpenRows(words, amount, threshold);
}

}  // namespace qzcolor
