// The colours of an indexed display that can choose its own.
#pragma once

#include <array>
#include <cstdint>

namespace tdkp {

constexpr int kPaletteSize = 256;
using Palette = std::array<uint32_t, kPaletteSize>;  // 0x00RRGGBB

// A cube of `levels` steps of red, green and blue each (levels^3 colours, black first, white last).
// `index` is below levels^3.
uint32_t CubeColor(int levels, int index);

// Entries 0 to 215 are the cube of 6 levels, 216 to 255 greys between its own.
const Palette& FixedPalette();

}  // namespace tdkp
