// What windows on the memory display show, and what the layer counts.
#pragma once

#include <windows.h>

#include <vector>

#include <tdkplatform.h>

#include "tests/support/Messages.h"

namespace tdkviz::test {

// The picture of a window, top row first; empty if it can't be read.
struct Picture {
    int width = 0, height = 0;
    std::vector<DWORD> pixels;

    explicit Picture(HWND window, size_t capacity = 1 << 21) : pixels(capacity) {
        if (!TdkpReadWindow(window, pixels.data(), static_cast<int>(pixels.size()), &width, &height))
            width = height = 0;
        pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    }
    DWORD At(int x, int y) const { return pixels.at(static_cast<size_t>(y * width + x)) & 0xFFFFFF; }
    // The first pixel that isn't of this colour, or -1.
    int FirstOtherThan(DWORD color) const {
        for (size_t i = 0; i < pixels.size(); ++i) {
            if ((pixels[i] & 0xFFFFFF) != color) return static_cast<int>(i);
        }
        return -1;
    }
};

inline TdkpCounts Counts() {
    TdkpCounts counts = {};
    TdkpCount(&counts);
    return counts;
}

}  // namespace tdkviz::test
