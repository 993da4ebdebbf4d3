// Play, pause, seek, stop: keeps pump, device, engine and observers in step. For the host's thread.
#pragma once

#include <memory>
#include <string>

#include "player/base/Event.h"
#include "player/host/HostContext.h"
#include "player/sound/AudioPump.h"
#include "player/sound/Capture.h"
#include "player/sound/DeviceOffsets.h"

namespace tdkplay {

class Playback {
public:
    // A piece. Opens the output and puts the first engine in place. Throws PlayerError with kNoSound.
    Playback(HostContext& context, std::unique_ptr<Decoder> decoder, const OutputRequest& output, bool loop);
    // What the system plays, instead of a piece: nothing goes out, and there are no places to seek. `device` as in
    // CaptureRequest.
    Playback(HostContext& context, const std::string& captureDevice);
    ~Playback();

    AudioPump& Pump() { return pump_; }
    // Null unless this captures.
    const Capture* Captured() const { return capture_.get(); }
    // Seconds heard since the beginning.
    double Played();
    // Set by the output and by every change here; the audio thread waits on it.
    const Event& Wake() const { return wake_; }
    // As the sound server names it; empty if there is none.
    std::string DeviceName() const { return output_->DeviceName(); }
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
    // Nothing sounds: the add-on rests.
    bool IsResting() { return pump_.IsResting(); }

    // What the devices don't tell of their latency, and the milliseconds for the one in use. A change is seen in the
    // next frames.
    void SetOffsets(DeviceOffsets offsets);
    const DeviceOffsets& Offsets() const { return offsets_; }
    void SetOffset(int milliseconds);
    int Offset() const { return offsets_.Of(DeviceName()); }

    // The device is another one now: another engine, whose delay is the new device's.
    void OnDeviceMoved();
    // The output rests, or does so no more.
    void OnRestChanged();

private:
    void PutEngine(Source source = {});
    void ApplyOffset();
    void ApplyVisibility();

    HostContext& context_;
    const OutputRequest request_;
    const Event wake_;
    const std::shared_ptr<Capture> capture_;
    AudioPump pump_;
    std::shared_ptr<AudioOutput> output_;
    ComPtr<Engine> engine_;
    DeviceOffsets offsets_;
    bool playing_ = false;
    bool watched_ = true;
    int volume_ = kFullVolume;
};

}  // namespace tdkplay
