// What the arrows of the settings dialog stand for: values of the user's record, and the small live pictures
// that show what each effect does to a red rectangle.
#pragma once

#include <windows.h>

#include <cstdint>

#include "src/render/VizEffectEngine.h"

namespace tdkviz {

// The effect controls of the dialog, by their ids.
enum EffectControlId : uint32_t {
    kFadeControl,
    kRotateControl,
    kZoomControl,
    kSlideControl,
    kBlurControl,
    kEffectControlCount,
};

// What control `id` stores in the user's record when its arrows stand at x and y; other ids store nothing.
void StoreEffect(VizEffectParams& effects, uint32_t id, int32_t x, int32_t y);

// Paints the rectangle and six generations of the effect into the bitmap that is selected into `picture`, a
// DIB section filled black. The same values always give the same picture. [the dialog's thread]
void DrawPreview(HDC picture, VizEffectEngine& engine, uint32_t id, int32_t x, int32_t y);

}  // namespace tdkviz
