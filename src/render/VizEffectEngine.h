// VizEffectEngine: turns one frame into the next.
#pragma once

#include <cstdint>

#include "src/render/VizEffectParams.h"

namespace tdkviz {

// Zoom, rotation, slide, blur and fade in one pass over the frame. Used by one thread at a time: a
// view's engine by the worker, the dialog's by the dialog's thread. Allocates nothing.
class VizEffectEngine {
public:
    // Reads `source` and writes `destination`, packed, row after row. Neither is kept.
    //   width, height, stride   pixels; stride is the distance of two rows of the source
    //   mask                    VizEffectMask; only the low 8 bits are looked at
    // Both buffers hold height rows of BytesPerPixel x stride (destination: width) bytes and don't overlap.
    // True: `destination` holds a whole new frame. False: nothing to do, nothing was written.
    // FrameCounter advances in either case. Frames below 3 x 3 pixels have no inner pixels: with the
    // clamping edge rule they take the nearest pixels that exist, otherwise FadeColor.
    // A frame of no pixels, or a BytesPerPixel below 1, gives false.
    bool ApplyEffects(const void* source, void* destination, int32_t width, int32_t height, int32_t stride,
                      const VizEffectParams& params, uint32_t mask);

    uint32_t FrameCounter = 0;  // wraps; it moves the fraction of a pixel that is added to every offset
};

}  // namespace tdkviz
