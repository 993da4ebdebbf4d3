// Play, pause, seek, stop: keeps pump, device, engine and observers in step. For the host's thread.
#pragma once

#include <memory>

#include "player/AudioPump.h"
#include "player/Event.h"
#include "player/HostContext.h"

namespace tdkplay {

class Playback {
public:
    // Opens the output and puts the first engine in place. Throws PlayerError with kNoSound.
    Playback(HostContext& context, std::unique_ptr<Decoder> decoder, const OutputRequest& output, bool loop);
    ~Playback();

    AudioPump& Pump() { return pump_; }
    // Set by the output and by every change here; the audio thread waits on it.
    const Event& Wake() const { return wake_; }
    const char* OutputName() const { return output_->Name(); }
    bool IsPlaying() const { return playing_; }

    void Play();
    void Pause();
    void SeekBy(double seconds);
    // In the piece, in seconds.
    void Seek(double seconds);
    void Stop();
    // Begins this piece at once, paused or playing as before. One in another format is another output and another
    // engine; an output that doesn't open any more leaves silence.
    void Begin(Source source);
    // The piece that comes after this one.
    void SetNext(Source source);
    // At the end: goes on with the piece that comes next. False if there is none.
    bool GoOn();
    // Percent, at first kFullVolume; beyond 0 and 100 is 0 and 100.
    void SetVolume(int percent);
    int Volume() const { return volume_; }
    // With nobody watching, the add-on rests and the audio goes out in larger pieces.
    void SetWatched(bool watched);

    // The device is another one now: another engine, whose delay is the new device's.
    void OnDeviceMoved();
    // The device is gone: go on without sound.
    void OnDeviceLost();

private:
    void PutEngine(Source source = {});
    std::shared_ptr<AudioOutput> OpenOutputFor(const PcmFormat& format) const;

    HostContext& context_;
    const OutputRequest request_;
    const Event wake_;
    AudioPump pump_;
    std::shared_ptr<AudioOutput> output_;
    ComPtr<Engine> engine_;
    bool playing_ = false;
    bool watched_ = true;
    int volume_ = kFullVolume;
};

}  // namespace tdkplay
