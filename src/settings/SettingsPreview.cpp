#include "src/settings/SettingsPreview.h"

#include <cstring>
#include <vector>

#include <tdkviz/plugin.h>

namespace tdkviz {

namespace {

constexpr int32_t kFadeTop = 128;     // where the fade's arrow ends
constexpr int32_t kFadeAtOnce = 256;  // what it stands for there
constexpr int kGenerations = 6;
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr int32_t kBitsPerByte = 8;

int32_t FadeTimeOf(int32_t x) {
    return x == kFadeTop ? kFadeAtOnce : x;
}

void SetFade(VizEffectParams& params, int32_t time) {
    params.Fade = true;
    params.FadeTime = time;
}

void SetZoom(VizEffectParams& params, int32_t x, int32_t y) {
    params.Zoom = true;
    params.ZoomX = x;
    params.ZoomY = y;
}

void SetSlide(VizEffectParams& params, int32_t x, int32_t y) {
    params.Slide = true;
    params.SlideX = x;
    params.SlideY = y;
}

void SetRotate(VizEffectParams& params, int32_t speed) {
    params.Rotate = true;
    params.RotateSpeed = speed;
}

void SetBlur(VizEffectParams& params, int32_t amount) {
    params.Blur = true;
    params.BlurAmount = amount;
}

// Each effect is shown with some others that carry the picture on, at strengths of the picture's own.
VizEffectParams PreviewParams(uint32_t id, int32_t x, int32_t y) {
    VizEffectParams params;
    switch (id) {
        case kFadeControl:
            SetFade(params, FadeTimeOf(x));
            SetSlide(params, 3, 3);
            break;
        case kRotateControl:
            if (x == 0) break;
            SetFade(params, 40);
            SetZoom(params, 6, 6);
            SetRotate(params, 3 * x);
            SetBlur(params, 1);
            break;
        case kZoomControl:
            SetFade(params, 40);
            SetZoom(params, 3 * x, 3 * y);
            break;
        case kSlideControl:
            SetFade(params, 80);
            SetSlide(params, -x, -y);
            break;
        case kBlurControl:
            SetFade(params, 50);
            SetSlide(params, 3, 3);
            SetBlur(params, x);
            break;
        default:
            break;
    }
    return params;
}

void DrawFigure(HDC picture, const BITMAP& bitmap) {
    Rectangle(picture, bitmap.bmWidth / 3, bitmap.bmHeight / 3, 2 * bitmap.bmWidth / 3, 2 * bitmap.bmHeight / 3);
}

void DrawGenerations(HDC picture, const BITMAP& bitmap, VizEffectEngine& engine, const VizEffectParams& params) {
    const int32_t bytesPerPixel = params.BytesPerPixel;
    std::vector<uint8_t> scratch(static_cast<size_t>(bitmap.bmHeight) * static_cast<size_t>(bitmap.bmWidth) *
                                 static_cast<size_t>(bytesPerPixel));
    engine.FrameCounter = 0;
    for (int generation = 0; generation < kGenerations; ++generation) {
        DrawFigure(picture, bitmap);
        GdiFlush();
        if (engine.ApplyEffects(bitmap.bmBits, scratch.data(), bitmap.bmWidth, bitmap.bmHeight,
                                bitmap.bmWidthBytes / bytesPerPixel, params, kEffectsAll)) {
            std::memcpy(bitmap.bmBits, scratch.data(), scratch.size());
        }
    }
    DrawFigure(picture, bitmap);
}

}  // namespace

void StoreEffect(VizEffectParams& effects, uint32_t id, int32_t x, int32_t y) {
    switch (id) {
        case kFadeControl:
            effects.FadeTime = FadeTimeOf(x);
            effects.Fade = x != 0;
            break;
        case kRotateControl:
            effects.RotateSpeed = x;
            effects.Rotate = x != 0;
            break;
        case kZoomControl:
            effects.ZoomX = x;
            effects.ZoomY = y;
            effects.Zoom = x != 0 || y != 0;
            break;
        case kSlideControl:
            // The picture follows the arrow: the source lies on the other side.
            effects.SlideX = -x;
            effects.SlideY = -y;
            effects.Slide = x != 0 || y != 0;
            break;
        case kBlurControl:
            effects.BlurAmount = x;
            effects.Blur = x != 0;
            break;
        default:
            break;
    }
}

void DrawPreview(HDC picture, VizEffectEngine& engine, uint32_t id, int32_t x, int32_t y) {
    BITMAP bitmap = {};
    const HGDIOBJ selected = GetCurrentObject(picture, OBJ_BITMAP);
    if (!selected || !GetObjectA(selected, sizeof bitmap, &bitmap) || !bitmap.bmBits) return;
    VizEffectParams params = PreviewParams(id, x, y);
    params.BytesPerPixel = bitmap.bmBitsPixel / kBitsPerByte;
    if (params.BytesPerPixel == 0) return;

    const HPEN pen = CreatePen(PS_SOLID, 1, kRed);
    const HGDIOBJ earlierPen = SelectObject(picture, pen);
    const HGDIOBJ earlierBrush = SelectObject(picture, GetStockObject(HOLLOW_BRUSH));
    DrawGenerations(picture, bitmap, engine, params);
    SelectObject(picture, earlierBrush);
    SelectObject(picture, earlierPen);
    DeleteObject(pen);
}

}  // namespace tdkviz
