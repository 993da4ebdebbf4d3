// The audio that a capture hands out, as the pump reads it.
#pragma once

#include <memory>
#include <utility>

#include "player/sound/Capture.h"

namespace tdkplay {

// Without an end and without places to go to.
class CaptureDecoder final : public Decoder {
public:
    explicit CaptureDecoder(std::shared_ptr<Capture> capture) : capture_(std::move(capture)) {}

    PcmFormat Format() const override { return Capture::Format(); }
    uint64_t TotalFrames() const override { return 0; }
    size_t Read(int16_t* samples, size_t frames) override { return capture_->Read(samples, frames); }
    bool Seek(uint64_t) override { return false; }

private:
    const std::shared_ptr<Capture> capture_;
};

}  // namespace tdkplay
