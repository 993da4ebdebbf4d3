// The picture that Probe.tkv paints when it is asked for one.
#pragma once

#include <cstdint>

// 0x00RRGGBB of a pixel, from the top left corner. All levels of each colour come, and neighbours differ.
constexpr uint32_t ProbePictureColor(int32_t x, int32_t y, int32_t width, int32_t height) {
    const auto red = static_cast<uint32_t>(x * 256 / width), green = static_cast<uint32_t>(y * 256 / height);
    const auto blue = static_cast<uint32_t>(x * 7 ^ y * 13) & 0xFF;
    return red << 16 | green << 8 | blue;
}
