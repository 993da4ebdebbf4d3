// What a PulseAudio server mixes for an output, or records from an input, as a stream. It lives as long as its device
// is the right one; after that another one is opened.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "player/sound/PulseStream.h"

namespace tdkplay {

struct CaptureRequest {
    std::string Device;           // an output or an input as the sound server names it; empty: the default output
    bool MustHaveDevice = false;  // otherwise one that isn't there means the default output, too
};

// Any thread may call anything.
class PulseCapture final : private PulseStream {
public:
    // Begins paused. Null if there is no server, nothing to capture, or the server doesn't take the format.
    // Throws PlayerError with kNoSound if the server hasn't the device that it must have. `wake` is set when audio
    // comes or something has happened to the device, and outlives this object.
    static std::unique_ptr<PulseCapture> Open(const CaptureRequest& request, const PcmFormat& format, HANDLE wake);
    ~PulseCapture() { Stop(); }

    // The output that is listened to, or the input.
    const PulseDevice& Device() const { return device_; }
    // Adds what has come since the last call, interleaved.
    void Fetch(std::vector<int16_t>& samples);
    // Seconds from the end of what was fetched to what is heard now; below 0 if that has been heard already. For a
    // monitor the library takes off the time that the output still needs, so that what is yet to be heard is a negative
    // latency of the record stream.
    double Latency() const { return -SignedLatency(); }
    // How much audio comes at once, in seconds. The server mixes no later than it must for that.
    void SetPiece(double seconds) { SetBuffering(Buffering(seconds)); }
    // Paused, nothing comes. What has come and wasn't fetched is lost.
    void SetPaused(bool paused);
    // The device sleeps, since nobody plays.
    bool IsSuspended() const { return suspended_; }
    // The device is gone or no longer the right one. Nothing is worth fetching any more.
    bool HasFailed() const { return IsBroken(); }

private:
    PulseCapture(const PcmFormat& format, HANDLE wake) : PulseStream(format, wake) {}
    bool Connect(const CaptureRequest& request);
    bool ConnectStream();
    pa_buffer_attr Buffering(double piece) const;

    static void OnSuspended(pa_stream* stream, void* self);
    static void OnTiming(pa_stream* stream, int success, void* self);

    PulseDevice device_;  // constant once open
    std::atomic<bool> suspended_ = false;
};

}  // namespace tdkplay
