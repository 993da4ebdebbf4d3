// Moving rectangles of pixels between rasters: copy, format change, stretch, mirror and every raster operation.
#pragma once

#include <windef.h>

#include <cstdint>

#include "platform/gdi/Raster.h"
#include "platform/gdi/RowConvert.h"

namespace tdkp {

// Truth tables of raster operations: bit (4 x pattern + 2 x source + destination) is the result.
constexpr uint8_t kRopCopySource = 0xCC;
constexpr uint8_t kRopCopyPattern = 0xF0;

constexpr uint8_t RopOf(DWORD operation) {
    return static_cast<uint8_t>(operation >> 16);
}
constexpr bool RopUsesSource(uint8_t rop) {
    return ((rop >> 2) & 0x33) != (rop & 0x33);
}
constexpr bool RopUsesPattern(uint8_t rop) {
    return (rop >> 4) != (rop & 0x0F);
}
constexpr bool RopUsesDestination(uint8_t rop) {
    return ((rop >> 1) & 0x55) != (rop & 0x55);
}

// One job. The pixel at distance d from the left edge of `toRect` takes the source pixel at distance
// floor(d x source width / target width) from the left edge of `fromRect`, or from its right edge if mirrored;
// rows likewise. Source pixels outside of `from` leave the target as it was.
struct BlitJob {
    Raster to;
    RECT toRect = {};
    Raster from;  // not looked at by operations without a source
    RECT fromRect = {};
    bool mirrorX = false;
    bool mirrorY = false;
    uint8_t rop = kRopCopySource;
    uint32_t pattern = 0;  // raw pixel of the target
    MonoKey monoKey;
};

// Does the job inside of each clip rectangle. Source and target may be the same memory. Returns the hull of
// what may have changed.
RECT RunBlit(const BlitJob& job, const RECT* clips, int clipCount);

// Fills a rectangle, which must lie inside of the raster, with a raw pixel.
void FillPixels(const Raster& to, const RECT& rect, uint32_t raw);

}  // namespace tdkp
