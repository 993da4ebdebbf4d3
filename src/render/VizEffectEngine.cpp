#include "src/render/VizEffectEngine.h"

#include <algorithm>

#include <tdkviz/plugin.h>

#include "src/render/effects/EffectPass.h"
#include "src/render/effects/PassTable.h"

namespace tdkviz {

namespace {

constexpr int32_t kWordPixel = 4;
constexpr uint32_t kJitterStepX = 49;
constexpr uint32_t kJitterStepY = 68;
constexpr uint32_t kJitterMask = 255;
constexpr int32_t kAspectUnit = 10;
constexpr uint32_t kLeanFactor = 22;
constexpr int32_t kFirstBlur = 2;  // kernels below leave 32-bit pixels as they are

// The values that act on this frame, each field of the record read once.
struct ActiveValues {
    int32_t zoomX, zoomY, slideX, slideY, rotate, blur, fade;
    uint32_t fadeColor;
    int32_t bytesPerPixel;
    bool anySwitch, autoEdge, clampEdge;
};

ActiveValues ReadValues(const VizEffectParams& params, uint32_t mask) {
    const bool zoom = params.Zoom, slide = params.Slide, rotate = params.Rotate, blur = params.Blur, fade = params.Fade;
    const auto active = [mask](bool on, uint32_t bit, int32_t value) { return on && (mask & bit) != 0 ? value : 0; };
    return {
        .zoomX = active(zoom, kEffectZoom, params.ZoomX),
        .zoomY = active(zoom, kEffectZoom, params.ZoomY),
        .slideX = active(slide, kEffectSlide, params.SlideX),
        .slideY = active(slide, kEffectSlide, params.SlideY),
        .rotate = active(rotate, kEffectRotate, params.RotateSpeed),
        .blur = active(blur, kEffectBlur, params.BlurAmount),
        .fade = active(fade, kEffectFade, params.FadeTime),
        .fadeColor = params.FadeColor,
        .bytesPerPixel = params.BytesPerPixel,
        .anySwitch = zoom || slide || rotate || blur || fade,
        .autoEdge = params.AutoEdge,
        .clampEdge = params.ClampEdge,
    };
}

bool IsNothingToDo(const ActiveValues& values) {
    return (values.zoomX | values.zoomY | values.slideX | values.slideY | values.rotate | values.fade) == 0 &&
           values.blur < kFirstBlur;
}

// A rotation that is small beside the zoom never looks beyond the source by much: repeat the border.
bool ClampsByZoom(const EffectPass& pass) {
    if (pass.zoomX < 1 || pass.zoomY < 1) return false;
    const int32_t longer = std::max(pass.width, pass.height);
    const int32_t shorter = std::min(pass.width, pass.height);
    const int32_t aspect = WrapMul(kAspectUnit, longer) / shorter;
    const int32_t lean = WrapMul(aspect, pass.rotate);
    const int32_t limit = WrapMul(kLeanFactor, std::min(pass.zoomX, pass.zoomY));
    return lean <= limit && WrapMul(-1, lean) <= limit;
}

}  // namespace

bool VizEffectEngine::ApplyEffects(const void* source, void* destination, int32_t width, int32_t height, int32_t stride,
                                   const VizEffectParams& params, uint32_t mask) {
    const uint32_t frame = ++FrameCounter;
    const ActiveValues values = ReadValues(params, mask);
    const bool words = values.bytesPerPixel == kWordPixel;
    if (!values.anySwitch || (words && IsNothingToDo(values))) return false;
    if (!source || !destination || width < 1 || height < 1 || values.bytesPerPixel < 1) return false;

    EffectPass pass = {
        .source = static_cast<const uint8_t*>(source),
        .destination = static_cast<uint8_t*>(destination),
        .width = width,
        .height = height,
        .bytesPerPixel = values.bytesPerPixel,
        .sourcePitch = static_cast<ptrdiff_t>(stride) * values.bytesPerPixel,
        .zoomX = WrapMul(values.zoomX, kOffsetUnit),
        .zoomY = WrapMul(values.zoomY, kOffsetUnit),
        .rotate = WrapMul(values.rotate, kOffsetUnit),
        .slideX = WrapMul(values.slideX, kOffsetUnit),
        .slideY = WrapMul(values.slideY, kOffsetUnit),
        .jitterX = static_cast<int32_t>((frame * kJitterStepX) & kJitterMask),
        .jitterY = static_cast<int32_t>((frame * kJitterStepY) & kJitterMask),
        .clamp = values.clampEdge,
        .kernel = KernelOf(values.blur),
        .fadeColor = values.fadeColor,
        .fade = values.fade,
    };
    if (values.autoEdge) pass.clamp = ClampsByZoom(pass);
    ChoosePass(pass, BestInstructionSet())(pass);
    return true;
}

}  // namespace tdkviz
