// Spectrum Bars: the loudness of each range of pitch as a bar, with its recent peak floating above.
// A click changes the colours. Shows how to turn bands of equal width into steps that the ear calls equal.
#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/spectrum.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;

constexpr int kMostBars = 64;
constexpr int kFewestBars = 12;
constexpr int kPixelsPerBar = 11;
// Of the last picture: a short glow where bars have been, and little of it between them.
constexpr uint16_t kAfterglow = 150;

class SpectrumBars final : public viz::BufferPlugin {
public:
    SpectrumBars()
        : BufferPlugin(
              {.Name = "Spectrum Bars",
               .Creator = kCreator,
               .Description = "Bass to treble as bars, with their peaks floating above. Click for other colours."}) {}

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Dim(kAfterglow);
        spectrum_.Follow(frame);
        const int count = std::clamp(canvas.Width() / kPixelsPerBar, kFewestBars, kMostBars);
        if (count != count_) {
            scale_ = viz::PitchScale(count);
            count_ = count;
        }
        for (int i = 0; i < count_; ++i) DrawBar(canvas, i, spectrum_.Highest(scale_.Start(i), scale_.Start(i + 1)));
    }

    void DrawBar(const Canvas& canvas, int index, const viz::Band& bar) const {
        const int height = canvas.Height();
        const int ground = height * 4 / 5;
        const int room = ground - height / 16;
        const int left = LeftOf(canvas, index);
        const int next = LeftOf(canvas, index + 1);
        const int gap = std::max(1, (next - left) * 22 / 100);
        const int right = std::max(next - gap, left + 1);
        const viz::Palette& palette = kPalettes[Clicks() % std::size(kPalettes)];
        const auto colorAt = [&](int above) { return palette.At(static_cast<float>(above) / std::max(room, 1)); };

        if (bar.Peak < 0.002F) return;
        const float tall = std::max(bar.Height * static_cast<float>(room), 1.0F);
        const int whole = static_cast<int>(tall);
        for (int above = 0; above < whole; ++above) {
            const int y = ground - 1 - above;
            canvas.FillRow(y, left, right, colorAt(above));
            // The effects may have carried a bar's light into the gap beside it.
            canvas.ChangeRow(y, right, next, [](Color& pixel) { pixel = viz::Shade(pixel, 64); });
        }
        // The uppermost row by as much of it as is reached, so that bars glide.
        const Color top = viz::Dimmed(colorAt(whole), tall - static_cast<float>(whole));
        canvas.LiftRow(ground - 1 - whole, left, right, top);
        DrawPeak(canvas, left, right, static_cast<float>(ground) - bar.Peak * static_cast<float>(room), bar.Peak,
                 palette);
        DrawMirror(canvas, left, right, ground, std::min(whole, height - ground), colorAt);
    }

    static void DrawPeak(const Canvas& canvas, int left, int right, float y, float peak, const viz::Palette& palette) {
        if (peak < 0.01F) return;
        const float cap = std::max(1.5F, static_cast<float>(canvas.Height()) / 110);
        const Color light = viz::Mix(palette.At(peak), 0xFFFFFF, 0.55F);
        const float top = y - 2 * cap, bottom = y - cap;
        for (int row = static_cast<int>(std::floor(top)); row < bottom; ++row) {
            const auto edge = static_cast<float>(row);
            const float part = std::min(bottom, edge + 1) - std::max(top, edge);
            canvas.LiftRow(row, left, right, viz::Dimmed(light, part));
        }
    }

    // Below the ground, fading with depth.
    template <typename ColorAt>
    static void DrawMirror(const Canvas& canvas, int left, int right, int ground, int tall, ColorAt colorAt) {
        const float depth = static_cast<float>(std::max(canvas.Height() - ground, 1));
        for (int below = 1; below < tall; ++below) {
            const float sunk = 1 - static_cast<float>(below) / depth;
            canvas.FillRow(ground + below, left, right, viz::Dimmed(colorAt(below), 0.42F * sunk * sunk));
        }
    }

    int LeftOf(const Canvas& canvas, int index) const {
        const int margin = canvas.Width() * 3 / 100;
        return margin + (canvas.Width() - 2 * margin) * index / count_;
    }

    inline static const viz::Palette kPalettes[] = {
        {0x263C9E, 0x6A45C8, 0xB84FBE, 0xEF6A8A, 0xFFC27A},
        {0x0E4F5C, 0x12877F, 0x4DB87A, 0xB4DC78, 0xFBF6B0},
        {0x5A1726, 0xA52A2E, 0xDD6A2C, 0xF6B04E, 0xFFF0BE},
    };
    viz::Spectrum spectrum_;
    int count_ = kMostBars;
    viz::PitchScale scale_{kMostBars};
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<SpectrumBars>(out);
}
