// What the plug-ins paint that are told apart by their colour alone.
#pragma once

#include <algorithm>

#include "tests/plugins/testplugins/TestPlugin.h"

template <uint32_t kColor>
void PaintOneColor(const viz::Canvas& canvas, const VizAnalysisFrame&) {
    for (int row = 0; row < canvas.Height(); ++row) std::fill_n(canvas.Row(row), canvas.Width(), kColor);
}
