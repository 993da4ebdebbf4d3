// VizEffectParams: what the five image effects do to a frame.
#pragma once

#include <cstdint>

#include "src/support/Relaxed.h"

namespace tdkviz {

// The effect parameter record. The settings dialog writes a record while the worker reads it: every
// field is read once per frame, and a mix of old and new values in one frame does no harm.
// An effect acts when its switch is on and the plug-in's mask allows it; the value of an effect that
// doesn't act counts as 0. The values come from EffectRandomizer.h and from the settings.
struct VizEffectParams {
    Relaxed<int32_t> BytesPerPixel;  // 4 takes the 32-bit path, anything else the byte path

    Relaxed<bool> Blur;
    Relaxed<int32_t> BlurAmount;  // kernel number; 1 to 10 in the dialog

    Relaxed<bool> Zoom;
    Relaxed<int32_t> ZoomX;  // 1/256 of the distance from the centre per frame; positive enlarges
    Relaxed<int32_t> ZoomY;

    Relaxed<bool> Fade;
    Relaxed<uint32_t> FadeColor;  // always read: it fills what lies outside of the source as well
    Relaxed<int32_t> FadeTime;    // weight of FadeColor, in 1/256; 256 replaces the picture at once

    Relaxed<bool> Slide;
    Relaxed<int32_t> SlideX;  // source offset in whole pixels per frame
    Relaxed<int32_t> SlideY;

    Relaxed<bool> Rotate;
    Relaxed<int32_t> RotateSpeed;  // 1/256 of the distance from the centre per frame, at right angles to it

    Relaxed<bool> AutoEdge;   // the edge rule follows from zoom and rotation
    Relaxed<bool> ClampEdge;  // the edge rule otherwise: true repeats the border, false shows FadeColor
};

}  // namespace tdkviz
