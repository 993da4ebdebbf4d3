#include "platform/gdi/DrawTarget.h"

#include <algorithm>

#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"

namespace tdkp {

DrawTarget::DrawTarget(const DeviceContext& dc) {
    if (dc.ground == DeviceContext::Ground::kWindow) {
        window_.emplace(dc.window);
        if (window_->raster.topRow != nullptr) Narrow(dc, window_->clip, window_->clipCount);
    } else if (dc.ground == DeviceContext::Ground::kMemory && !dc.bitmap->stock) {
        raster_ = dc.bitmap->raster;
        clip_ = BoundsOf(raster_);
        Narrow(dc, &clip_, 1);
    }
}

void DrawTarget::Narrow(const DeviceContext& dc, RECT* clips, int count) {
    const RECT bounds = dc.clipped ? Intersect(dc.clip, BoundsOf(Pixels())) : BoundsOf(Pixels());
    for (int i = 0; i < count; ++i) {
        const RECT clip = Intersect(clips[i], bounds);
        if (!IsEmpty(clip)) clips[clipCount_++] = clip;
    }
}

RECT DrawTarget::ClipHull() const {
    RECT hull = {0, 0, 0, 0};
    for (int i = 0; i < clipCount_; ++i) hull = Hull(hull, Clips()[i]);
    return hull;
}

bool DrawTarget::IsVisible(int x, int y) const {
    return std::any_of(Clips(), Clips() + clipCount_, [&](const RECT& clip) {
        return x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
    });
}

void DrawTarget::Run(const BlitJob& job) {
    Damage(RunBlit(job, Clips(), clipCount_));
}

void DrawTarget::Fill(const RECT& rect, COLORREF color) {
    if (clipCount_ == 0) return;
    BlitJob job;
    job.to = Pixels();
    job.toRect = rect;
    job.rop = kRopCopyPattern;
    job.pattern = EncodeColor(job.to, ColorFromRef(color));
    Run(job);
}

void DrawTarget::Damage(const RECT& rect) {
    if (!window_) return;
    const RECT visible = Intersect(rect, ClipHull());
    if (!IsEmpty(visible)) window_->Damage(visible);
}

DrawSource::DrawSource(const DeviceContext& dc, const RECT& wanted) {
    if (dc.ground == DeviceContext::Ground::kMemory) {
        pixels = dc.bitmap->raster;
        return;
    }
    if (dc.ground != DeviceContext::Ground::kWindow) return;
    const WindowRasterLock lock(dc.window);
    const RECT part = Intersect(wanted, BoundsOf(lock.raster));
    if (lock.raster.topRow == nullptr || IsEmpty(part)) return;
    pixels = lock.raster;
    pixels.width = part.right - part.left;
    pixels.height = part.bottom - part.top;
    pixels.pitch = static_cast<int32_t>(DibPitch(BitsPerPixel(pixels.format), pixels.width));
    copy_.resize(static_cast<size_t>(pixels.pitch) * static_cast<size_t>(pixels.height));
    pixels.topRow = copy_.data();
    for (int y = 0; y < pixels.height; ++y)
        CopyRow(pixels.format, RowOf(lock.raster, part.top + y), part.left, RowOf(pixels, y), 0, pixels.width);
    if (lock.raster.palette != nullptr) {
        palette_.assign(lock.raster.palette, lock.raster.palette + kPaletteEntries);
        pixels.palette = palette_.data();
    }
    offsetX = part.left;
    offsetY = part.top;
}

}  // namespace tdkp
