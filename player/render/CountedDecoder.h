// A decoder that knows what went through it: the length that a file turns out to have.
#pragma once

#include "player/sound/Decoder.h"

namespace tdkplay {

class CountedDecoder final : public Decoder {
public:
    explicit CountedDecoder(std::unique_ptr<Decoder> inner) : inner_(std::move(inner)) {}

    // Sample frames read so far, and whether there are no more.
    uint64_t Frames() const { return frames_; }
    bool IsAtEnd() const { return atEnd_; }

    PcmFormat Format() const override { return inner_->Format(); }
    uint64_t TotalFrames() const override { return inner_->TotalFrames(); }
    size_t Read(int16_t* samples, size_t frames) override {
        const size_t got = inner_->Read(samples, frames);
        frames_ += got;
        atEnd_ = got == 0;
        return got;
    }
    // Counts from there.
    bool Seek(uint64_t frame) override {
        if (!inner_->Seek(frame)) return false;
        frames_ = frame;
        atEnd_ = false;
        return true;
    }

private:
    const std::unique_ptr<Decoder> inner_;
    uint64_t frames_ = 0;
    bool atEnd_ = false;
};

}  // namespace tdkplay
