#include "player/sound/DemoPiece.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

#include "player/base/ExitCode.h"
#include "player/sound/DemoVoices.h"

namespace tdkplay {
namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kBeat = 60.0 / 112.0;  // seconds
constexpr double kBar = 4.0 * kBeat;
constexpr double kEighth = kBeat / 2.0;
constexpr double kSixteenth = kBeat / 4.0;
constexpr int kBars = 12;
constexpr double kTail = 2.0;  // seconds in which the last sounds die away
constexpr auto kFrames = static_cast<size_t>((kBars * kBar + kTail) * kDemoRate);
constexpr auto kEchoLag = static_cast<size_t>(3.0 * kSixteenth * kDemoRate);  // samples
constexpr double kEchoLevel = 0.38;
constexpr double kPeak = 0.89;
constexpr double kLoudest = 0.81245;  // the loudest sample of the mix
constexpr size_t kStep = 64;          // samples that are made at once

// Four chords, one a bar: root of the bass, then the notes of the chord.
struct Chord {
    int Bass;
    std::array<int, 4> Notes;
};
constexpr std::array<Chord, 4> kChords = {{
    {33, {57, 60, 64, 67}},  // A minor 7
    {29, {57, 60, 65, 67}},  // F add 9
    {36, {55, 60, 64, 71}},  // C major 7
    {31, {55, 59, 62, 69}},  // G add 9
}};
constexpr std::array<int, 16> kArpeggio = {0, 2, 1, 3, 2, 0, 3, 1, 0, 3, 2, 1, 3, 2, 1, 2};

// One sample, or one level, for each side.
struct Stereo {
    double Left = 0.0;
    double Right = 0.0;
};
using Step = std::array<Stereo, kStep>;

Stereo PanGains(double pan) {
    const double angle = (pan + 1.0) * std::numbers::pi / 4.0;
    return {std::cos(angle), std::sin(angle)};
}

// A float has more digits than the sample.
int16_t ToSample(double value) {
    constexpr auto kScale = static_cast<float>(kPeak * 32767.0 / kLoudest);
    return static_cast<int16_t>(std::lrint(std::tanh(static_cast<float>(value)) * kScale));
}

// A voice at its place in the piece.
class Sound {
public:
    Sound(double start, std::unique_ptr<Voice> voice)
        : first_(static_cast<size_t>(start * kDemoRate)),
          end_(first_ + static_cast<size_t>(voice->Length() * kDemoRate)),
          voice_(std::move(voice)),
          gains_(PanGains(voice_->Pan(0.0))) {}

    bool EndsBy(size_t frame) const { return end_ <= frame; }
    // Adds what falls into the step that begins at this frame of the piece. It moves slowly between left and right, so
    // its place is worked out at the ends of the step and drawn straight in between.
    void AddTo(Step& step, size_t frame) {
        const size_t from = std::max(first_, frame);
        const size_t to = std::min(end_, frame + kStep);
        if (from >= to) return;
        std::array<double, kStep> samples;
        voice_->Fill(SecondsAt(from), std::span(samples).first(to - from));
        const Stereo before = std::exchange(gains_, PanGains(voice_->Pan(SecondsAt(to))));
        const auto count = static_cast<double>(to - from);
        const Stereo change = {(gains_.Left - before.Left) / count, (gains_.Right - before.Right) / count};
        for (size_t i = from; i < to; ++i) {
            const auto sinceFrom = static_cast<double>(i - from);
            step[i - frame].Left += samples[i - from] * (before.Left + change.Left * sinceFrom);
            step[i - frame].Right += samples[i - from] * (before.Right + change.Right * sinceFrom);
        }
    }

private:
    double SecondsAt(size_t frame) const { return static_cast<double>(frame - first_) / kDemoRate; }

    size_t first_;
    size_t end_;
    std::unique_ptr<Voice> voice_;
    Stereo gains_;  // where it has come to
};

// An echo that crosses over from side to side.
class PingPong {
public:
    void AddTo(Step& step) {
        for (Stereo& sample : step) {
            Stereo& echoed = past_[next_];
            next_ = (next_ + 1) % past_.size();
            sample.Left += kEchoLevel * echoed.Right;
            sample.Right += kEchoLevel * echoed.Left;
            echoed = sample;
        }
    }

private:
    std::vector<Stereo> past_ = std::vector<Stereo>(kEchoLag);
    size_t next_ = 0;
};

}  // namespace

