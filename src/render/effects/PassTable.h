// The one place that chooses an implementation of the effect pass.
#pragma once

#include "src/render/effects/EffectPass.h"
#include "src/render/effects/InstructionSet.h"

namespace tdkviz {

// Each implementation gives the function for a pass, or null if it doesn't serve it.
EffectPassFunction FindVector512(const EffectPass& pass);  // 4 bytes a pixel, values such as a user sets
EffectPassFunction FindVector256(const EffectPass& pass);
EffectPassFunction FindVector128(const EffectPass& pass);
EffectPassFunction FindScalar32(const EffectPass& pass);  // 4 bytes a pixel, linear coordinates, whole words
EffectPassFunction FindExact32(const EffectPass& pass);   // 4 bytes a pixel, any values and sizes
EffectPassFunction FindBytePath(const EffectPass& pass);  // any bytes a pixel, values and sizes

// The fastest that serves the pass and needs no more than `set`. Never null.
EffectPassFunction ChoosePass(const EffectPass& pass, InstructionSet set);

}  // namespace tdkviz
