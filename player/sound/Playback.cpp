#include "player/sound/Playback.h"

#include <tdkviz/analysis_frame.h>

#include <algorithm>
#include <utility>

#include "player/sound/CaptureDecoder.h"

namespace tdkplay {
namespace {

constexpr double kMillisecond = 0.001;

// A frame's samples begin where the delay points to: with less, they would run beyond what was delivered. The delay is
// told in whole milliseconds.
double SmallestDelay(const PcmFormat& format) {
    return static_cast<double>(kWaveformSamples) / format.Rate + kMillisecond;
}

}  // namespace

Playback::Playback(HostContext& context, std::unique_ptr<Decoder> decoder, const OutputRequest& output, bool loop)
    : context_(context),
      request_(output),
      pump_(std::move(decoder), context.Hooks(), loop),
      output_(OpenOutput(output, pump_.Format(), wake_.Handle())) {
    PutEngine();
}

Playback::Playback(HostContext& context, const std::string& captureDevice)
    : context_(context),
      capture_(std::make_shared<Capture>(captureDevice, wake_.Handle())),
      pump_(std::make_unique<CaptureDecoder>(capture_), context.Hooks(), false),
      output_(capture_) {
    PutEngine();
}

Playback::~Playback() {
    Stop();
}

void Playback::PutEngine(Source source) {
    const PcmFormat format = source.Audio ? source.Audio->Format() : pump_.Format();
    // The delay is measured from the end of a delivery, which comes on top of what the device holds.
    engine_ = MakeCom<Engine>(output_->LargestLatency() + kBlockSeconds + kLargestOffset * kMillisecond,
                              SmallestDelay(format));
    if (playing_) engine_->SetState(kEngineStatePlaying);
    engine_->SetVisualize(watched_ && !pump_.IsResting());
    ApplyOffset();
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

// What is on its way to the listener stays where it is, in the device and in the hooks, and is heard later. What is
// captured goes on without us; all that can be held is the picture.
void Playback::Pause() {
    playing_ = false;
    pump_.SetRunning(false);
    if (capture_)
        context_.Player().SetStateUntold(kEngineStatePaused);
    else
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
    output_ = ReopenOutput(request_, format, wake_.Handle());
    PutEngine(std::move(source));
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
    ApplyOffset();
    ApplyVisibility();
}

void Playback::ApplyVisibility() {
    engine_->SetVisualize(watched_ && !pump_.IsResting());
    // Told that it stands still, the add-on would clear a picture that is held.
    if (playing_) context_.Player().RepeatState();
}

void Playback::SetOffsets(DeviceOffsets offsets) {
    offsets_ = std::move(offsets);
    ApplyOffset();
}

void Playback::SetOffset(int milliseconds) {
    offsets_.Set(DeviceName(), milliseconds);
    ApplyOffset();
}

// Pictures that come earlier need audio that much further ahead.
void Playback::ApplyOffset() {
    const int offset = Offset();
    engine_->SetOffset(offset);
    output_->SetLead(watched_ ? kUsualLead + std::max(-offset, 0) * kMillisecond : kHiddenLead);
}

double Playback::Played() {
    return capture_ ? capture_->Elapsed() : pump_.Played();
}

void Playback::OnDeviceMoved() {
    PutEngine();
}

void Playback::OnRestChanged() {
    ApplyVisibility();
}

}  // namespace tdkplay
