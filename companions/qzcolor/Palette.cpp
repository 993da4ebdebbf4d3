#include "companions/qzcolor/Palette.h"

#include <array>
#include <memory>
#include <mutex>
#include <new>

namespace qzcolor {

namespace {

constexpr int32_t kBits = 5;
constexpr int32_t kLevels = 1 << kBits;

// By red, green and blue in five bits each: the nearest entry.
using NearestEntries = std::array<uint8_t, kLevels * kLevels * kLevels>;

std::mutex g_lock;
std::shared_ptr<const NearestEntries> g_nearest;

std::shared_ptr<const NearestEntries> Nearest() {
    const std::lock_guard guard(g_lock);
    return g_nearest;
}

// The full range again from five bits.
int32_t Widen(size_t level) {
    return static_cast<int32_t>(level << 3 | level >> 2);
}

uint8_t FindNearest(const PaletteEntry* entries, uint32_t count, size_t index) {
    const int32_t red = Widen(index >> 2 * kBits), green = Widen(index >> kBits & (kLevels - 1)),
                  blue = Widen(index & (kLevels - 1));
    uint32_t nearest = 0;
    int32_t least = INT32_MAX;
    for (uint32_t i = 0; i < count; ++i) {
        const int32_t r = entries[i].Red - red, g = entries[i].Green - green, b = entries[i].Blue - blue;
        const int32_t distance = r * r + g * g + b * b;
        if (distance >= least) continue;
        least = distance;
        nearest = i;
    }
    return static_cast<uint8_t>(nearest);
}

}  // namespace

bool StorePalette(const PaletteEntry* entries, uint32_t count) {
    const std::shared_ptr<NearestEntries> made(new (std::nothrow) NearestEntries);
    if (!made) return false;
    for (size_t i = 0; i < made->size(); ++i) (*made)[i] = FindNearest(entries, count, i);
    const std::lock_guard guard(g_lock);
    g_nearest = made;
    return true;
}

bool HasPalette() {
    return Nearest() != nullptr;
}

void PackThroughPalette(const Rows& words, const Rows& to) {
    const auto nearest = Nearest();
    if (!nearest) return;
    for (int32_t y = 0; y < words.height; ++y) {
        const uint8_t* from = words.At(y);
        uint8_t* out = to.At(y);
        for (int32_t x = 0; x < words.width; ++x, from += 4) {
            out[x] = (*nearest)[size_t(from[2] >> 3) << 2 * kBits | size_t(from[1] >> 3) << kBits | from[0] >> 3];
        }
    }
}

}  // namespace qzcolor
