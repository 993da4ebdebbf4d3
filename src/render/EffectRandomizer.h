// The three sets of values of an effect record: defaults, neutral, and the ever-changing ones.
#pragma once

#include <cstdint>

#include "src/render/VizEffectParams.h"

namespace tdkviz {

// Any thread; field by field, no lock.

// What a user starts from: zoom 10, blur 2, fade 25.
void SetDefaultEffects(VizEffectParams& params);
// Nothing but a fade of 25/256, which keeps older strokes from staying on the screen for ever.
void SetNeutralEffects(VizEffectParams& params);
// Values of five saw-tooth curves over `seed`; the same seed always gives the same record.
// BytesPerPixel, AutoEdge and ClampEdge stay as they were.
void RandomizeEffects(VizEffectParams& params, uint32_t seed);

}  // namespace tdkviz
