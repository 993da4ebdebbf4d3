// The effect pass as one would write it down first: the measure for the real one.
#pragma once

#include <cstdint>

struct StraightforwardValues {
    int32_t zoomX = 0, zoomY = 0, rotate = 0, slideX = 0, slideY = 0, blur = 0, fade = 0;
    uint32_t fadeColor = 0;
    bool clamp = false;
};

// 32-bit frames, packed. Row terms once a row, then pixel by pixel: coordinates, edge, the kernel by its
// number, the fade byte by byte.
void StraightforwardPass(const uint32_t* source, uint32_t* destination, int width, int height, uint32_t frame,
                         const StraightforwardValues& values);
