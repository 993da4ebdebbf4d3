// The waveform of a frame as a smooth curve.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include <tdkviz/analysis_frame.h>

namespace viz {

// Follows the loudness of the music: fast up, slow down. 0 to 1.
class Loudness {
public:
    // Once a frame. Gives the level.
    float Follow(const VizAnalysisFrame& frame) {
        float square = 0;
        int peak = 0;
        for (int i = 0; i < kWaveformSamples; ++i) {
            const int left = frame.WaveformLeft[i];
            const int right = frame.WaveformRight[i];
            square += static_cast<float>(left * left + right * right);
            peak = std::max({peak, std::abs(left), std::abs(right)});
        }
        const float now = std::min(1.0F, std::sqrt(square / (2 * kWaveformSamples)) / 64);
        level_ += (now - level_) * (now > level_ ? 0.6F : 0.15F);
        const auto newPeak = static_cast<float>(peak);
        peak_ = newPeak > peak_ ? peak_ + (newPeak - peak_) * 0.5F : peak_ + (newPeak - peak_) * 0.02F;
        presence_ = std::clamp(presence_ + (peak > 1 ? 0.1F : -0.007F), 0.0F, 1.0F);
        return level_;
    }
    // 1 is as loud as music gets.
    float Level() const { return level_; }
    // What a sample is to be multiplied by to lie between -1 and 1: brings quiet music to a size worth looking at, and
    // leaves silence alone.
    float Gain() const { return 1 / std::max(peak_, 24.0F); }
    // 1 while there is music, then down to 0 within seconds of silence.
    float Presence() const { return presence_; }

private:
    float level_ = 0;
    float peak_ = 0;
    float presence_ = 0;
};

// Part of the 512 samples, from a rising zero crossing on, so that a steady tone stands still.
class Curve {
public:
    static constexpr int kShown = 384;

    // `spread` is the number of samples on each side that go into the mean. Even the finest curve takes
    // one: eight bits give steps in quiet music.
    explicit Curve(const int8_t* samples, int spread = 1) {
        for (int i = 0; i < kWaveformSamples; ++i) {
            float sum = 0, weights = 0;
            for (int j = std::max(i - spread, 0); j <= std::min(i + spread, kWaveformSamples - 1); ++j) {
                const auto weight = static_cast<float>(spread + 1 - std::abs(i - j));
                sum += weight * samples[j];
                weights += weight;
            }
            smooth_[i] = sum / weights;
        }
        float steepest = 0;
        for (int i = 1; i < kWaveformSamples - kShown; ++i) {
            const float rise = smooth_[i + 8] - smooth_[std::max(i - 8, 0)];
            if (smooth_[i - 1] < 0 && smooth_[i] >= 0 && rise > steepest) {
                steepest = rise;
                start_ = i;
            }
        }
    }

    // At `place` from 0 to 1, in sample units.
    float At(float place) const {
        const float position = start_ + std::clamp(place, 0.0F, 1.0F) * (kShown - 1);
        const int i = std::min(static_cast<int>(position), kWaveformSamples - 2);
        return smooth_[i] + (smooth_[i + 1] - smooth_[i]) * (position - i);
    }

private:
    std::array<float, kWaveformSamples> smooth_;
    int start_ = 0;
};

}  // namespace viz
