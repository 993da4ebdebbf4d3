// The road of the audio: decoder, hooks, device. Each block goes to the hooks right before it goes to the
// device, so they have it as far ahead of the listener as the device does.
#pragma once

#include <windows.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

#include "player/host/AudioHooks.h"
#include "player/host/Buffer.h"
#include "player/host/Engine.h"
#include "player/sound/AudioOutput.h"
#include "player/sound/Decoder.h"
#include "player/sound/Gain.h"
#include "player/sound/Timeline.h"

namespace tdkplay {

// Seconds of audio in one delivery.
inline constexpr double kBlockSeconds = 0.025;

// A piece to play. Without a decoder it is none.
struct Source {
    std::unique_ptr<Decoder> Audio;
    size_t Piece = 0;  // the caller's number for it
};

// What is heard now, in seconds.
struct HeardPlace {
    size_t Piece = 0;
    double Position = 0;  // in the piece
    double Length = 0;    // of the piece; 0: the file doesn't tell
    // Until the next piece is heard, which goes out already; infinite if none does.
    double UntilNext = std::numeric_limits<double>::infinity();

    bool IsLeaving() const { return UntilNext != std::numeric_limits<double>::infinity(); }
};

// Any thread may call anything; whoever calls DeliverBlock is the audio thread.
class AudioPump {
public:
    enum class State {
        kIdle,       // not running
        kDelivered,  // a block went out; try again at once
        kFull,       // the device has no room
        kDraining,   // the decoder is at its end, the device still plays
        kEnded,      // everything has been heard
        kNextPiece,  // the piece that was put next has begun to go out; told once
        kMoved,      // the device has become another one; told once
        kRest,       // the output has begun to rest, or has stopped; told once
    };
    struct Step {
        State Result;
        uint32_t Wait;  // milliseconds after which another step makes sense, INFINITE: when woken
    };

    // `repeats` begins a piece again that no other one follows.
    AudioPump(std::unique_ptr<Decoder> decoder, AudioHooks& hooks, bool repeats);

    PcmFormat Format();
    // Whether the output plays or not is kept. The hooks hear of the format again, for the engine's delay. With a
    // source, that one begins, in the output's format.
    void SetOutput(std::shared_ptr<AudioOutput> output, ComPtr<Engine> engine, Source source = {});
    // Begins another piece of the same format at once.
    void Begin(Source source);
    // The piece that follows this one without a gap, if it has the same format; else it waits for TakeNext.
    void SetNext(Source source);
    bool HasNext();
    void SetRepeats(bool repeats);
    Source TakeNext();
    void SetRunning(bool running);
    // Percent. For the listener alone: the hooks get the full level.
    void SetVolume(int percent);
    // To this place in the piece that goes out, in seconds, or that far on; beyond its ends are its ends.
    void Seek(double seconds);
    void SeekBy(double seconds);
    // Tells the hooks that no audio flows any more.
    void Close();

    Step DeliverBlock();
    // As it was last told.
    bool IsResting();

    HeardPlace Where();
    // Everything has been heard, and nothing goes on by itself.
    bool HasEnded();
    // The time heard since the beginning, in seconds.
    double Played();

private:
    Step Finish();
    void AnnounceFormat();
    size_t Decode();
    bool GoOn(size_t framesOfBlock);
    void Take(Source source);
    void SeekTo(double frame);
    void ForgetAhead();
    uint64_t AheadFrames() const;
    uint64_t HeardFrame() const { return delivered_ - AheadFrames(); }
    double PlayedSeconds() const;

    AudioHooks& hooks_;

    std::mutex mutex_;  // guards what follows, and keeps calls to the hooks in order
    bool repeats_;
    Source source_;
    Source next_;
    PcmFormat format_;
    size_t blockFrames_ = 0;
    std::shared_ptr<AudioOutput> output_;
    ComPtr<Engine> engine_;
    ComPtr<Buffer> buffer_ = MakeCom<Buffer>();
    std::vector<int16_t> block_;
    Gain gain_;
    bool running_ = false;
    bool formatTold_ = false;
    bool rests_ = false;  // as it was told
    bool atEnd_ = false;
    bool hasBegunNext_ = false;
    Timeline timeline_;
    uint64_t pieceFrames_ = 0;  // that the decoder has given since the piece began or was sought in
    uint64_t delivered_ = 0;    // frames in this format
    uint64_t forgotten_ = 0;    // frames delivered, but flushed before they were heard
    double playedBefore_ = 0;   // seconds heard in former formats
};

}  // namespace tdkplay
