#include "platform/display/memory/FixedPalette.h"

namespace tdkp {
namespace {

constexpr int kLevels = 6;
constexpr int kCubeSize = kLevels * kLevels * kLevels;
constexpr int kGreys = kPaletteSize - kCubeSize;

Palette MakeFixedPalette() {
    Palette palette = {};
    for (int index = 0; index < kCubeSize; ++index) palette[index] = CubeColor(kLevels, index);
    for (int grey = 0; grey < kGreys; ++grey)
        palette[kCubeSize + grey] = static_cast<uint32_t>((grey + 1) * 255 / (kGreys + 1)) * 0x010101u;
    return palette;
}

}  // namespace

uint32_t CubeColor(int levels, int index) {
    const auto level = [levels](int step) { return static_cast<uint32_t>(step * 255 / (levels - 1)); };
    return level(index / (levels * levels)) << 16 | level(index / levels % levels) << 8 | level(index % levels);
}

const Palette& FixedPalette() {
    static const Palette palette = MakeFixedPalette();
    return palette;
}

}  // namespace tdkp
