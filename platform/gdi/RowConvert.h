// Rows of pixels from one raster format to another.
#pragma once

#include <cstdint>

#include "platform/gdi/Raster.h"

namespace tdkp {

// How colours become bits when the target has one bit and the source more: the key colour gives 1, all
// others 0. Without a key the nearest of the two palette entries is taken.
struct MonoKey {
    bool use = false;
    uint32_t color = 0;
};

// Knows everything that is the same for all rows of one job. Holds a small memory of palette look-ups.
class RowConverter {
public:
    RowConverter(const Raster& from, const Raster& to, const MonoKey& key);

    // True if the bits can be copied as they stand.
    bool Same() const { return same_; }
    // `count` pixels. Rows begin at their raster's first pixel; nothing outside of the counted pixels is written.
    void Convert(const uint8_t* from, int fromX, uint8_t* to, int toX, int count);

private:
    using RowFunction = void (*)(RowConverter& self, const uint8_t* from, int fromX, uint8_t* to, int toX, int count);
    struct Entry {
        uint32_t color = 0xFFFFFFFF;  // no colour
        uint32_t index = 0;
    };
    static constexpr int kEntries = 256;

    template <PixelFormat kFrom, PixelFormat kTo>
    static void Row(RowConverter& self, const uint8_t* from, int fromX, uint8_t* to, int toX, int count);
    template <PixelFormat kFrom>
    static RowFunction ChooseTarget(PixelFormat to);
    static RowFunction Choose(PixelFormat from, PixelFormat to);
    uint32_t FindIndex(uint32_t color);

    const uint32_t* fromPalette_;
    const uint32_t* toPalette_;
    const MonoKey key_;
    bool same_;
    RowFunction row_;
    Entry entries_[kEntries];
};

// Copies `count` pixels of one format, from bit to bit where pixels are bits. The rows may overlap.
void CopyRow(PixelFormat format, const uint8_t* from, int fromX, uint8_t* to, int toX, int count);

}  // namespace tdkp
