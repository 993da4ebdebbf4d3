// Where audio goes: one abstract class, one file for each kind, one list that chooses.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "player/sound/Decoder.h"

namespace tdkplay {

// How far ahead of the listener the player writes, in seconds: with somebody watching, and with nobody, when
// fewer and larger pieces cost less.
inline constexpr double kUsualLead = 0.120;
inline constexpr double kHiddenLead = 1.0;

// A device that plays one format. It begins paused. Any thread may call anything.
class AudioOutput {
public:
    virtual ~AudioOutput() = default;

    // The device as the sound server names it; empty if there is none.
    virtual std::string DeviceName() { return {}; }
    // Sample frames that can be written now.
    virtual size_t Room() = 0;
    // A limit for the wait until it is worth filling it again, in milliseconds; INFINITE if the wake event tells.
    virtual uint32_t WaitForRoom() = 0;
    // At most Room() frames, interleaved.
    virtual void Write(const int16_t* samples, size_t frames) = 0;
    // Seconds from the end of what was written to what is heard now; below 0 if that is past already.
    virtual double Latency() = 0;
    // kUsualLead at first, kHiddenLead at most. What is ahead by more stays and is heard.
    virtual void SetLead(double seconds) = 0;
    // The largest Latency() to expect, with any lead.
    virtual double LargestLatency() const = 0;
    // Paused, it keeps what it holds and costs nothing.
    virtual void SetPaused(bool paused) = 0;
    // Forgets what was written and not heard yet.
    virtual void Flush() = 0;
    // After the last Write: play what is there, however little.
    virtual void BeginDrain() = 0;
    // All that was written has been heard; a limit for the wait until then, as WaitForRoom.
    virtual bool IsDrained() = 0;
    virtual uint32_t WaitForDrain() = 0;
    // The device is gone, or has become another one since the last call.
    virtual bool HasFailed() { return false; }
    virtual bool TakeMoved() { return false; }
    // Nothing sounds, and there is no room until something does.
    virtual bool IsResting() { return false; }
};

inline constexpr char kAutomaticOutput[] = "auto";

struct OutputRequest {
    std::string Kind = kAutomaticOutput;  // of OutputNames()
    std::string Device;                   // as the sound server names it; empty: the server's choice
    bool MustHaveDevice = false;          // otherwise one that isn't there means the server's choice, too
};

// "auto" and the names of the list.
std::vector<std::string> OutputNames();

// Opens the output of this kind, which passes over the device if it has none to choose from; "auto" takes the first
// that opens. From then on it never fails: without a device it is silent until there is one. `wake` is an event that
// the output sets when there is room again or something has happened to the device; it must outlive the output. Throws
// PlayerError with kNoSound if what was asked for doesn't open.
std::unique_ptr<AudioOutput> OpenOutput(const OutputRequest& request, const PcmFormat& format, HANDLE wake);
// The same in the middle of a run, where nothing must fail: what doesn't open plays in silence until it does.
std::unique_ptr<AudioOutput> ReopenOutput(OutputRequest request, const PcmFormat& format, HANDLE wake);

}  // namespace tdkplay
