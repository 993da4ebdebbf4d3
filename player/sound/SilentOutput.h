// A device without sound: it takes audio at the speed at which it would be heard, on the system's clock.
// Where that clock is stepped by hand, the device steps with it.
#pragma once

#include <mutex>

#include "player/sound/AudioOutput.h"

namespace tdkplay {

inline constexpr char kSilentName[] = "silent";

class SilentOutput : public AudioOutput {
public:
    explicit SilentOutput(const PcmFormat& format);

    size_t Room() override;
    uint32_t WaitForRoom() override;
    void Write(const int16_t* samples, size_t frames) override;
    double Latency() override;
    void SetLead(double seconds) override;
    double LargestLatency() const override { return kHiddenLead; }
    void SetPaused(bool paused) override;
    void Flush() override;
    void BeginDrain() override {}
    bool IsDrained() override;
    uint32_t WaitForDrain() override;

private:
    uint64_t Queued();  // frames written and not heard; brings `heard_` up to now
    uint32_t Milliseconds(uint64_t frames) const;

    const uint32_t rate_;
    const int64_t frequency_;  // of the clock, Hz

    std::mutex mutex_;  // guards what follows
    bool paused_ = true;
    uint64_t capacity_;  // frames
    uint64_t written_ = 0;
    uint64_t heard_ = 0;
    // Playing, `base_` frames had been heard at `since_`.
    uint64_t base_ = 0;
    int64_t since_ = 0;
};

}  // namespace tdkplay
