// The add-on's settings as they persist: nineteen 32-bit numbers under one key of the current user.
#pragma once

#include <cstdint>

#include "src/render/VizEffectParams.h"

namespace tdkviz {

struct StoredSettings {
    VizEffectParams UserEffects;
    uint32_t FrameRate = 0;  // frames a second, as stored: not clamped
    bool AlwaysOnTop = false;
    bool EffectsOn = false;
    bool Randomize = true;
    uint32_t RandomSeed = 0;
    bool UseDirectDraw = false;
};

// Overwrites what the registry holds; a value that is missing, of another type or unreadable leaves its
// field as it is. No failure is reported. [host]
void LoadSettings(StoredSettings& settings);

// Writes all nineteen values. A write that fails is lost. [host]
void SaveSettings(const StoredSettings& settings);

}  // namespace tdkviz
