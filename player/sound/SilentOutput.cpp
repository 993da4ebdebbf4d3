#include "player/sound/SilentOutput.h"

#include <algorithm>

namespace tdkplay {
namespace {

int64_t Now() {
    LARGE_INTEGER count = {};
    QueryPerformanceCounter(&count);
    return count.QuadPart;
}

int64_t ClockFrequency() {
    LARGE_INTEGER frequency = {};
    QueryPerformanceFrequency(&frequency);
    return std::max<int64_t>(frequency.QuadPart, 1);
}

// value * numerator / denominator, without the overflow that nanoseconds times a sample rate bring soon.
uint64_t Scale(uint64_t value, uint64_t numerator, uint64_t denominator) {
    return value / denominator * numerator + value % denominator * numerator / denominator;
}

}  // namespace

SilentOutput::SilentOutput(const PcmFormat& format) : rate_(format.Rate), frequency_(ClockFrequency()) {
    SetLead(kUsualLead);
}

void SilentOutput::SetLead(double seconds) {
    const std::lock_guard lock(mutex_);
    capacity_ = static_cast<uint64_t>(seconds * rate_);
}

uint64_t SilentOutput::Queued() {
    if (paused_) return written_ - heard_;
    const int64_t now = Now();
    heard_ = base_ +
             Scale(static_cast<uint64_t>(std::max<int64_t>(now - since_, 0)), rate_, static_cast<uint64_t>(frequency_));
    if (heard_ > written_) {  // it starved; the next frame is heard when it comes
        heard_ = base_ = written_;
        since_ = now;
    }
    return written_ - heard_;
}

uint32_t SilentOutput::Milliseconds(uint64_t frames) const {
    return static_cast<uint32_t>((frames * 1000 + rate_ - 1) / rate_);
}

size_t SilentOutput::Room() {
    const std::lock_guard lock(mutex_);
    const uint64_t queued = Queued();
    return queued < capacity_ ? static_cast<size_t>(capacity_ - queued) : 0;
}

uint32_t SilentOutput::WaitForRoom() {
    const std::lock_guard lock(mutex_);
    const uint64_t queued = Queued();
    if (paused_) return INFINITE;
    return std::max(Milliseconds(queued - std::min(queued, capacity_ / 2)), 1u);
}

void SilentOutput::Write(const int16_t*, size_t frames) {
    const std::lock_guard lock(mutex_);
    Queued();
    written_ += frames;
}

double SilentOutput::Latency() {
    const std::lock_guard lock(mutex_);
    return static_cast<double>(Queued()) / rate_;
}

void SilentOutput::SetPaused(bool paused) {
    const std::lock_guard lock(mutex_);
    Queued();
    paused_ = paused;
    base_ = heard_;
    since_ = Now();
}

void SilentOutput::Flush() {
    const std::lock_guard lock(mutex_);
    Queued();
    base_ = heard_ = written_;
    since_ = Now();
}

bool SilentOutput::IsDrained() {
    const std::lock_guard lock(mutex_);
    return Queued() == 0;
}

uint32_t SilentOutput::WaitForDrain() {
    const std::lock_guard lock(mutex_);
    return paused_ ? INFINITE : std::max(Milliseconds(Queued()), 1u);
}

}  // namespace tdkplay
