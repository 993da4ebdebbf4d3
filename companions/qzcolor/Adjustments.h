// What the enhancing operations do to a picture, shared by all threads.
#pragma once

#include "companions/qzcolor/Image.h"

namespace qzcolor {

// Each from -1 to 1; 0 changes nothing.
struct ColorAdjustments {
    float Brightness = 0, Contrast = 0, Saturation = 0;
};
struct SharpnessAdjustments {
    float Sharpness = 0;  // below 0 softens
};

struct Adjustments {
    ColorAdjustments Colors;
    SharpnessAdjustments Sharpness;
};

// False, and nothing is stored, for a value out of its range.
bool StoreAdjustments(const ColorAdjustments& adjustments);
bool StoreAdjustments(const SharpnessAdjustments& adjustments);
Adjustments CurrentAdjustments();

// Adjusts RGB32 pixels where they stand. Differences between neighbours up to `threshold` (0 to 255) aren't
// sharpened, so that noise in smooth areas stays as it is. False when memory has run out.
bool ApplyAdjustments(const Rows& words, int32_t threshold);

}  // namespace qzcolor
