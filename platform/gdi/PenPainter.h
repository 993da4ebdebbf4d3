// Draws with the pen of a device context.
#pragma once

#include <windef.h>

#include <cstdint>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/GdiObject.h"

namespace tdkp {

class PenPainter {
public:
    // `stylePhase` is where the dash pattern begins, in pixels; lines go on from where the last one ended.
    PenPainter(const DeviceContext& dc, DrawTarget& target, int stylePhase);

    bool Draws() const { return draws_; }
    // Without the pixel at `to`, unless the pen is wider than a pixel.
    void Line(POINT from, POINT to);
    // One dot of the pen.
    void Dot(LONG x, LONG y) { Plot({x, y}, color_); }
    int StylePhase() const { return phase_; }

private:
    void Plot(POINT point, uint32_t raw);
    void PlotStyled(POINT point, int64_t at);
    RECT Dots(const RECT& area) const;

    DrawTarget& target_;
    const bool draws_;
    const int width_;
    const UINT style_;
    const bool opaque_;
    const RECT hull_;  // of what may be drawn
    uint32_t color_ = 0;
    uint32_t gapColor_ = 0;
    int phase_;
};

}  // namespace tdkp
