// The bands of a frame as music moves them: up at once, down slowly, whatever the volume.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include <tdkviz/analysis_frame.h>

namespace viz {

// One band on its way up and down. Counted in frames, as all motion here.
struct Band {
    float Height = 0;  // 0 to 1
    float Peak = 0;    // stands for a moment, then falls
    float Speed = 0;
    int Hold = 0;

    // Once a frame, with the loudness of now, 0 to 1.
    void Follow(float target) {
        constexpr float kRise = 0.72F, kFall = 0.16F, kGravity = 0.0022F;
        constexpr int kPeakHold = 9;
        Height += (target - Height) * (target > Height ? kRise : kFall);
        if (Height >= Peak) {
            Peak = Height;
            Speed = 0;
            Hold = kPeakHold;
        } else if (Hold > 0) {
            --Hold;
        } else {
            Speed += kGravity;
            Peak = std::max(Peak - Speed, Height);
        }
    }
};

// The bands up to where music ends, scaled so that the loudest of the last while comes near the top.
class Spectrum {
public:
    static constexpr int kBands = 192;  // 16.5 kHz at 44,100 Hz

    // One of these once a frame.
    void Follow(const VizAnalysisFrame& frame) { Follow(frame.SpectrumLeft, frame.SpectrumRight); }
    // The louder of the two for each band.
    void Follow(const uint8_t* left, const uint8_t* right) {
        constexpr float kRange = 136;     // from the spectrum's scale to a height of 1
        constexpr float kLeastTop = 165;  // nothing below reaches the top, however quiet the music
        constexpr float kTopRise = 0.25F, kTopFall = 0.004F;
        float loudest = kLeastTop;
        for (int k = 0; k < kBands; ++k) {
            const auto loud = static_cast<float>(std::max(left[k], right[k]));
            const float lifted = loud > 0 ? loud + Lifts()[k] : 0;
            loudest = std::max(loudest, lifted);
            bands_[k].Follow(lifted > 0 ? std::clamp((lifted - top_) / kRange + 1, 0.0F, 1.0F) : 0.0F);
        }
        top_ += (loudest - top_) * (loudest > top_ ? kTopRise : kTopFall);
    }

    // k from 0 to kBands - 1.
    const Band& operator[](int k) const { return bands_[k]; }

    // The highest of the bands that lie in a range.
    Band Highest(float from, float to) const {
        const int first = std::min(static_cast<int>(from), kBands - 1);
        const int end = std::clamp(static_cast<int>(std::ceil(to - 0.001F)), first + 1, kBands);
        Band highest = bands_[first];
        for (int k = first + 1; k < end; ++k) {
            highest.Height = std::max(highest.Height, bands_[k].Height);
            highest.Peak = std::max(highest.Peak, bands_[k].Peak);
        }
        return highest;
    }
    // Between the bands' middles, as a smooth curve.
    float HeightAt(float band) const {
        const float place = std::clamp(band, 0.0F, kBands - 1.001F);
        const int k = static_cast<int>(place);
        return bands_[k].Height + (bands_[k + 1].Height - bands_[k].Height) * (place - static_cast<float>(k));
    }

private:
    // Music gets softer with pitch; this much lifts each band.
    static const std::array<float, kBands>& Lifts() {
        static const std::array<float, kBands> lifts = [] {
            constexpr float kTreble = 66;
            std::array<float, kBands> values{};
            for (int k = 0; k < kBands; ++k)
                values[k] = kTreble * std::log1p(static_cast<float>(k)) / std::log1p(static_cast<float>(kBands));
            return values;
        }();
        return lifts;
    }

    std::array<Band, kBands> bands_{};
    float top_ = 255;
};

// Where part i of `count` begins, in bands: almost even steps at first, even ratios further up.
class PitchScale {
public:
    // `narrowest`: the first step, in bands; below 1, neighbours would show the same.
    explicit PitchScale(int count, float narrowest = 0.85F) : count_(count) {
        float low = 0.01F, high = 12;
        for (int i = 0; i < 24; ++i) {
            curve_ = (low + high) / 2;
            (Start(1) > narrowest ? low : high) = curve_;
        }
    }
    // 0 for the first, Spectrum::kBands behind the last one.
    float Start(int i) const {
        return Spectrum::kBands * std::expm1(curve_ * static_cast<float>(i) / static_cast<float>(count_)) /
               std::expm1(curve_);
    }

private:
    int count_;
    float curve_ = 1;
};

// The bass drum: its level, and how hard it is being hit.
class Beat {
public:
    // Gives the hit, 0 to 1: 0 on most frames.
    float Follow(const VizAnalysisFrame& frame) {
        const int loudest =
            std::max({frame.SpectrumLeft[0], frame.SpectrumLeft[1], frame.SpectrumRight[0], frame.SpectrumRight[1]});
        const float now = std::clamp((static_cast<float>(loudest) - 150) / 100, 0.0F, 1.0F);
        hit_ = std::clamp((now - bass_) * 2.8F, 0.0F, 1.0F);
        bass_ += (now - bass_) * (now > bass_ ? 0.5F : 0.16F);
        swell_ += hit_ > swell_ ? (hit_ - swell_) * 0.6F : -swell_ * 0.12F;
        return hit_;
    }
    // As Follow gave it.
    float Hit() const { return hit_; }
    // How loud the bass is, 0 to 1.
    float Bass() const { return bass_; }
    // A hit that takes a second to die away: what moves with it moves smoothly.
    float Swell() const { return swell_; }

private:
    float hit_ = 0;
    float bass_ = 0;
    float swell_ = 0;
};

}  // namespace viz
