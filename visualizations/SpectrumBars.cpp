// Spectrum Bars: the loudness of each range of pitch as a bar, with its recent peak floating above.
// A click changes the colours.
#include <array>
#include <atomic>

#include "common/Canvas.h"
#include "common/Plugin.h"

namespace {

using viz::Canvas;
using viz::Color;

constexpr int kMostBars = 64;
constexpr int kFewestBars = 12;
constexpr int kPixelsPerBar = 11;
// Above, there is little music; 16.5 kHz at 44,100 Hz.
constexpr int kBandsShown = 192;
// The narrowest bar, in bands: below, neighbours would show the same.
constexpr float kNarrowest = 0.85F;

// From the spectrum's scale to the height of a bar.
constexpr float kRange = 136;
constexpr float kLeastTop = 165;  // nothing below this fills the picture, however quiet the music
constexpr float kTopRise = 0.25F;
constexpr float kTopFall = 0.004F;
constexpr float kTreble = 66;  // music gets softer with pitch; this much lifts the last bar

// Per frame.
constexpr float kRise = 0.72F;
constexpr float kFall = 0.16F;
constexpr int kPeakHold = 9;
constexpr float kGravity = 0.0022F;

// Of the last picture: a short glow where bars have been, and little of it between them.
constexpr float kGapShade = 0.75F;
constexpr uint32_t kAfterglow = 140;

constexpr Color kGradients[][4] = {
    {{0.08F, 0.20F, 0.85F}, {0.45F, 0.18F, 0.95F}, {1.00F, 0.25F, 0.55F}, {1.00F, 0.75F, 0.25F}},
    {{0.00F, 0.35F, 0.45F}, {0.00F, 0.75F, 0.55F}, {0.55F, 0.95F, 0.30F}, {1.00F, 1.00F, 0.55F}},
    {{0.45F, 0.05F, 0.10F}, {0.90F, 0.20F, 0.08F}, {1.00F, 0.60F, 0.10F}, {1.00F, 0.95F, 0.65F}},
};
constexpr uint32_t kGradientCount = std::size(kGradients);

// One band of the spectrum on its way up and down. Bars are made of bands, so that views of any width
// can share what has been heard.
struct Band {
    float Height = 0;  // 0 to 1
    float Peak = 0;
    float Speed = 0;
    int Hold = 0;

    void Follow(float target) {
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

// Where bar i of `count` begins, in bands: almost even steps at first, even ratios further up.
class PitchScale {
public:
    explicit PitchScale(int count) : count_(count) {
        float low = 0.01F, high = 12;
        for (int i = 0; i < 24; ++i) {
            curve_ = (low + high) / 2;
            (Start(1) > kNarrowest ? low : high) = curve_;
        }
    }
    float Start(int i) const {
        return static_cast<float>(kBandsShown) *
               std::expm1(curve_ * static_cast<float>(i) / static_cast<float>(count_)) / std::expm1(curve_);
    }

private:
    int count_;
    float curve_ = 1;
};

class SpectrumBars final : public viz::BufferPlugin {
public:
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        return Tell(name, "Spectrum Bars", creator, description,
                    "Bass to treble as bars, with their peaks floating above. Click for other colours.");
    }
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues*) override {
        *effectMask = kEffectsAll;
        *wantsSpectrum = true;
        return S_OK;
    }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override {
        ++clicks_;
        return S_OK;
    }
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                 VizAnalysisFrame* frame) override {
        if (!pixels || !frame || bitsPerPixel != 32 || width < 1 || height < 1) return E_INVALIDARG;
        const Canvas canvas(pixels, width, height, pitch);
        canvas.Dim(kAfterglow, 1);
        const int count = std::clamp(width / kPixelsPerBar, kFewestBars, kMostBars);
        Listen(*frame);
        DrawBars(canvas, count);
        return S_OK;
    }

private:
    void Listen(const VizAnalysisFrame& frame) {
        float loudest = kLeastTop;
        for (int k = 0; k < kBandsShown; ++k) {
            const auto loud = static_cast<float>(std::max(frame.SpectrumLeft[k], frame.SpectrumRight[k]));
            const float lifted = loud > 0 ? loud + kTreble * std::log1p(static_cast<float>(k)) /
                                                       std::log1p(static_cast<float>(kBandsShown))
                                          : 0;
            loudest = std::max(loudest, lifted);
            bands_[k].Follow(lifted > 0 ? std::clamp((lifted - top_) / kRange + 1, 0.0F, 1.0F) : 0.0F);
        }
        top_ += (loudest - top_) * (loudest > top_ ? kTopRise : kTopFall);
    }

