// The one place that chooses an implementation of the effect pass.
#pragma once

#include "src/render/effects/EffectPass.h"

namespace tdkviz {

// Each implementation gives the function for a pass, or null if it doesn't serve it.
EffectPassFunction FindScalar32(const EffectPass& pass);  // 4 bytes a pixel, linear coordinates, whole words
EffectPassFunction FindExact32(const EffectPass& pass);   // 4 bytes a pixel, any values and sizes
EffectPassFunction FindBytePath(const EffectPass& pass);  // any bytes a pixel, values and sizes

// Never null.
EffectPassFunction ChoosePass(const EffectPass& pass);

}  // namespace tdkviz