// The arrangement: pad and arpeggio alone, then bass and hats, then everything, and out.
class DemoDecoder::Music {
public:
    // Adds the next kStep frames.
    void MakeStep(std::vector<int16_t>& samples) {
        while (bar_ < kBars && static_cast<size_t>(bar_ * kBar * kDemoRate) < frame_ + kStep) BeginBar(bar_++);
        Step mix = {};
        Step echoed = {};
        for (Sound& sound : dry_) sound.AddTo(mix, frame_);
        for (Sound& sound : echoed_) sound.AddTo(echoed, frame_);
        echo_.AddTo(echoed);
        frame_ += kStep;
        for (std::vector<Sound>* sounds : {&dry_, &echoed_})
            std::erase_if(*sounds, [this](const Sound& sound) { return sound.EndsBy(frame_); });
        for (size_t i = 0; i < kStep; ++i) {
            samples.push_back(ToSample(mix[i].Left + echoed[i].Left));
            samples.push_back(ToSample(mix[i].Right + echoed[i].Right));
        }
    }

private:
    void BeginBar(int bar) {
        const Chord& chord = kChords[static_cast<size_t>(bar) % kChords.size()];
        const double start = bar * kBar;
        const bool hasBass = bar >= 2;
        const bool hasDrums = bar >= 4 && bar < kBars - 1;
        for (size_t i = 0; i < chord.Notes.size(); ++i) {
            const auto place = static_cast<double>(i);
            dry_.emplace_back(start, MakePad(start, kBar + 0.25, chord.Notes[i], -0.0022, place));
            dry_.emplace_back(start, MakePad(start, kBar + 0.25, chord.Notes[i], 0.0022, place + 1.5));
        }
        for (size_t step = 0; step < kArpeggio.size(); ++step) {
            const int octave = bar % 4 == 3 && step >= 8 ? 24 : 12;
            const double pan = 0.7 * std::sin(kTwoPi * (static_cast<double>(step) / 16.0 + bar * 0.25));
            echoed_.emplace_back(start + static_cast<double>(step) * kSixteenth,
                                 MakePluck(chord.Notes[static_cast<size_t>(kArpeggio[step])] + octave, pan));
        }
        for (int eighth = 0; eighth < 8; ++eighth) {
            const double at = start + eighth * kEighth;
            const int bass = chord.Bass + (eighth % 4 == 2 ? 12 : 0);
            if (hasBass && eighth != 3) dry_.emplace_back(at, MakeBass(kEighth * 0.92, bass));
            if (hasBass) dry_.emplace_back(at, MakeHat(eighth % 2 ? 0.16 : 0.07, eighth % 2 ? 0.35 : -0.35, noise_));
            if (hasDrums && eighth % 2 == 0) dry_.emplace_back(at, MakeKick());
        }
    }

    int bar_ = 0;       // the next one to begin
    size_t frame_ = 0;  // the next one to make
    std::vector<Sound> dry_;
    std::vector<Sound> echoed_;
    PingPong echo_;
    Noise noise_;
};

std::vector<int16_t> MakeDemoPiece() {
    DemoDecoder decoder;
    std::vector<int16_t> samples(kFrames * kDemoFormat.Channels);
    decoder.Read(samples.data(), kFrames);
    return samples;
}

void WriteDemoPiece(const std::string& path) {
    SF_INFO info = {};
    info.samplerate = static_cast<int>(kDemoFormat.Rate);
    info.channels = kDemoFormat.Channels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) throw PlayerError(ExitCode::kCannotWrite, path + ": can't be written: " + sf_strerror(nullptr));
    const std::vector<int16_t> samples = MakeDemoPiece();
    const sf_count_t written = sf_write_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
    const bool closed = sf_close(file) == 0;
    if (!closed || written != static_cast<sf_count_t>(samples.size()))
        throw PlayerError(ExitCode::kCannotWrite, path + ": can't be written to its end");
}

// Room for the whole piece, so that no read has to move what was made. Untouched, it costs nothing.
DemoDecoder::DemoDecoder() : music_(std::make_unique<Music>()) {
    samples_.reserve((kFrames + kStep) * kDemoFormat.Channels);
}

DemoDecoder::~DemoDecoder() = default;

uint64_t DemoDecoder::TotalFrames() const {
    return kFrames;
}

void DemoDecoder::MakeUpTo(size_t frame) {
    while (samples_.size() < frame * kDemoFormat.Channels) music_->MakeStep(samples_);
}

size_t DemoDecoder::Read(int16_t* samples, size_t frames) {
    const size_t count = std::min(frames, kFrames - nextFrame_);
    MakeUpTo(nextFrame_ + count);
    const int16_t* from = samples_.data() + nextFrame_ * kDemoFormat.Channels;
    std::copy(from, from + count * kDemoFormat.Channels, samples);
    nextFrame_ += count;
    return count;
}

bool DemoDecoder::Seek(uint64_t frame) {
    if (frame > kFrames) return false;
    nextFrame_ = static_cast<size_t>(frame);
    MakeUpTo(nextFrame_);
    return true;
}

}  // namespace tdkplay
