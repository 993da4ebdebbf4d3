// Flow: a few bright strokes that live from the effects. Three ribbons and their twins drift round the
// centre, swaying with the music, and beats leave rings; zoom and blur carry the light outwards.
// A worked example of the older interface.
#include <array>
#include <atomic>

#include "common/Canvas.h"
#include "common/Plugin.h"
#include "common/Waveform.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Curve;
using viz::Point;

constexpr int kRibbons = 3;
constexpr int kSteps = 48;
constexpr float kTurn = 6.2831853F;
// Samples that go into a point of a ribbon, and how much of a ribbon's form is new in each frame: close
// frames have like forms, and the effects join them to sheets of light.
constexpr int kSpread = 14;
constexpr float kNewForm = 0.45F;
// Strokes between the last frame and this one.
constexpr int kBetween = 3;
// Takes away the last of what fades too slowly to end by itself.
constexpr uint32_t kAfterglow = 252;

using Ribbon = std::array<Point, kSteps + 1>;

class Flow final : public viz::PluginBase<IMPAVisualization, kIID_IMPAVisualization> {
public:
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        return Tell(name, "Flow", creator, description,
                    "Ribbons of light that the image effects turn into flow. Click for other colours.");
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
    HRESULT SetHostString(const char*) override { return S_OK; }
    HRESULT Configure(HWND) override { return E_NOTIMPL; }

    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                 VizAnalysisFrame* frame) override {
        if (!pixels || !frame || bitsPerPixel != 32 || width < 1 || height < 1) return E_INVALIDARG;
        const Canvas canvas(pixels, width, height, pitch);
        canvas.Dim(kAfterglow, 2);
        loudness_.Follow(*frame);
        const float bass = BassOf(*frame);
        const float beat = std::clamp((bass - bass_) * 2.8F, 0.0F, 1.0F);
        bass_ += (bass - bass_) * (bass > bass_ ? 0.5F : 0.16F);
        phase_ += 0.014F + 0.030F * loudness_.Level();
        hue_ += 0.0016F + 0.004F * loudness_.Level();
        if (beat > 0.15F) DrawRing(canvas, beat);
        for (int i = 0; i < kRibbons; ++i) {
            const Ribbon before = ribbons_[i];
            Move(ribbons_[i], i, Curve(i % 2 ? frame->WaveformRight : frame->WaveformLeft, kSpread));
            DrawRibbon(canvas, before, i);
        }
        started_ = true;
        return S_OK;
    }

private:
    static float BassOf(const VizAnalysisFrame& frame) {
        const int loudest =
            std::max({frame.SpectrumLeft[0], frame.SpectrumLeft[1], frame.SpectrumRight[0], frame.SpectrumRight[1]});
        return std::clamp((static_cast<float>(loudest) - 150) / 100, 0.0F, 1.0F);
    }

    // Points are in parts of the picture's smaller side, from its centre.
    void Move(Ribbon& ribbon, int index, const Curve& curve) const {
        const float own = kTurn * static_cast<float>(index) / kRibbons;
        const float arc = 1.3F + 0.35F * std::sin(phase_ * 0.37F + own);
        const float start = phase_ * (index == 1 ? -0.8F : 1.0F) + own;
        const float radius = 0.19F + 0.05F * std::sin(phase_ * 0.53F + 2 * own) + 0.07F * bass_;
        const Point centre{0.13F * std::cos(phase_ * 0.29F + own), 0.09F * std::sin(phase_ * 0.41F + own)};
        const float tremble = 0.17F * loudness_.Gain() * (0.3F + 0.7F * loudness_.Level());
        for (int i = 0; i <= kSteps; ++i) {
            const float place = static_cast<float>(i) / kSteps;
            const float angle = start + arc * (place - 0.5F) * 2;
            const float reach = radius + tremble * curve.At(place) * std::sin(place * kTurn / 2);
            const Point goal{centre.X + 1.25F * reach * std::cos(angle), centre.Y + reach * std::sin(angle)};
            const float share = started_ ? kNewForm : 1;
            ribbon[i] = {ribbon[i].X + (goal.X - ribbon[i].X) * share, ribbon[i].Y + (goal.Y - ribbon[i].Y) * share};
        }
    }

    void DrawRibbon(const Canvas& canvas, const Ribbon& before, int index) const {
        const float brightness = 0.55F + 0.45F * std::min(1.0F, 1.8F * loudness_.Level());
        for (int stroke = started_ ? 1 : kBetween; stroke <= kBetween; ++stroke) {
            const float when = static_cast<float>(stroke) / kBetween;
            const viz::Pen pen = stroke == kBetween ? PenFor(canvas, 1.8F, 5.5F) : PenFor(canvas, 0, 4);
            Point last{};
            Point lastTwin{};
            for (int i = 0; i <= kSteps; ++i) {
                const Point& from = before[i];
                const Point& to = ribbons_[index][i];
                const Point along{from.X + (to.X - from.X) * when, from.Y + (to.Y - from.Y) * when};
                const Point point = Place(canvas, along);
                const Point twin = Place(canvas, {-along.X, -along.Y});
                const float place = static_cast<float>(i) / kSteps;
                const float taper = std::sin(place * kTurn / 2);
                const float hue = Hue() + 0.19F * static_cast<float>(index) + 0.16F * place;
                const Color pure = viz::FromHue(hue, 0.78F - 0.35F * bass_ * taper, brightness * (0.1F + 0.9F * taper));
                if (i > 0) {
                    canvas.Stroke(last, point, pure, pen);
                    canvas.Stroke(lastTwin, twin, pure, pen);
                }
                last = point;
                lastTwin = twin;
            }
        }
    }

    // Each beat leaves a ring in the middle, for the zoom to carry away.
    void DrawRing(const Canvas& canvas, float strength) const {
        const Color color = viz::FromHue(Hue() + 0.45F, 0.5F, strength);
        const viz::Pen pen = PenFor(canvas, 2.2F, 5);
        const float radius = 0.035F + 0.03F * strength;
        Point last = Place(canvas, {radius, 0});
        for (int i = 1; i <= kSteps / 2; ++i) {
            const float angle = kTurn * static_cast<float>(i) / (kSteps / 2.0F);
            const Point point = Place(canvas, {radius * std::cos(angle), radius * std::sin(angle)});
            canvas.Stroke(last, point, color, pen);
            last = point;
        }
    }

    float Hue() const { return hue_ + 0.31F * static_cast<float>(clicks_ % 3); }

    static Point Place(const Canvas& canvas, Point point) {
        const auto size = static_cast<float>(std::min(canvas.Width(), canvas.Height()));
        return {canvas.Width() / 2.0F + point.X * size, canvas.Height() / 2.0F + point.Y * size};
    }
    static viz::Pen PenFor(const Canvas& canvas, float width, float glow) {
        const float unit = std::max(1.0F, static_cast<float>(canvas.Height()) / 240);
        return {width * unit, glow * unit, 0.5F};
    }

    std::array<Ribbon, kRibbons> ribbons_{};
    bool started_ = false;
    viz::Loudness loudness_;
    float bass_ = 0;
    float phase_ = 0;
    float hue_ = 0.55F;
    std::atomic<uint32_t> clicks_{0};
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Flow>(out);
}
