#include "player/sound/Capture.h"

#include <algorithm>
#include <cstdlib>

#include "player/base/ExitCode.h"
#include "player/sound/AudioPump.h"

namespace tdkplay {
namespace {

// Servers convert to this anyway where the device differs, and pictures need no more.
constexpr PcmFormat kFormat = {48000, 2};
// After this much silence the pictures rest.
constexpr std::chrono::milliseconds kPatience{3000};
// A change from one device to the next takes no longer.
constexpr std::chrono::milliseconds kChangeTime{1000};
// A sample that differs no more from 0 than this is silence with dither.
constexpr int kLargestDither = 2;
// Seconds of audio at once: with nobody watching, and in silence, when that is how long the pictures need to wake up.
constexpr double kHiddenPiece = 0.5;
constexpr double kRestingPiece = 0.1;

bool IsSilent(const std::vector<int16_t>& samples, size_t first) {
    return std::all_of(samples.begin() + static_cast<std::ptrdiff_t>(first), samples.end(),
                       [](int16_t sample) { return std::abs(sample) <= kLargestDither; });
}

}  // namespace

PcmFormat Capture::Format() {
    return kFormat;
}

Capture::Capture(const std::string& device, HANDLE wake)
    : search_(
          [device, wake] {
              return PulseCapture::Open({device, false}, kFormat, wake);
          },
          wake),
      stream_(PulseCapture::Open({device, !device.empty()}, kFormat, wake)),
      usualPiece_(kBlockSeconds),
      piece_(kBlockSeconds) {
    if (!stream_) throw PlayerError(ExitCode::kNoSound, "there is no sound server, or nothing to capture on it");
}

void Capture::Fetch() {
    if (!stream_ || stream_->HasFailed() || isPaused_) return;
    const size_t before = fetched_.size();
    stream_->Fetch(fetched_);
    if (!IsSilent(fetched_, before)) lastSound_ = Clock::now();
}

Capture::Clock::time_point Capture::RestBegins() const {
    const Clock::time_point silent = lastSound_ + kPatience;
    if (!stream_) return std::min(silent, lostAt_ + kChangeTime);
    return stream_->IsSuspended() ? Clock::time_point::min() : silent;
}

bool Capture::IsResting() {
    const std::lock_guard lock(mutex_);
    return !isPaused_ && Rests();
}

size_t Capture::Room() {
    const std::lock_guard lock(mutex_);
    Fetch();
    const bool rests = Rests();
    SetPiece(rests ? std::max(kRestingPiece, usualPiece_) : usualPiece_);
    if (rests) fetched_.clear();
    return fetched_.size() / kFormat.Channels;
}

uint32_t Capture::WaitForRoom() {
    const std::lock_guard lock(mutex_);
    if (isPaused_ || Rests()) return INFINITE;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(RestBegins() - Clock::now());
    return static_cast<uint32_t>(std::max<int64_t>(left.count(), 1));
}

size_t Capture::Read(int16_t* samples, size_t frames) {
    const std::lock_guard lock(mutex_);
    const size_t count = std::min(frames, fetched_.size() / kFormat.Channels);
    const auto end = fetched_.begin() + static_cast<std::ptrdiff_t>(count * kFormat.Channels);
    std::copy(fetched_.begin(), end, samples);
    fetched_.erase(fetched_.begin(), end);
    unwritten_ += count;
    return count;
}

void Capture::Write(const int16_t*, size_t frames) {
    const std::lock_guard lock(mutex_);
    unwritten_ -= std::min(frames, unwritten_);
}

double Capture::Latency() {
    const std::lock_guard lock(mutex_);
    if (!stream_) return 0.0;
    const size_t frames = unwritten_ + fetched_.size() / kFormat.Channels;
    return stream_->Latency() - static_cast<double>(frames) / kFormat.Rate;
}

void Capture::SetLead(double seconds) {
    const std::lock_guard lock(mutex_);
    usualPiece_ = seconds < kHiddenLead ? kBlockSeconds : kHiddenPiece;
    SetPiece(usualPiece_);
}

void Capture::SetPiece(double seconds) {
    if (seconds == piece_) return;
    piece_ = seconds;
    if (stream_) stream_->SetPiece(seconds);
}

void Capture::SetPaused(bool paused) {
    const std::lock_guard lock(mutex_);
    if (paused == isPaused_) return;
    isPaused_ = paused;
    if (stream_) stream_->SetPaused(paused);
    fetched_.clear();
    const Clock::time_point now = Clock::now();
    if (paused)
        playedBefore_ += now - playingSince_;
    else
        playingSince_ = lastSound_ = now;
}

bool Capture::TakeMoved() {
    const std::lock_guard lock(mutex_);
    if (stream_ && stream_->HasFailed()) {
        stream_.reset();
        lostAt_ = Clock::now();
        search_.Begin();
        return true;
    }
    std::unique_ptr<PulseCapture> found = search_.Take();
    if (!found) return false;
    stream_ = std::move(found);
    stream_->SetPiece(piece_);
    stream_->SetPaused(isPaused_);
    fetched_.clear();
    return true;
}

std::string Capture::DeviceName() {
    const std::lock_guard lock(mutex_);
    return stream_ ? stream_->Device().Name : "";
}

std::string Capture::Title() const {
    const std::lock_guard lock(mutex_);
    return stream_ ? stream_->Device().Description : "";
}

double Capture::Elapsed() const {
    const std::lock_guard lock(mutex_);
    const Clock::duration now = isPaused_ ? Clock::duration{} : Clock::now() - playingSince_;
    return std::chrono::duration<double>(playedBefore_ + now).count();
}

}  // namespace tdkplay
