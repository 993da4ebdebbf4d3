// What the plug-ins paint that are told apart by their colour alone.
#pragma once

#include <algorithm>

#include "tests/plugins/testplugins/TestPlugin.h"

template <uint32_t kColor>
void PaintOneColor(void* pixels, int32_t width, int32_t height, int32_t pitch, const VizAnalysisFrame&) {
    const int64_t stride = pitch < 0 ? -pitch : pitch;
    for (int32_t row = 0; row < height; ++row)
        std::fill_n(reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(pixels) + row * stride), width, kColor);
}
