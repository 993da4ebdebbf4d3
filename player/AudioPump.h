// The road of the audio: decoder, hooks, device. Each block goes to the hooks right before it goes to the
// device, so they have it as far ahead of the listener as the device does.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "player/AudioHooks.h"
#include "player/AudioOutput.h"
#include "player/Buffer.h"
#include "player/Decoder.h"
#include "player/Engine.h"
#include "player/Gain.h"

namespace tdkplay {

// Seconds of audio in one delivery.
inline constexpr double kBlockSeconds = 0.025;

// Any thread may call anything; whoever calls DeliverBlock is the audio thread.
class AudioPump {
public:
    enum class State {
        kIdle,       // not running
        kDelivered,  // a block went out; try again at once
        kFull,       // the device has no room
        kDraining,   // the decoder is at its end, the device still plays
        kEnded,      // everything has been heard
        kMoved,      // the device has become another one; told once
        kRest,       // the output has begun to rest, or has stopped; told once
    };
    struct Step {
        State Result;
        uint32_t Wait;  // milliseconds after which another step makes sense, INFINITE: when woken
    };

    AudioPump(std::unique_ptr<Decoder> decoder, AudioHooks& hooks, bool loop);

    PcmFormat Format() const { return format_; }
    uint64_t TotalFrames() const { return totalFrames_; }
    // Whether the output plays or not is kept. The hooks hear of the format again, for the engine's delay.
    void SetOutput(std::shared_ptr<AudioOutput> output, ComPtr<Engine> engine);
    void SetRunning(bool running);
    // Percent. For the listener alone: the hooks get the full level.
    void SetVolume(int percent);
    // To this place in the piece, in seconds; beyond its end is its end.
    void Seek(double seconds);
    // Tells the hooks that no audio flows any more.
    void Close();

    Step DeliverBlock();
    // As it was last told.
    bool IsResting();

    // What is heard now: the place in the piece, and the time heard since the beginning, in seconds.
    double Position();
    double Played();

private:
    Step Finish();
    void AnnounceFormat();
    size_t Decode();
    double Heard(uint64_t frames) const;

    AudioHooks& hooks_;
    const std::unique_ptr<Decoder> decoder_;  // used under the lock
    const PcmFormat format_;
    const uint64_t totalFrames_;
    const size_t blockFrames_;
    const bool loop_;

    std::mutex mutex_;  // guards what follows, and keeps calls to the hooks in order
    std::shared_ptr<AudioOutput> output_;
    ComPtr<Engine> engine_;
    ComPtr<Buffer> buffer_ = MakeCom<Buffer>();
    std::vector<int16_t> block_;
    Gain gain_;
    bool running_ = false;
    bool formatTold_ = false;
    bool rests_ = false;  // as it was told
    bool atEnd_ = false;
    uint64_t nextFrame_ = 0;  // in the piece
    uint64_t delivered_ = 0;  // frames in all
    uint64_t forgotten_ = 0;  // frames delivered, but flushed before they were heard
};

}  // namespace tdkplay
