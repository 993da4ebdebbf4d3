// What the system plays, as an output that plays nothing: there is room for what the sound server has mixed already,
// and that is heard a little later. When nothing sounds it rests, and it finds its way when devices come and go.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "player/sound/AudioOutput.h"
#include "player/sound/DeviceSearch.h"
#include "player/sound/PulseCapture.h"

namespace tdkplay {

class Capture final : public AudioOutput {
public:
    // `device` as in CaptureRequest; one that is named must be there. `wake` as in OpenOutput. Throws PlayerError with
    // kNoSound if there is no sound server or nothing to capture.
    Capture(const std::string& device, HANDLE wake);

    // What it always gives.
    static PcmFormat Format();
    // Takes the oldest of what there is room for; less than `frames` only if there is no more.
    size_t Read(int16_t* samples, size_t frames);
    // The device for people, empty while there is none.
    std::string Title() const;
    // Seconds that this has not been paused.
    double Elapsed() const;

    std::string DeviceName() override;
    size_t Room() override;
    uint32_t WaitForRoom() override;
    void Write(const int16_t* samples, size_t frames) override;
    double Latency() override;
    void SetLead(double seconds) override;
    double LargestLatency() const override { return kLargestLatency; }
    void SetPaused(bool paused) override;
    void Flush() override {}
    void BeginDrain() override {}
    bool IsDrained() override { return true; }
    uint32_t WaitForDrain() override { return INFINITE; }
    bool TakeMoved() override;
    bool IsResting() override;

private:
    using Clock = std::chrono::steady_clock;
    // The largest latency of an output, in seconds: what servers mix ahead when nobody is in a hurry.
    static constexpr double kLargestLatency = 2.0;

    void Fetch();
    void SetPiece(double seconds);
    // When the pictures rest, or have begun to, if nothing happens until then.
    Clock::time_point RestBegins() const;
    bool Rests() const { return Clock::now() >= RestBegins(); }

    DeviceSearch<PulseCapture> search_;

    mutable std::mutex mutex_;  // guards what follows
    std::unique_ptr<PulseCapture> stream_;
    std::vector<int16_t> fetched_;
    size_t unwritten_ = 0;  // frames read and not written yet
    double usualPiece_;     // seconds, while something sounds
    double piece_;          // as the stream has it
    bool isPaused_ = true;
    Clock::time_point lastSound_;
    Clock::time_point lostAt_;  // while there is no stream
    Clock::time_point playingSince_;
    Clock::duration playedBefore_{};
};

}  // namespace tdkplay
