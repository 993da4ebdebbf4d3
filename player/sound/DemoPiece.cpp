#include "player/sound/DemoPiece.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr double kRate = 44100.0;
constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kBeat = 60.0 / 112.0;  // seconds
constexpr double kBar = 4.0 * kBeat;
constexpr double kEighth = kBeat / 2.0;
constexpr double kSixteenth = kBeat / 4.0;
constexpr int kBars = 12;
constexpr double kTail = 2.0;  // seconds in which the last sounds die away
constexpr double kPeak = 0.89;
constexpr double kA4 = 440.0;
constexpr int kA4Note = 69;

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

double Frequency(int note) {
    return kA4 * std::pow(2.0, (note - kA4Note) / 12.0);
}

// White noise from a linear congruence, -1 to 1.
class Noise {
public:
    double Next() {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<int32_t>(state_) / 2147483648.0;
    }

private:
    uint32_t state_ = 1;
};

// The mix that all instruments play into. Times are seconds, `pan` is -1 (left) to 1 (right).
class Mix {
public:
    explicit Mix(double seconds) : left_(static_cast<size_t>(seconds * kRate)), right_(left_.size()) {}

    // Adds voice(t) for `length` seconds from `start` on, placed between left and right by pan(t). The place
    // moves slowly, so it is worked out now and then and drawn straight in between.
    template <typename Voice, typename Pan>
    void Add(double start, double length, Voice voice, Pan pan) {
        const size_t first = static_cast<size_t>(start * kRate);
        const size_t end = std::min(left_.size(), first + static_cast<size_t>(length * kRate));
        for (size_t from = first; from < end; from += kPanStep) {
            const double t = static_cast<double>(from - first) / kRate;
            const Gains begin = PanGains(pan(t));
            const Gains after = PanGains(pan(t + kPanStep / kRate));
            for (size_t i = from; i < std::min(from + kPanStep, end); ++i) {
                const double part = static_cast<double>(i - from) / kPanStep;
                const double value = voice(static_cast<double>(i - first) / kRate);
                left_[i] += value * (begin.Left + (after.Left - begin.Left) * part);
                right_[i] += value * (begin.Right + (after.Right - begin.Right) * part);
            }
        }
    }

    // An echo that crosses over from side to side.
    void PingPong(double delay, double feedback) {
        const size_t lag = static_cast<size_t>(delay * kRate);
        for (size_t i = lag; i < left_.size(); ++i) {
            left_[i] += feedback * right_[i - lag];
            right_[i] += feedback * left_[i - lag];
        }
    }

    void AddMix(const Mix& other) {
        for (size_t i = 0; i < left_.size(); ++i) {
            left_[i] += other.left_[i];
            right_[i] += other.right_[i];
        }
    }

    std::vector<int16_t> ToSamples() const {
        double loudest = 1e-9;
        for (const auto* side : {&left_, &right_})
            for (double value : *side) loudest = std::max(loudest, std::abs(std::tanh(value)));
        const double scale = kPeak * 32767.0 / loudest;
        std::vector<int16_t> samples(left_.size() * 2);
        for (size_t i = 0; i < left_.size(); ++i) {
            samples[2 * i] = static_cast<int16_t>(std::lround(std::tanh(left_[i]) * scale));
            samples[2 * i + 1] = static_cast<int16_t>(std::lround(std::tanh(right_[i]) * scale));
        }
        return samples;
    }

private:
    static constexpr size_t kPanStep = 64;  // samples
    struct Gains {
        double Left;
        double Right;
    };
    static Gains PanGains(double pan) {
        const double angle = (pan + 1.0) * std::numbers::pi / 4.0;
        return {std::cos(angle), std::sin(angle)};
    }

    std::vector<double> left_;
    std::vector<double> right_;
};

// Rises in `attack` seconds and falls to silence at `length`.
double Swell(double t, double attack, double length) {
    const double rise = std::min(1.0, t / attack);
    const double fall = std::clamp((length - t) / attack, 0.0, 1.0);
    return rise * fall;
}

void PlayKick(Mix& mix, double start) {
    const auto voice = [](double t) {
        const double phase = 48.0 * t + 90.0 / 28.0 * (1.0 - std::exp(-28.0 * t));  // the pitch falls to 48 Hz
        return 0.85 * std::exp(-9.0 * t) * std::sin(kTwoPi * phase);
    };
    mix.Add(start, 0.4, voice, [](double) { return 0.0; });
}

void PlayHat(Mix& mix, double start, double level, double pan, Noise& noise) {
    double last = 0.0;
    const auto voice = [&](double t) {
        const double white = noise.Next();
        const double high = white - last;
        last = white;
        return level * std::exp(-55.0 * t) * high;
    };
    mix.Add(start, 0.1, voice, [pan](double) { return pan; });
}

