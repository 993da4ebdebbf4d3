// The yardstick of the effect pass: a good scalar one, with all that can be hoisted out of its loops hoisted,
// compiled without vectors.
#pragma once

#include "src/render/effects/EffectPass.h"

// For 4 bytes a pixel, linear coordinates and weights that blend.
void ScalarPass(const tdkviz::EffectPass& pass);
