// What playing to a PulseAudio server and recording from it have in common: a connection with one stream, and the watch
// over the device that it should be on.
#pragma once

#include <windows.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "player/sound/Decoder.h"
#include "player/sound/PulseDeviceWatch.h"
#include "player/sound/PulseDevices.h"

namespace tdkplay {

// A base. Until Reach has succeeded, nothing else but Stop.
class PulseStream {
public:
    PulseStream(const PulseStream&) = delete;
    PulseStream& operator=(const PulseStream&) = delete;

protected:
    // `wake` is set when there is audio or room for it, and when something has happened to the device.
    PulseStream(const PcmFormat& format, HANDLE wake) : format_(format), wake_(wake) {}
    ~PulseStream();

    // Connects to the server. False if there is none.
    bool Reach();
    // Nothing is called back any more: the first that the destructor of a derived class does.
    void Stop();

    // The following with the lock held. The stream, not connected yet, with this name for people. False if the server
    // doesn't take the format.
    bool Make(const char* name);
    // False if the stream comes to nothing.
    bool AwaitReady();
    // The last step: false if the connection is lost already. `chosen` and `events` as in PulseDeviceWatch.
    bool Watch(const std::string& chosen, const std::vector<PulseDevice>& devices, PulseDeviceWatch::Events events);
    // All of it the server's choice.
    static pa_buffer_attr ServersBuffering();
    uint32_t Bytes(double seconds) const {
        return static_cast<uint32_t>(seconds * format_.Rate) * format_.FrameBytes();
    }

    // These with the lock free. Seconds by which what is heard is behind what is written or before what is read; 0 as
    // long as nobody knows.
    double SignedLatency() const;
    void SetBuffering(const pa_buffer_attr& buffering);

    // These on any thread.
    void Fail();
    void Wake() const { SetEvent(wake_); }
    bool IsBroken() const { return failed_; }

    const PcmFormat format_;
    // Used under the connection's lock, whose thread calls the functions below.
    std::unique_ptr<PulseConnection> connection_;
    pa_stream* stream_ = nullptr;

private:
    static void OnState(pa_stream* stream, void* self);
    static void OnData(pa_stream* stream, size_t bytes, void* self);

    const HANDLE wake_;
    std::atomic<bool> failed_ = false;
    std::optional<PulseDeviceWatch> watch_;
};

}  // namespace tdkplay