void PlayBass(Mix& mix, double start, double length, int note) {
    const double frequency = Frequency(note);
    const auto voice = [=](double t) {
        const double phase = kTwoPi * frequency * t;
        const double tone = std::sin(phase) + 0.5 * std::sin(2.0 * phase) * std::exp(-6.0 * t) +
                            0.25 * std::sin(3.0 * phase) * std::exp(-9.0 * t);
        return 0.34 * tone * Swell(t, 0.012, length);
    };
    mix.Add(start, length, voice, [](double) { return 0.0; });
}

// Two detuned voices that wander slowly across the picture.
void PlayPad(Mix& mix, double start, double length, int note, double place) {
    for (const double detune : {-0.0022, 0.0022}) {
        const double frequency = Frequency(note) * (1.0 + detune);
        const auto voice = [=](double t) {
            const double phase = kTwoPi * frequency * t;
            const double bright = 0.35 + 0.25 * std::sin(kTwoPi * 0.11 * (start + t));
            const double tone = std::sin(phase) + bright * (0.5 * std::sin(2.0 * phase) + 0.3 * std::sin(3.0 * phase));
            return 0.045 * tone * Swell(t, 0.25, length);
        };
        mix.Add(start, length, voice, [=](double t) {
            return 0.8 * std::sin(kTwoPi * 0.13 * (start + t) + place + (detune > 0 ? 1.5 : 0.0));
        });
    }
}

void PlayPluck(Mix& mix, double start, int note, double pan) {
    const double frequency = Frequency(note);
    const auto voice = [=](double t) {
        const double phase = kTwoPi * frequency * t;
        return 0.16 * std::exp(-7.0 * t) * std::min(1.0, t / 0.002) *
               std::sin(phase + 1.6 * std::exp(-12.0 * t) * std::sin(2.0 * phase));
    };
    mix.Add(start, 0.6, voice, [pan](double) { return pan; });
}

// The arrangement: pad and arpeggio alone, then bass and hats, then everything, and out.
void PlayBar(int bar, Mix& dry, Mix& echoed, Noise& noise) {
    const Chord& chord = kChords[static_cast<size_t>(bar) % kChords.size()];
    const double start = bar * kBar;
    const bool hasBass = bar >= 2;
    const bool hasDrums = bar >= 4 && bar < kBars - 1;
    for (size_t i = 0; i < chord.Notes.size(); ++i)
        PlayPad(dry, start, kBar + 0.25, chord.Notes[i], static_cast<double>(i));
    for (size_t step = 0; step < kArpeggio.size(); ++step) {
        const int octave = bar % 4 == 3 && step >= 8 ? 24 : 12;
        const double pan = 0.7 * std::sin(kTwoPi * (static_cast<double>(step) / 16.0 + bar * 0.25));
        PlayPluck(echoed, start + static_cast<double>(step) * kSixteenth,
                  chord.Notes[static_cast<size_t>(kArpeggio[step])] + octave, pan);
    }
    for (int eighth = 0; eighth < 8; ++eighth) {
        const double at = start + eighth * kEighth;
        if (hasBass && eighth != 3) PlayBass(dry, at, kEighth * 0.92, chord.Bass + (eighth % 4 == 2 ? 12 : 0));
        if (hasBass) PlayHat(dry, at, eighth % 2 ? 0.16 : 0.07, eighth % 2 ? 0.35 : -0.35, noise);
        if (hasDrums && eighth % 2 == 0) PlayKick(dry, at);
    }
}

}  // namespace

std::vector<int16_t> MakeDemoPiece() {
    const double seconds = kBars * kBar + kTail;
    Mix dry(seconds);
    Mix echoed(seconds);
    Noise noise;
    for (int bar = 0; bar < kBars; ++bar) PlayBar(bar, dry, echoed, noise);
    echoed.PingPong(3.0 * kSixteenth, 0.38);
    dry.AddMix(echoed);
    return dry.ToSamples();
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

size_t DemoDecoder::Read(int16_t* samples, size_t frames) {
    const size_t count = std::min(frames, static_cast<size_t>(TotalFrames()) - nextFrame_);
    const int16_t* from = samples_.data() + nextFrame_ * kDemoFormat.Channels;
    std::copy(from, from + count * kDemoFormat.Channels, samples);
    nextFrame_ += count;
    return count;
}

bool DemoDecoder::Seek(uint64_t frame) {
    if (frame > TotalFrames()) return false;
    nextFrame_ = static_cast<size_t>(frame);
    return true;
}

}  // namespace tdkplay
