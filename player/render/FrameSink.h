// Where the frames of a rendering go. The same frames give the same bytes.
#pragma once

#include "player/render/Snapshot.h"

namespace tdkplay {

struct VideoFormat {
    int Width = 0;  // pixels
    int Height = 0;
    uint32_t Rate = 0;  // frames a second
};

// For one thread. What an object leaves when it ends early can be played, too.
class FrameSink {
public:
    virtual ~FrameSink() = default;

    // The whole frame, in the size that the sink was made for. Throws PlayerError with kCannotWrite or kEncoderFailed.
    virtual void Write(const Picture& frame) = 0;
    // After the last frame: what was written is complete when this returns. Throws as Write does.
    virtual void Finish() = 0;
};

}  // namespace tdkplay
