// An output that doesn't fail: when its device goes, it plays on in silence and looks for a device until there is one
// again. Each such change is told as a move to another device.
#pragma once

#include <mutex>

#include "player/sound/AudioOutput.h"
#include "player/sound/DeviceSearch.h"

namespace tdkplay {

class SteadyOutput final : public AudioOutput {
public:
    using OpenFunction = std::function<std::unique_ptr<AudioOutput>()>;
    // Begins with `first`, and with a search if that has no device. `open` as in DeviceSearch.
    SteadyOutput(std::unique_ptr<AudioOutput> first, OpenFunction open, const PcmFormat& format, HANDLE wake);

    std::string DeviceName() override { return Inner()->DeviceName(); }
    size_t Room() override { return Inner()->Room(); }
    uint32_t WaitForRoom() override { return Inner()->WaitForRoom(); }
    void Write(const int16_t* samples, size_t frames) override { Inner()->Write(samples, frames); }
    double Latency() override { return Inner()->Latency(); }
    void SetLead(double seconds) override;
    double LargestLatency() const override { return Inner()->LargestLatency(); }
    void SetPaused(bool paused) override;
    void Flush() override;
    void BeginDrain() override;
    bool IsDrained() override { return Inner()->IsDrained(); }
    uint32_t WaitForDrain() override { return Inner()->WaitForDrain(); }
    bool TakeMoved() override;

private:
    std::shared_ptr<AudioOutput> Inner() const;
    void Replace(std::shared_ptr<AudioOutput> output);

    const PcmFormat format_;
    DeviceSearch<AudioOutput> search_;

    mutable std::mutex mutex_;  // guards what follows
    std::shared_ptr<AudioOutput> inner_;
    double lead_ = kUsualLead;
    bool isPaused_ = true;
    bool drains_ = false;
};

}  // namespace tdkplay