    // The highest of the bands that lie in a range.
    Band Highest(float from, float to) const {
        const int first = std::min(static_cast<int>(from), kBandsShown - 1);
        const int end = std::clamp(static_cast<int>(std::ceil(to - 0.001F)), first + 1, kBandsShown);
        Band highest = bands_[first];
        for (int k = first + 1; k < end; ++k) {
            highest.Height = std::max(highest.Height, bands_[k].Height);
            highest.Peak = std::max(highest.Peak, bands_[k].Peak);
        }
        return highest;
    }

    void DrawBars(const Canvas& canvas, int count) const {
        const auto width = static_cast<float>(canvas.Width());
        const auto height = static_cast<float>(canvas.Height());
        const float margin = width * 0.03F;
        const float step = (width - 2 * margin) / static_cast<float>(count);
        const float gap = std::max(1.0F, std::round(step * 0.22F));
        const float ground = std::round(height * 0.80F);
        const float room = ground - height * 0.06F;
        const float cap = std::max(1.5F, height / 110);
        const Color* gradient = kGradients[clicks_ % kGradientCount];
        const auto colorAt = [&](float part) {
            const float place = std::clamp(part, 0.0F, 1.0F) * 3;
            const int i = std::min(static_cast<int>(place), 2);
            return viz::Mix(gradient[i], gradient[i + 1], place - static_cast<float>(i));
        };
        const PitchScale scale(count);
        for (int i = 0; i < count; ++i) {
            const Band bar = Highest(scale.Start(i), scale.Start(i + 1));
            const float left = std::round(margin + static_cast<float>(i) * step);
            const float right = std::round(margin + static_cast<float>(i + 1) * step) - gap;
            const float top = ground - std::max(bar.Height * room, 1.0F);
            canvas.Fill(left, top, right, ground, [&](float y) { return colorAt((ground - y) / room); });
            ShadeGap(canvas, right, right + gap, top, ground);
            const float peak = ground - std::max(bar.Peak * room, 1.0F) - 2 * cap;
            const Color light = viz::Mix(colorAt(bar.Peak), {1, 1, 1}, 0.55F);
            if (bar.Peak > 0.01F) canvas.Fill(left, peak, right, peak + cap, [&](float) { return light; });
            // A mirror below the ground, fading with depth.
            const float depth = height - ground;
            const float foot = std::min(height, 2 * ground - top + 1);
            canvas.Fill(left, ground + 1, right, foot, [&](float y) {
                const float sunk = 1 - (y - ground) / depth;
                return viz::Scale(colorAt((y - ground) / room), 0.5F * sunk * sunk);
            });
        }
    }

    // The effects may have carried a bar's light into the gap beside it.
    static void ShadeGap(const Canvas& canvas, float left, float right, float top, float bottom) {
        const int end = std::min(static_cast<int>(right), canvas.Width());
        for (int y = std::max(static_cast<int>(top), 0); y < std::min(static_cast<int>(bottom), canvas.Height()); ++y) {
            uint32_t* row = canvas.Row(y);
            for (int x = std::max(static_cast<int>(left), 0); x < end; ++x) Canvas::Cover(row[x], {0, 0, 0}, kGapShade);
        }
    }

    std::array<Band, kBandsShown> bands_{};
    float top_ = 255;  // follows the loudness of the music
    std::atomic<uint32_t> clicks_{0};
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<SpectrumBars>(out);
}
