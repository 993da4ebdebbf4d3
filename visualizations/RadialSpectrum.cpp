// Radial Spectrum: the spectrum as a flower round a core that breathes with the bass. Bass sits below, treble
// above, left and right channel on their sides. Shows how to map sound to a circle and let it turn.
#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/spectrum.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::kTurn;
using viz::Point;

constexpr int kPetals = 40;     // on each side
constexpr float kCore = 0.15F;  // parts of the picture's smaller side
constexpr float kReach = 0.31F;
constexpr float kRest = 0.012F;

class RadialSpectrum final : public viz::BufferPlugin {
public:
    RadialSpectrum()
        : BufferPlugin({.Name = "Radial Spectrum",
                        .Creator = kCreator,
                        .Description = "The spectrum as a slowly turning flower. Click for other colours."}) {}

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Sink(4);
        loudness_.Follow(frame);
        beat_.Follow(frame);
        left_.Follow(frame.SpectrumLeft, frame.SpectrumLeft);
        right_.Follow(frame.SpectrumRight, frame.SpectrumRight);
        turn_ += 0.0012F + 0.006F * loudness_.Level();
        hue_ += 0.0009F;
        if (loudness_.Presence() <= 0) return;
        const float core = canvas.Smaller() * (kCore + 0.035F * beat_.Swell());
        DrawCore(canvas, core, frame);
        const viz::Pen petal(std::max(1.0F, core * kTurn / (2 * kPetals) * 0.55F), 3.5F * canvas.Unit(), 0.3F);
        for (int i = 0; i < kPetals; ++i) {
            DrawPetal(canvas, core, petal, i, left_, 1);
            DrawPetal(canvas, core, petal, i, right_, -1);
        }
    }

    // `side` is 1 for the left half and -1 for the right one.
    void DrawPetal(const Canvas& canvas, float core, const viz::Pen& pen, int index, const viz::Spectrum& spectrum,
                   float side) const {
        const float place = (static_cast<float>(index) + 0.5F) / kPetals;
        const viz::Band band = spectrum.Highest(scale_.Start(index), scale_.Start(index + 1));
        const float angle = kTurn / 4 + side * place * kTurn / 2 + std::sin(turn_) * kTurn / 8;
        const float x = std::cos(angle), y = std::sin(angle);
        const auto at = [&](float distance) { return canvas.FromMiddle({x, y}, distance); };
        const float size = canvas.Smaller();
        const float from = core * 1.12F;
        const float to = from + size * (kRest + kReach * band.Height);
        const Color base = kWheel.Around(hue_ + 0.33F * static_cast<float>(Clicks() % 3) + 0.55F * place);
        const float light = loudness_.Presence() * (0.45F + 0.55F * band.Height);
        canvas.Stroke(at(from), at(to), viz::Dimmed(base, light), pen, 0.5F);
        if (band.Peak < 0.02F) return;
        const float peak = from + size * (kRest + kReach * band.Peak) + 2.5F * canvas.Unit();
        canvas.Light(at(peak), 2.2F * canvas.Unit(), viz::Dimmed(viz::Mix(base, 0xFFFFFF, 0.5F), light));
    }

    // The waveform as the rim of the core.
    void DrawCore(const Canvas& canvas, float core, const VizAnalysisFrame& frame) const {
        constexpr int kSteps = 72;
        const viz::Curve curve(frame.WaveformLeft, 10);
        const viz::Pen pen(1.4F * canvas.Unit(), 5 * canvas.Unit(), 0.4F);
        const Color color = viz::Dimmed(kWheel.Around(hue_ + 0.33F * static_cast<float>(Clicks() % 3) + 0.75F),
                                        loudness_.Presence() * (0.5F + 0.5F * loudness_.Level()));
        const auto at = [&](int i) {
            const float place = static_cast<float>(i) / kSteps;
            // The curve there and back, so that the rim closes.
            const float wave = curve.At(1 - std::fabs(2 * place - 1)) * loudness_.Gain() * loudness_.Level();
            const float radius = core * (0.86F + 0.22F * wave);
            const float angle = kTurn * (place + 0.25F) + std::sin(turn_) * kTurn / 8;
            return canvas.FromMiddle({std::cos(angle), std::sin(angle)}, radius);
        };
        Point last = at(0);
        for (int i = 1; i <= kSteps; ++i) {
            const Point next = at(i);
            canvas.Stroke(last, next, color, pen);
            last = next;
        }
    }

    inline static const viz::Palette kWheel = viz::Palette::Wheel(0.72F, 0.15F);
    const viz::PitchScale scale_{kPetals};
    viz::Spectrum left_, right_;
    viz::Loudness loudness_;
    viz::Beat beat_;
    float turn_ = 0;
    float hue_ = 0.62F;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<RadialSpectrum>(out);
}
