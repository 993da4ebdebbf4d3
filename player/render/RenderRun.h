// A song as a video: each frame is the view's picture at the middle of the time for which the frame is shown, on the
// stepped clock.
#pragma once

#include <memory>

#include "player/render/CountedDecoder.h"
#include "player/render/FrameSink.h"
#include "player/render/SteppedRun.h"

namespace tdkplay {

class RenderProgress;

class RenderRun {
public:
    // From the beginning to the end, with a registry of its own. `file` is where the decoder's audio comes from, empty
    // for the project's own piece. Throws PlayerError, with kInterrupted if the user has stopped it.
    static void Render(const Options& options, const std::string& file, std::unique_ptr<Decoder> decoder,
                       const Interrupt& interrupt);

private:
    RenderRun(const Options& options, Session& session, const CountedDecoder& decoder, const Interrupt& interrupt);

    VideoFormat Format() const { return format_; }
    // As far as the file tells its length, else 0.
    uint64_t ExpectedFrames() const;
    // Whether frame `index`, from 0, begins before the song has ended.
    bool BeginsWithin(uint64_t index) const;
    // Gives the number of frames.
    uint64_t WriteFrames(FrameSink& sink, RenderProgress& progress);

    const CountedDecoder& decoder_;
    const Interrupt& interrupt_;
    const VideoFormat format_;
    const uint64_t soundRate_;  // Hz
    const uint64_t limit_;      // sample frames
    SteppedRun run_;
    const HWND window_;
};

}  // namespace tdkplay
