#include "player/Playback.h"

#include "player/SilentOutput.h"

namespace tdkplay {

Playback::Playback(HostContext& context, std::unique_ptr<Decoder> decoder, const std::string& outputName, bool loop)
    : context_(context),
      pump_(std::move(decoder), context.Hooks(), loop),
      output_(OpenOutput(outputName, pump_.Format(), wake_.Handle())) {
    PutEngine();
}

Playback::~Playback() {
    Stop();
}

void Playback::PutEngine() {
    // The delay is measured from the end of a delivery, which comes on top of what the device holds.
    ComPtr<Engine> engine = MakeCom<Engine>(output_->LargestLatency() + kBlockSeconds);
    if (playing_) engine->SetState(kEngineStatePlaying);
    pump_.SetOutput(output_, engine);
    context_.Player().SetEngine(engine);
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
    pump_.Seek(pump_.Position() + seconds);
    wake_.Set();
}

void Playback::Stop() {
    playing_ = false;
    pump_.SetRunning(false);
    context_.Player().SetState(kEngineStateStopped);
    pump_.Close();
}

void Playback::OnDeviceMoved() {
    PutEngine();
}

void Playback::OnDeviceLost() {
    output_ = std::make_shared<SilentOutput>(pump_.Format());
    PutEngine();
}

}  // namespace tdkplay
