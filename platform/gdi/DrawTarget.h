// The pixels that a device context draws on, and those that it is copied from.
#pragma once

#include <windef.h>

#include <optional>
#include <vector>

#include "platform/gdi/GdiObject.h"
#include "platform/user/WindowRaster.h"

namespace tdkp {

struct BlitJob;

// Holds a context's pixels for one drawing operation; a window's picture is locked meanwhile, so only one
// target lives at a time in a thread.
class DrawTarget {
public:
    explicit DrawTarget(const DeviceContext& dc);
    DrawTarget(const DrawTarget&) = delete;
    DrawTarget& operator=(const DrawTarget&) = delete;

    const Raster& Pixels() const { return window_ ? window_->raster : raster_; }
    // Where drawing is allowed; all of it inside of the raster. None if there is nothing to draw on.
    const RECT* Clips() const { return window_ ? window_->clip : &clip_; }
    int ClipCount() const { return clipCount_; }
    RECT ClipHull() const;
    bool IsVisible(int x, int y) const;

    // Does the job, whose target these pixels are.
    void Run(const BlitJob& job);
    void Fill(const RECT& rect, COLORREF color);
    // Tells what was drawn otherwise. Pixels outside of the clip rectangles don't matter.
    void Damage(const RECT& rect);

private:
    void Narrow(const DeviceContext& dc, RECT* clips, int count);

    Raster raster_;
    RECT clip_ = {0, 0, 0, 0};
    int clipCount_ = 0;
    std::optional<WindowRasterLock> window_;
};

// A context's pixels to read from. Of a window the part `wanted` is copied, so that no lock is held and a window
// can be copied to itself; (OffsetX, OffsetY) is where the raster's corner lies in the context's coordinates.
class DrawSource {
public:
    DrawSource(const DeviceContext& dc, const RECT& wanted);

    Raster pixels;  // topRow is null if there is nothing to read
    int offsetX = 0;
    int offsetY = 0;

private:
    std::vector<uint8_t> copy_;
    std::vector<uint32_t> palette_;
};

}  // namespace tdkp
