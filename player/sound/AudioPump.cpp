#include "player/sound/AudioPump.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tdkplay {
namespace {

constexpr uint16_t kBitsPerSample = 16;
constexpr uint32_t kLargestBlockBytes = 0xFFFC;  // the format's BlockSize has 16 bits

size_t BlockFrames(const PcmFormat& format) {
    const auto wanted = static_cast<uint32_t>(kBlockSeconds * format.Rate);
    return std::clamp(wanted, 1u, kLargestBlockBytes / format.FrameBytes());
}

}  // namespace

AudioPump::AudioPump(std::unique_ptr<Decoder> decoder, AudioHooks& hooks, bool repeats)
    : hooks_(hooks), repeats_(repeats) {
    Take({std::move(decoder), 0});
}

PcmFormat AudioPump::Format() {
    const std::lock_guard lock(mutex_);
    return format_;
}

void AudioPump::SetOutput(std::shared_ptr<AudioOutput> output, ComPtr<Engine> engine, Source source) {
    const std::lock_guard lock(mutex_);
    if (source.Audio) {
        playedBefore_ = PlayedSeconds();
        ForgetAhead();
        delivered_ = forgotten_ = 0;
        Take(std::move(source));
    }
    if (output != output_) {
        if (atEnd_) output->BeginDrain();
        output->SetPaused(!running_);
    }
    output_ = std::move(output);
    engine_ = std::move(engine);
    formatTold_ = false;
}

void AudioPump::Begin(Source source) {
    const std::lock_guard lock(mutex_);
    ForgetAhead();
    Take(std::move(source));
}

void AudioPump::Take(Source source) {
    source_ = std::move(source);
    next_ = {};
    format_ = source_.Audio->Format();
    blockFrames_ = BlockFrames(format_);
    block_.resize(blockFrames_ * format_.Channels);
    timeline_.Restart({delivered_, 0, source_.Piece, source_.Audio->TotalFrames()});
    pieceFrames_ = 0;
    atEnd_ = false;
}

void AudioPump::SetNext(Source source) {
    const std::lock_guard lock(mutex_);
    next_ = std::move(source);
}

void AudioPump::SetRepeats(bool repeats) {
    const std::lock_guard lock(mutex_);
    repeats_ = repeats;
}

bool AudioPump::HasNext() {
    const std::lock_guard lock(mutex_);
    return next_.Audio != nullptr;
}

Source AudioPump::TakeNext() {
    const std::lock_guard lock(mutex_);
    return std::exchange(next_, {});
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
    SeekTo(seconds * format_.Rate);
}

void AudioPump::SeekBy(double seconds) {
    const std::lock_guard lock(mutex_);
    const Timeline::Stretch& piece = timeline_.Newest();
    const uint64_t heard = std::max(HeardFrame(), piece.Begins) - piece.Begins + piece.From;
    SeekTo(static_cast<double>(heard) + seconds * format_.Rate);
}

void AudioPump::SeekTo(double place) {
    const uint64_t length = timeline_.Newest().Length;
    auto frame = static_cast<uint64_t>(std::max(place, 0.0));
    if (length != 0) frame = std::min(frame, length);
    if (!source_.Audio->Seek(frame)) return;
    ForgetAhead();
    timeline_.Restart({delivered_, frame, source_.Piece, length});
    pieceFrames_ = 0;
    atEnd_ = false;
}

// What is on its way to the listener goes. What the hooks have is from another place: let them forget it, too.
void AudioPump::ForgetAhead() {
    forgotten_ += AheadFrames();
    output_->Flush();
    hooks_.AnnounceState(false);
    hooks_.AnnounceState(true);
}

uint64_t AudioPump::AheadFrames() const {
    return static_cast<uint64_t>(std::clamp(output_->Latency() * format_.Rate, 0.0, static_cast<double>(delivered_)));
}

void AudioPump::Close() {
    const std::lock_guard lock(mutex_);
    hooks_.AnnounceState(false);
}

AudioPump::Step AudioPump::DeliverBlock() {
    const std::lock_guard lock(mutex_);
    if (output_->TakeMoved()) return {State::kMoved, 0};
    if (std::exchange(hasBegunNext_, false)) return {State::kNextPiece, 0};
    if (!running_) return {State::kIdle, INFINITE};
    if (atEnd_ && !GoOn(0)) return Finish();
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

// A block goes on with the next piece where this one ends.
size_t AudioPump::Decode() {
    size_t frames = 0;
    while (frames < blockFrames_) {
        const size_t got = source_.Audio->Read(block_.data() + frames * format_.Channels, blockFrames_ - frames);
        frames += got;
        pieceFrames_ += got;
        if (got == 0 && !GoOn(frames)) break;
    }
    return frames;
}

// At the end of the piece, behind this many frames of the block: with the next one, else with this one again.
bool AudioPump::GoOn(size_t framesOfBlock) {
    if (next_.Audio) {
        if (next_.Audio->Format() != format_) return false;
        source_ = std::exchange(next_, {});
        hasBegunNext_ = true;
    } else if (const bool isEmpty = pieceFrames_ == 0 && timeline_.Newest().From == 0;
               !repeats_ || isEmpty || !source_.Audio->Seek(0)) {
        return false;
    }
    timeline_.Reach(HeardFrame());
    timeline_.Add({delivered_ + framesOfBlock, 0, source_.Piece, source_.Audio->TotalFrames()});
    pieceFrames_ = 0;
    atEnd_ = false;
    return true;
}

HeardPlace AudioPump::Where() {
    const std::lock_guard lock(mutex_);
    const double rate = format_.Rate;
    const uint64_t heard = HeardFrame();
    const Timeline::Stretch& piece = timeline_.Reach(heard);
    const Timeline::Stretch* const following = timeline_.Following();
    const uint64_t place = std::max(heard, piece.Begins) - piece.Begins + piece.From;
    return {
        piece.Piece, static_cast<double>(place) / rate, static_cast<double>(piece.Length) / rate,
        following ? static_cast<double>(following->Begins - heard) / rate : std::numeric_limits<double>::infinity()};
}

bool AudioPump::HasEnded() {
    const std::lock_guard lock(mutex_);
    return running_ && atEnd_ && output_->IsDrained();
}

double AudioPump::PlayedSeconds() const {
    return playedBefore_ +
           static_cast<double>(HeardFrame() - std::min(forgotten_, HeardFrame())) / static_cast<double>(format_.Rate);
}

double AudioPump::Played() {
    const std::lock_guard lock(mutex_);
    return PlayedSeconds();
}

}  // namespace tdkplay
