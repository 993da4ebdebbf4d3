// The operations that move rectangles of pixels.
#include <windows.h>

#include <algorithm>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"
#include "platform/gdi/StockObjects.h"

namespace tdkp {
namespace {

struct Extents {
    int x, y, width, height;
    RECT Rect() const { return RectFromExtents(x, y, width, height); }
};

// Between one bit and more a set bit stands for the background colour: of the target's context when it is
// read, of the source's when it is made.
struct MonoPalette {
    uint32_t colors[kMonoEntries];
};

void SetMonoRules(const DeviceContext& to, const DeviceContext& from, BlitJob& job, MonoPalette& palette) {
    const bool fromMono = job.from.format == PixelFormat::kMono;
    const bool toMono = job.to.format == PixelFormat::kMono;
    if (fromMono && !toMono && !from.bitmap->isSection) {
        palette = {{ColorFromRef(to.textColor), ColorFromRef(to.bkColor)}};
        job.from.palette = palette.colors;
    } else if (toMono && !fromMono) {
        job.monoKey = {true, ColorFromRef(from.bkColor)};
    }
}

// The brush's colour as the target stores it. False if the operation needs a brush and there is none.
bool SetPattern(const DeviceContext& dc, BlitJob& job) {
    if (!RopUsesPattern(job.rop)) return true;
    job.pattern = EncodeColor(job.to, ColorFromRef(dc.brush->color));
    return !dc.brush->hollow;
}

void FillWith(const DeviceContext& dc, const RECT& rect, uint8_t rop) {
    DrawTarget target(dc);
    BlitJob job;
    job.to = target.Pixels();
    job.toRect = rect;
    job.rop = rop;
    if (target.ClipCount() > 0 && SetPattern(dc, job)) target.Run(job);
}

BOOL Blit(HDC toDc, const Extents& to, HDC fromDc, const Extents& from, DWORD operation) {
    const auto toContext = FindContext(toDc);
    const uint8_t rop = RopOf(operation);
    if (!toContext) return FALSE;
    if (!RopUsesSource(rop)) {
        FillWith(*toContext, to.Rect(), rop);
        return TRUE;
    }
    const auto fromContext = FindContext(fromDc);
    if (!fromContext) return FALSE;
    const DrawSource source(*fromContext, from.Rect());
    DrawTarget target(*toContext);
    if (target.ClipCount() == 0 || source.pixels.topRow == nullptr) return TRUE;
    BlitJob job;
    MonoPalette palette;
    job.to = target.Pixels();
    job.toRect = to.Rect();
    job.from = source.pixels;
    job.fromRect = Shift(from.Rect(), -source.offsetX, -source.offsetY);
    job.mirrorX = (to.width < 0) != (from.width < 0);
    job.mirrorY = (to.height < 0) != (from.height < 0);
    job.rop = rop;
    SetMonoRules(*toContext, *fromContext, job, palette);
    if (SetPattern(*toContext, job)) target.Run(job);
    return TRUE;
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API BOOL BitBlt(HDC to, INT x, INT y, INT width, INT height, HDC from, INT fromX, INT fromY, DWORD operation) {
    return Blit(to, {x, y, width, height}, from, {fromX, fromY, width, height}, operation);
}

TDKP_API BOOL StretchBlt(HDC to, INT x, INT y, INT width, INT height, HDC from, INT fromX, INT fromY, INT fromWidth,
                         INT fromHeight, DWORD operation) {
    return Blit(to, {x, y, width, height}, from, {fromX, fromY, fromWidth, fromHeight}, operation);
}

TDKP_API INT FillRect(HDC dc, const RECT* rect, HBRUSH handle) {
    const auto context = FindContext(dc);
    const auto brush = FindBrush(handle);
    if (!context || !brush || rect == nullptr) return 0;
    if (!brush->hollow) DrawTarget(*context).Fill(*rect, brush->color);
    return 1;
}

TDKP_API INT FrameRect(HDC dc, const RECT* rect, HBRUSH brush) {
    if (rect == nullptr || rect->left >= rect->right || rect->top >= rect->bottom) return 0;
    const RECT sides[] = {
        {rect->left, rect->top, rect->right, rect->top + 1},
        {rect->left, rect->bottom - 1, rect->right, rect->bottom},
        {rect->left, rect->top, rect->left + 1, rect->bottom},
        {rect->right - 1, rect->top, rect->right, rect->bottom},
    };
    INT drawn = 1;
    for (const RECT& side : sides) drawn = drawn != 0 ? FillRect(dc, &side, brush) : 0;
    return drawn;
}

TDKP_API BOOL SetPixelV(HDC dc, INT x, INT y, COLORREF color) {
    return SetPixel(dc, x, y, color) != CLR_INVALID;
}

TDKP_API COLORREF SetPixel(HDC dc, INT x, INT y, COLORREF color) {
    const auto context = FindContext(dc);
    if (!context) return CLR_INVALID;
    DrawTarget target(*context);
    if (!target.IsVisible(x, y)) return CLR_INVALID;
    const Raster& raster = target.Pixels();
    const uint32_t raw = EncodeColor(raster, ColorFromRef(color));
    WriteRaw(raster, x, y, raw);
    target.Damage({x, y, x + 1, y + 1});
    return RefFromColor(DecodeRaw(raster, raw));
}

TDKP_API COLORREF GetPixel(HDC dc, INT x, INT y) {
    const auto context = FindContext(dc);
    if (!context) return CLR_INVALID;
    const DrawTarget target(*context);
    return target.IsVisible(x, y) ? RefFromColor(ReadColor(target.Pixels(), x, y)) : CLR_INVALID;
}
