#include "player/AudioPump.h"

#include <algorithm>

namespace tdkplay {
namespace {

constexpr uint16_t kBitsPerSample = 16;
constexpr uint32_t kLargestBlockBytes = 0xFFFC;  // the format's BlockSize has 16 bits

size_t BlockFrames(const PcmFormat& format) {
    const auto wanted = static_cast<uint32_t>(kBlockSeconds * format.Rate);
    return std::clamp(wanted, 1u, kLargestBlockBytes / format.FrameBytes());
}

}  // namespace

AudioPump::AudioPump(std::unique_ptr<Decoder> decoder, AudioHooks& hooks, bool loop)
    : hooks_(hooks),
      decoder_(std::move(decoder)),
      format_(decoder_->Format()),
      totalFrames_(decoder_->TotalFrames()),
      blockFrames_(BlockFrames(format_)),
      loop_(loop),
      block_(blockFrames_ * format_.Channels) {}

void AudioPump::SetOutput(std::shared_ptr<AudioOutput> output, ComPtr<Engine> engine) {
    const std::lock_guard lock(mutex_);
    if (output != output_) {
        if (atEnd_) output->BeginDrain();
        output->SetPaused(!running_);
    }
    output_ = std::move(output);
    engine_ = std::move(engine);
    formatTold_ = false;
}

void AudioPump::SetRunning(bool running) {
    const std::lock_guard lock(mutex_);
    if (running) hooks_.AnnounceState(true);
    running_ = running;
    output_->SetPaused(!running);
}

void AudioPump::SetVolume(int percent) {
    const std::lock_guard lock(mutex_);
    gain_.SetPercent(percent);
}

void AudioPump::Seek(double seconds) {
    const std::lock_guard lock(mutex_);
    auto frame = static_cast<uint64_t>(std::max(seconds, 0.0) * format_.Rate);
    if (totalFrames_ != 0) frame = std::min(frame, totalFrames_);
    if (!decoder_->Seek(frame)) return;
    forgotten_ += static_cast<uint64_t>(std::min(output_->Latency() * format_.Rate, static_cast<double>(delivered_)));
    output_->Flush();
    // What the hooks have is from another place: let them forget it, too.
    hooks_.AnnounceState(false);
    hooks_.AnnounceState(true);
    nextFrame_ = frame;
    atEnd_ = false;
}

void AudioPump::Close() {
    const std::lock_guard lock(mutex_);
    hooks_.AnnounceState(false);
}

AudioPump::Step AudioPump::DeliverBlock() {
    const std::lock_guard lock(mutex_);
    if (output_->TakeMoved()) return {State::kMoved, 0};
    if (!running_) return {State::kIdle, INFINITE};
    if (atEnd_) return Finish();
    const size_t room = output_->Room();
    if (const bool rests = output_->IsResting(); rests != rests_) {
        rests_ = rests;
        return {State::kRest, 0};
    }
    if (room < blockFrames_) return {State::kFull, output_->WaitForRoom()};
    if (!formatTold_) AnnounceFormat();

    const size_t frames = Decode();
    if (frames == 0) {
        atEnd_ = true;
        output_->BeginDrain();
        return Finish();
    }
    if (buffer_->IsShared()) buffer_ = MakeCom<Buffer>();
    buffer_->SetContents(block_.data(), static_cast<uint32_t>(frames * format_.FrameBytes()));
    engine_->SetDelay(output_->Latency() + static_cast<double>(frames) / format_.Rate);
    hooks_.Deliver(buffer_.Get());
    gain_.Apply(block_.data(), frames, format_.Channels);
    output_->Write(block_.data(), frames);
    nextFrame_ += frames;
    delivered_ += frames;
    return {State::kDelivered, 0};
}

bool AudioPump::IsResting() {
    const std::lock_guard lock(mutex_);
    return rests_;
}

AudioPump::Step AudioPump::Finish() {
    if (output_->IsDrained()) return {State::kEnded, INFINITE};
    return {State::kDraining, output_->WaitForDrain()};
}

void AudioPump::AnnounceFormat() {
    KVAAudioFormat format = {};
    format.Channels = format_.Channels;
    format.BitsPerSample = kBitsPerSample;
    format.SamplesPerSecond = format_.Rate;
    format.BlockSize = static_cast<uint16_t>(blockFrames_ * format_.FrameBytes());
    hooks_.AnnounceFormat(format);
    formatTold_ = true;
}

size_t AudioPump::Decode() {
    size_t frames = decoder_->Read(block_.data(), blockFrames_);
    if (frames == 0 && loop_ && nextFrame_ != 0 && decoder_->Seek(0)) {
        nextFrame_ = 0;
        frames = decoder_->Read(block_.data(), blockFrames_);
    }
    return frames;
}

double AudioPump::Heard(uint64_t frames) const {
    return std::max(static_cast<double>(frames) / format_.Rate - output_->Latency(), 0.0);
}

double AudioPump::Position() {
    const std::lock_guard lock(mutex_);
    return Heard(nextFrame_);
}

double AudioPump::Played() {
    const std::lock_guard lock(mutex_);
    return Heard(delivered_ - forgotten_);
}

}  // namespace tdkplay
