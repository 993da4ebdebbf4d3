#include "player/Playback.h"

#include <algorithm>

#include "player/ExitCode.h"
#include "player/SilentOutput.h"

namespace tdkplay {

Playback::Playback(HostContext& context, std::unique_ptr<Decoder> decoder, const OutputRequest& output, bool loop)
    : context_(context),
      request_(output),
      pump_(std::move(decoder), context.Hooks(), loop),
      output_(OpenOutput(output, pump_.Format(), wake_.Handle())) {
    PutEngine();
}

Playback::~Playback() {
    Stop();
}

void Playback::PutEngine(Source source) {
    // The delay is measured from the end of a delivery, which comes on top of what the device holds.
    engine_ = MakeCom<Engine>(output_->LargestLatency() + kBlockSeconds);
    if (playing_) engine_->SetState(kEngineStatePlaying);
    engine_->SetVisualize(watched_);
    pump_.SetOutput(output_, engine_, std::move(source));
    context_.Player().SetEngine(engine_);
    wake_.Set();
}

// Audio flows before the state says so: the add-on starts only if it does.
void Playback::Play() {
    playing_ = true;
    pump_.SetRunning(true);
    wake_.Set();
    context_.Player().SetState(kEngineStatePlaying);
}

// What is on its way to the listener stays where it is, in the device and in the hooks, and is heard later.
void Playback::Pause() {
    playing_ = false;
    pump_.SetRunning(false);
    context_.Player().SetState(kEngineStatePaused);
}

void Playback::SeekBy(double seconds) {
    pump_.SeekBy(seconds);
    wake_.Set();
}

void Playback::Seek(double seconds) {
    pump_.Seek(seconds);
    wake_.Set();
}

void Playback::Begin(Source source) {
    const PcmFormat format = source.Audio->Format();
    if (format == pump_.Format()) {
        pump_.Begin(std::move(source));
        return wake_.Set();
    }
    output_ = OpenOutputFor(format);
    if (!watched_) output_->SetLead(kHiddenLead);
    PutEngine(std::move(source));
}

std::shared_ptr<AudioOutput> Playback::OpenOutputFor(const PcmFormat& format) const {
    try {
        return OpenOutput(request_, format, wake_.Handle());
    } catch (const PlayerError&) {
        return std::make_shared<SilentOutput>(format);
    }
}

void Playback::SetNext(Source source) {
    pump_.SetNext(std::move(source));
    wake_.Set();
}

bool Playback::GoOn() {
    Source next = pump_.TakeNext();
    if (!next.Audio) return false;
    Begin(std::move(next));
    return true;
}

void Playback::Stop() {
    playing_ = false;
    pump_.SetRunning(false);
    context_.Player().SetState(kEngineStateStopped);
    pump_.Close();
}

void Playback::SetVolume(int percent) {
    volume_ = std::clamp(percent, 0, kFullVolume);
    pump_.SetVolume(volume_);
}

void Playback::SetWatched(bool watched) {
    if (watched == watched_) return;
    watched_ = watched;
    output_->SetLead(watched ? kUsualLead : kHiddenLead);
    engine_->SetVisualize(watched);
    context_.Player().RepeatState();
}

void Playback::OnDeviceMoved() {
    PutEngine();
}

void Playback::OnDeviceLost() {
    output_ = std::make_shared<SilentOutput>(pump_.Format());
    if (!watched_) output_->SetLead(kHiddenLead);
    PutEngine();
}

}  // namespace tdkplay
