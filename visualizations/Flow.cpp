// Flow: a few bright strokes that live from the effects. Three ribbons and their twins drift round the
// centre, swaying with the music, and beats leave rings; zoom and blur carry the light outwards.
// A worked example of the older interface.
#include <array>

#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/spectrum.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Curve;
using viz::kTurn;
using viz::Point;

constexpr int kRibbons = 3;
constexpr int kSteps = 36;
// Samples that go into a point of a ribbon, and how much of a ribbon's form is new in each frame: close
// frames have like forms, and the effects join them to sheets of light.
constexpr int kSpread = 14;
constexpr float kNewForm = 0.45F;
// Strokes between the last frame and this one.
constexpr int kBetween = 2;

using Ribbon = std::array<Point, kSteps + 1>;

class Flow final : public viz::PluginBase<IMPAVisualization, kIID_IMPAVisualization> {
public:
    Flow()
        : PluginBase(
              {.Name = "Flow",
               .Creator = kCreator,
               .Description = "Ribbons of light that the image effects turn into flow. Click for other colours."}) {}
    HRESULT SetHostString(const char*) override { return S_OK; }
    HRESULT Configure(HWND) override { return E_NOTIMPL; }

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Sink(3);
        loudness_.Follow(frame);
        beat_.Follow(frame);
        phase_ += 0.014F + 0.030F * loudness_.Level();
        hue_ += 0.0016F + 0.004F * loudness_.Level();
        if (loudness_.Presence() <= 0) return;
        if (beat_.Hit() > 0.15F) DrawRing(canvas, beat_.Hit());
        const viz::Pen crisp = PenFor(canvas, 1.8F, 5);
        const viz::Pen soft = PenFor(canvas, 0, 3.5F);
        const Curve curves[] = {Curve(frame.WaveformLeft, kSpread), Curve(frame.WaveformRight, kSpread)};
        for (int i = 0; i < kRibbons; ++i) {
            const Ribbon before = ribbons_[i];
            Move(ribbons_[i], i, curves[i % 2]);
            if (Frames() == 0) continue;
            for (int stroke = 1; stroke <= kBetween; ++stroke) {
                const float when = static_cast<float>(stroke) / kBetween;
                DrawRibbon(canvas, before, i, when, stroke == kBetween ? crisp : soft);
            }
        }
    }

    // Points are in parts of the picture's smaller side, from its centre.
    void Move(Ribbon& ribbon, int index, const Curve& curve) const {
        const float own = kTurn * static_cast<float>(index) / kRibbons;
        const float arc = 1.3F + 0.35F * std::sin(phase_ * 0.37F + own);
        const float start = phase_ * (index == 1 ? -0.8F : 1.0F) + own;
        const float radius = 0.19F + 0.05F * std::sin(phase_ * 0.53F + 2 * own) + 0.07F * beat_.Bass();
        const Point centre{0.13F * std::cos(phase_ * 0.29F + own), 0.09F * std::sin(phase_ * 0.41F + own)};
        const float tremble = 0.17F * loudness_.Gain() * (0.3F + 0.7F * loudness_.Level());
        const float share = Frames() > 0 ? kNewForm : 1;
        for (int i = 0; i <= kSteps; ++i) {
            const float place = static_cast<float>(i) / kSteps;
            const float angle = start + arc * (place - 0.5F) * 2;
            const float reach = radius + tremble * curve.At(place) * std::sin(place * kTurn / 2);
            const Point goal{centre.X + 1.25F * reach * std::cos(angle), centre.Y + reach * std::sin(angle)};
            ribbon[i] = {ribbon[i].X + (goal.X - ribbon[i].X) * share, ribbon[i].Y + (goal.Y - ribbon[i].Y) * share};
        }
    }

    // The ribbon and its twin on the other side, `when` of the way from the last frame to this one.
    void DrawRibbon(const Canvas& canvas, const Ribbon& before, int index, float when, const viz::Pen& pen) const {
        const float brightness = loudness_.Presence() * (0.55F + 0.45F * std::min(1.0F, 1.8F * loudness_.Level()));
        Point last{};
        Point lastTwin{};
        for (int i = 0; i <= kSteps; ++i) {
            const Point& from = before[i];
            const Point& to = ribbons_[index][i];
            const Point along{from.X + (to.X - from.X) * when, from.Y + (to.Y - from.Y) * when};
            const Point point = canvas.FromMiddle(along);
            const Point twin = canvas.FromMiddle({-along.X, -along.Y});
            if (i > 0) {
                const float place = static_cast<float>(i) / kSteps;
                const float taper = std::sin(place * kTurn / 2);
                const Color hue = kWheel.Around(Hue() + 0.19F * static_cast<float>(index) + 0.16F * place);
                const Color color = viz::Dimmed(viz::Mix(hue, 0xFFFFFF, 0.35F * beat_.Bass() * taper),
                                                brightness * (0.1F + 0.9F * taper));
                canvas.Stroke(last, point, color, pen);
                canvas.Stroke(lastTwin, twin, color, pen);
            }
            last = point;
            lastTwin = twin;
        }
    }

    // Each beat leaves a ring in the middle, for the zoom to carry away.
    void DrawRing(const Canvas& canvas, float strength) const {
        const Color color = viz::Dimmed(kWheel.Around(Hue() + 0.45F), strength);
        const viz::Pen pen = PenFor(canvas, 2.2F, 5);
        const float radius = 0.035F + 0.03F * strength;
        Point last = canvas.FromMiddle({radius, 0});
        for (int i = 1; i <= kSteps / 2; ++i) {
            const float angle = kTurn * static_cast<float>(i) / (kSteps / 2.0F);
            const Point point = canvas.FromMiddle({radius * std::cos(angle), radius * std::sin(angle)});
            canvas.Stroke(last, point, color, pen);
            last = point;
        }
    }

    float Hue() const { return hue_ + 0.31F * static_cast<float>(Clicks() % 3); }

    static viz::Pen PenFor(const Canvas& canvas, float width, float glow) {
        return {width * canvas.Unit(), glow * canvas.Unit(), 0.5F};
    }

    inline static const viz::Palette kWheel = viz::Palette::Wheel(0.74F, 0.16F);
    std::array<Ribbon, kRibbons> ribbons_{};
    viz::Loudness loudness_;
    viz::Beat beat_;
    float phase_ = 0;
    float hue_ = 0.55F;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Flow>(out);
}
