#include "player/check/TestSound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <numbers>

namespace tdkplay::check {
namespace {

constexpr int kRate = 44100;
constexpr int kStereo = 2;
constexpr uint8_t kLoudest = 255;

// The transform that plugin authors are told of: 512 samples under a sine window to 256 bands.
class BandTransform {
public:
    BandTransform() {
        const double half = std::numbers::pi / kSpectrumBands;
        const double scale = std::sqrt(2.0 / kSpectrumBands);
        for (int n = 0; n < kWaveformSamples; ++n) {
            window_[n] = static_cast<float>(scale * std::sin((n + 0.5) * half / 2));
            for (int k = 0; k < kSpectrumBands; ++k)
                cosines_[n][k] = static_cast<float>(std::cos(half * (n + 0.5 - kSpectrumBands / 2) * (k + 0.5)));
        }
    }
    void Analyse(const std::array<int16_t, kWaveformSamples>& samples, uint8_t* bands) const {
        std::array<float, kSpectrumBands> sums = {};
        for (int n = 0; n < kWaveformSamples; ++n) {
            const float sample = window_[n] * samples[n];
            for (int k = 0; k < kSpectrumBands; ++k) sums[k] += sample * cosines_[n][k];
        }
        std::transform(sums.begin(), sums.end(), bands, [](float sum) {
            const double loudness = 80 * std::log10(std::max(1.0F, std::fabs(sum))) - 140;
            return static_cast<uint8_t>(std::clamp(loudness, 0.0, 255.0));
        });
    }

private:
    std::array<float, kWaveformSamples> window_;
    std::array<std::array<float, kSpectrumBands>, kWaveformSamples> cosines_;
};

template <typename Wave>
VizAnalysisFrame FrameOf(Wave wave, uint8_t loudness) {
    VizAnalysisFrame frame = {};
    frame.ChannelCount = kStereo;
    frame.SampleRateLow = kRate;
    for (int i = 0; i < kWaveformSamples; ++i) frame.WaveformLeft[i] = frame.WaveformRight[i] = wave(i);
    std::fill(std::begin(frame.SpectrumLeft), std::end(frame.SpectrumLeft), loudness);
    std::fill(std::begin(frame.SpectrumRight), std::end(frame.SpectrumRight), loudness);
    return frame;
}

VizAnalysisFrame WithFormat(VizAnalysisFrame frame, uint16_t channels, uint16_t rate) {
    frame.ChannelCount = channels;
    frame.SampleRateLow = rate;
    return frame;
}

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kBeat = 0.5;  // seconds
constexpr int kBeatsOfBar = 4, kBarsOfPhrase = 4;
constexpr double kChords[kBarsOfPhrase][3] = {{220, 277, 330}, {185, 220, 277}, {147, 185, 220}, {165, 208, 247}};

double Tone(double frequency, double seconds) {
    return std::sin(kTurn * frequency * seconds);
}

// Between -1 and 1, the same for the same sample.
double Hiss(uint32_t sample) {
    uint32_t mixed = sample * 2654435761U;
    mixed ^= mixed >> 15;
    mixed *= 2246822519U;
    return static_cast<int32_t>(mixed) / 2147483648.0;
}

// One sample of the music; `side` is -1 on the left and 1 on the right.
int16_t MusicSample(uint32_t sample, int side) {
    const double now = static_cast<double>(sample) / kRate;
    const auto beat = static_cast<int>(now / kBeat);
    const int bar = beat / kBeatsOfBar;
    const double sinceBeat = now - beat * kBeat, sinceHalf = std::fmod(now + kBeat / 2, kBeat);
    const double* const chord = kChords[bar % kBarsOfPhrase];
    const bool isPause = bar % kBarsOfPhrase == kBarsOfPhrase - 1 && beat % kBeatsOfBar == kBeatsOfBar - 1;

    double sum = 0.5 * Tone(50, sinceBeat + 0.03 * (1 - std::exp(-40 * sinceBeat))) * std::exp(-9 * sinceBeat);
    if (beat % 2 != 0) sum += 0.25 * Hiss(sample) * std::exp(-20 * sinceBeat);
    if (!isPause) {
        sum += 0.2 * Hiss(sample) * std::exp(-70 * sinceHalf) + 0.15 * Tone(chord[0] / 4, now);
        for (int i = 0; i < 3; ++i) sum += 0.08 * (1 + side * (i - 1) * 0.7) * Tone(chord[i], now);
        sum += 0.1 * (1 + side * 0.5) * Tone(chord[beat % 3] * 4, now) * std::exp(-6 * sinceHalf);
    }
    return static_cast<int16_t>(std::clamp(sum, -1.0, 1.0) * 32767);
}

VizAnalysisFrame MusicFrame(size_t number) {
    static const BandTransform transform;
    const auto first = static_cast<uint32_t>(number * (kRate / kFramesPerSecond));
    VizAnalysisFrame frame = {};
    frame.ChannelCount = kStereo;
    frame.SampleRateLow = kRate;
    for (const int side : {-1, 1}) {
        std::array<int16_t, kWaveformSamples> samples;
        int8_t* const waveform = side < 0 ? frame.WaveformLeft : frame.WaveformRight;
        for (uint32_t i = 0; i < kWaveformSamples; ++i) {
            samples[i] = MusicSample(first + i, side);
            waveform[i] = static_cast<int8_t>(samples[i] >> 8);
        }
        transform.Analyse(samples, side < 0 ? frame.SpectrumLeft : frame.SpectrumRight);
    }
    return frame;
}

}  // namespace

const VizAnalysisFrame& TestMusic::At(size_t frame) {
    while (made_.size() <= frame) made_.push_back(MusicFrame(made_.size()));
    return made_[frame];
}

VizAnalysisFrame NoiseFrame(uint32_t& state) {
    const auto next = [&state] { return (state = state * 1664525 + 1013904223) >> 24; };
    VizAnalysisFrame frame = FrameOf([](int) { return int8_t{0}; }, 0);
    for (int i = 0; i < kWaveformSamples; ++i) {
        frame.WaveformLeft[i] = static_cast<int8_t>(next());
        frame.WaveformRight[i] = static_cast<int8_t>(next());
    }
    for (int k = 0; k < kSpectrumBands; ++k) {
        frame.SpectrumLeft[k] = static_cast<uint8_t>(next());
        frame.SpectrumRight[k] = static_cast<uint8_t>(next());
    }
    return frame;
}

std::vector<NamedFrame> HardFrames() {
    constexpr int8_t kHigh = 127, kLow = -128;
    const auto high = [](int) { return kHigh; };
    const auto low = [](int) { return kLow; };
    const auto alternating = [](int i) { return i % 2 == 0 ? kHigh : kLow; };
    uint32_t state = 1;
    const VizAnalysisFrame noise = NoiseFrame(state);
    VizAnalysisFrame left = FrameOf(alternating, kLoudest);
    std::fill(std::begin(left.WaveformRight), std::end(left.WaveformRight), int8_t{0});
    std::fill(std::begin(left.SpectrumRight), std::end(left.SpectrumRight), uint8_t{0});
    return {
        {"no format yet", {}},
        {"silence", FrameOf([](int) { return int8_t{0}; }, 0)},
        {"highest sample throughout", FrameOf(high, kLoudest)},
        {"lowest sample throughout", FrameOf(low, kLoudest)},
        {"full scale alternating", FrameOf(alternating, kLoudest)},
        {"noise", noise},
        {"an impulse", FrameOf([](int i) { return i == 0 ? kHigh : int8_t{0}; }, 0)},
        {"an impulse at the end", FrameOf([](int i) { return i == kWaveformSamples - 1 ? kLow : int8_t{0}; }, 0)},
        {"bands without a waveform", FrameOf([](int) { return int8_t{0}; }, kLoudest)},
        {"a waveform without bands", FrameOf(alternating, 0)},
        {"the left channel alone", left},
        {"one channel", WithFormat(FrameOf(alternating, kLoudest), 1, kRate)},
        {"six channels", WithFormat(noise, 6, 48000)},
        {"8000 Hz", WithFormat(noise, kStereo, 8000)},
        {"96000 Hz, cut to 16 bits", WithFormat(noise, kStereo, 30464)},
        {"a rate that reads 0", WithFormat(noise, kStereo, 0)},
        {"the highest rate", WithFormat(noise, 0xFFFF, 0xFFFF)},
        {"silence again", FrameOf([](int) { return int8_t{0}; }, 0)},
    };
}

}  // namespace tdkplay::check
