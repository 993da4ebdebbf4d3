// A PulseAudio server, or another that speaks its protocol. The latency it tells is the server's own
// measure, down to the loudspeaker.
#pragma once

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>

#include "player/sound/AudioOutput.h"
#include "player/sound/PulseStream.h"

namespace tdkplay {

inline constexpr char kPulseName[] = "pulse";

// Without a chosen device it goes where the default goes, and while the chosen one isn't there, too: the server moves
// the stream, or this object asks it to.
class PulseOutput final : public AudioOutput, private PulseStream {
public:
    // Null if there is no server, or it doesn't take the format. Never starts a server. Throws PlayerError with
    // kNoSound if the server hasn't the device that it must have.
    static std::unique_ptr<AudioOutput> Open(const OutputRequest& request, const PcmFormat& format, HANDLE wake);
    ~PulseOutput() override { Stop(); }

    std::string DeviceName() override;
    size_t Room() override;
    uint32_t WaitForRoom() override { return INFINITE; }
    void Write(const int16_t* samples, size_t frames) override;
    double Latency() override { return std::max(SignedLatency(), 0.0); }
    void SetLead(double seconds) override { SetBuffering(Buffering(seconds)); }
    double LargestLatency() const override { return kHiddenLead + kLargestExtraLatency; }
    void SetPaused(bool paused) override;
    void Flush() override;
    void BeginDrain() override;
    bool IsDrained() override { return drained_ || IsBroken(); }
    uint32_t WaitForDrain() override { return INFINITE; }
    bool HasFailed() override { return IsBroken(); }
    bool TakeMoved() override { return moved_.exchange(false); }

private:
    // What a server or a wireless loudspeaker may add to the lead, in seconds.
    static constexpr double kLargestExtraLatency = 0.5;

    PulseOutput(const PcmFormat& format, HANDLE wake) : PulseStream(format, wake) {}
    bool Connect(const OutputRequest& request);
    bool ConnectStream(const std::string& device);
    pa_buffer_attr Buffering(double lead) const;
    // With the lock held.
    std::string CurrentDevice() const;
    void MoveTo(const std::string& device);

    static void OnMoved(pa_stream* stream, void* self);
    static void OnDrained(pa_stream* stream, int success, void* self);

    std::atomic<bool> moved_ = false;
    std::atomic<bool> drained_ = false;
};

}  // namespace tdkplay
