#include "player/sound/SteadyOutput.h"

#include <utility>

#include "player/sound/SilentOutput.h"

namespace tdkplay {

SteadyOutput::SteadyOutput(std::unique_ptr<AudioOutput> first, OpenFunction open, const PcmFormat& format, HANDLE wake)
    : format_(format), search_(std::move(open), wake), inner_(std::move(first)) {
    if (inner_->DeviceName().empty()) search_.Begin();
}

std::shared_ptr<AudioOutput> SteadyOutput::Inner() const {
    const std::lock_guard lock(mutex_);
    return inner_;
}

void SteadyOutput::Replace(std::shared_ptr<AudioOutput> output) {
    const std::lock_guard lock(mutex_);
    output->SetLead(lead_);
    if (drains_) output->BeginDrain();
    output->SetPaused(isPaused_);
    std::swap(inner_, output);
}

void SteadyOutput::SetLead(double seconds) {
    const std::lock_guard lock(mutex_);
    if (seconds == lead_) return;
    lead_ = seconds;
    inner_->SetLead(seconds);
}

void SteadyOutput::SetPaused(bool paused) {
    const std::lock_guard lock(mutex_);
    isPaused_ = paused;
    inner_->SetPaused(paused);
}

void SteadyOutput::Flush() {
    const std::lock_guard lock(mutex_);
    drains_ = false;
    inner_->Flush();
}

void SteadyOutput::BeginDrain() {
    const std::lock_guard lock(mutex_);
    drains_ = true;
    inner_->BeginDrain();
}

// What the lost device still held is lost with it.
bool SteadyOutput::TakeMoved() {
    const std::shared_ptr<AudioOutput> inner = Inner();
    if (inner->HasFailed()) {
        Replace(std::make_shared<SilentOutput>(format_));
        search_.Begin();
        return true;
    }
    if (std::unique_ptr<AudioOutput> found = search_.Take()) {
        Replace(std::move(found));
        return true;
    }
    return inner->TakeMoved();
}

}  // namespace tdkplay
