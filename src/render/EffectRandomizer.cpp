#include "src/render/EffectRandomizer.h"

namespace tdkviz {

namespace {

constexpr int32_t kFrameBytesPerPixel = 4;
constexpr int32_t kDefaultFadeTime = 25;
constexpr int32_t kDefaultZoom = 10;
constexpr int32_t kDefaultBlur = 2;

void SetSwitches(VizEffectParams& params, bool blur, bool zoom, bool fade, bool slide, bool rotate) {
    params.Blur = blur;
    params.Zoom = zoom;
    params.Fade = fade;
    params.Slide = slide;
    params.Rotate = rotate;
}

// What defaults and neutral values have in common: a fade to black and nothing that moves.
void SetStill(VizEffectParams& params) {
    params.BytesPerPixel = kFrameBytesPerPixel;
    params.FadeColor = 0u;
    params.FadeTime = kDefaultFadeTime;
    params.SlideX = 0;
    params.SlideY = 0;
    params.RotateSpeed = 0;
    params.AutoEdge = true;
    params.ClampEdge = false;
}

// A saw-tooth curve over the seed, a step every 2^StepShift seeds, from Lowest up.
struct Curve {
    uint32_t Phase;
    uint32_t Period;
    uint32_t StepShift;
    int32_t Lowest;

    int32_t At(uint32_t seed) const { return static_cast<int32_t>(((seed + Phase) % Period) >> StepShift) + Lowest; }
};

constexpr Curve kBlurCurve = {1000, 2557, 8, 1};
constexpr Curve kZoomXCurve = {1605, 1854, 6, -8};
constexpr Curve kZoomYCurve = {1785, 2240, 6, -9};
constexpr Curve kFadeCurve = {2000, 4192, 9, 1};
constexpr Curve kRotateCurve = {961, 1420, 6, -4};

}  // namespace

void SetDefaultEffects(VizEffectParams& params) {
    SetStill(params);
    SetSwitches(params, true, true, true, false, false);
    params.BlurAmount = kDefaultBlur;
    params.ZoomX = kDefaultZoom;
    params.ZoomY = kDefaultZoom;
}

void SetNeutralEffects(VizEffectParams& params) {
    SetStill(params);
    SetSwitches(params, false, false, true, false, false);
    params.BlurAmount = 0;
    params.ZoomX = 0;
    params.ZoomY = 0;
}

void RandomizeEffects(VizEffectParams& params, uint32_t seed) {
    SetSwitches(params, true, true, true, true, true);
    params.FadeColor = 0u;
    params.SlideX = 0;
    params.SlideY = 0;
    params.BlurAmount = kBlurCurve.At(seed);
    params.ZoomX = kZoomXCurve.At(seed);
    params.ZoomY = kZoomYCurve.At(seed);
    params.FadeTime = kFadeCurve.At(seed);
    params.RotateSpeed = kRotateCurve.At(seed);
}

}  // namespace tdkviz
