// Oscilloscope: the waveforms of both channels as glowing lines. A click changes the colours.
// Shows how a steady tone is made to stand still, and how little a plug-in needs.
#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Curve;

struct Inks {
    Color Left, Right, Loud;
};

constexpr Inks kInks[] = {
    {0x35BDF2, 0xF26A93, 0xFFF6DC},
    {0x4FD08A, 0xE6C65A, 0xF2FFF0},
    {0xF39A4A, 0x9A86F0, 0xFFF0FA},
};

// What a frame keeps of the last picture by itself: short trails with or without the effects.
constexpr uint16_t kAfterglow = 168;
// A veil of light hangs between a line and its place of rest.
constexpr float kVeil = 0.30F;

class Oscilloscope final : public viz::BufferPlugin {
public:
    Oscilloscope()
        : BufferPlugin({.Name = "Oscilloscope",
                        .Creator = kCreator,
                        .Description = "The waveforms of both channels as glowing lines. Click for other colours.",
                        .WantsSpectrum = false}) {}

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Dim(kAfterglow);
        loudness_.Follow(frame);
        if (loudness_.Presence() <= 0) return;
        const Inks& inks = kInks[Clicks() % std::size(kInks)];
        if (frame.ChannelCount < 2) {
            DrawTrace(canvas, frame.WaveformLeft, 0.5F, 0.40F, inks.Left, inks.Loud);
        } else {
            DrawTrace(canvas, frame.WaveformLeft, 0.29F, 0.25F, inks.Left, inks.Loud);
            DrawTrace(canvas, frame.WaveformRight, 0.71F, 0.25F, inks.Right, inks.Loud);
        }
    }

    // `middle` and `reach` in parts of the height.
    void DrawTrace(const Canvas& canvas, const int8_t* samples, float middle, float reach, Color quiet, Color loud) {
        const Curve curve(samples);
        const auto height = static_cast<float>(canvas.Height());
        const float unit = canvas.Unit();
        const viz::Pen pen(1.7F * unit, 5 * unit, 0.42F + 0.25F * loudness_.Level());
        const float full = reach * height;
        const float gain = full * std::min(1.0F, 0.45F + 0.75F * loudness_.Level()) * loudness_.Gain();
        const float rest = middle * height;
        const int steps = std::max(8, static_cast<int>(static_cast<float>(canvas.Width()) / (2.4F * unit)));
        viz::Point last{0, rest};
        for (int i = 1; i <= steps; ++i) {
            const float place = static_cast<float>(i) / static_cast<float>(steps);
            // The line comes to rest towards both sides of the picture.
            const float edge = std::min({1.0F, place * 8, (1 - place) * 8});
            const float value = curve.At(place) * gain * edge * (2 - edge);
            const viz::Point next{place * static_cast<float>(canvas.Width()), rest - value};
            const float excursion = std::min(1.0F, std::fabs(value) / full);
            const Color color = viz::Mix(quiet, loud, 0.15F + 0.85F * excursion * excursion);
            Hang(canvas, last, next, rest, viz::Dimmed(quiet, kVeil * loudness_.Presence()));
            canvas.Stroke(last, next, viz::Dimmed(color, loudness_.Presence()), pen);
            last = next;
        }
    }

    // The veil below one step of a line: full at the line, nothing at `rest`.
    static void Hang(const Canvas& canvas, viz::Point from, viz::Point to, float rest, Color color) {
        const int endX = Canvas::ClampTo(to.X + 0.5F, canvas.Width());
        for (int x = Canvas::ClampTo(from.X + 0.5F, canvas.Width()); x < endX; ++x) {
            const float part = (static_cast<float>(x) + 0.5F - from.X) / (to.X - from.X);
            const float y = from.Y + (to.Y - from.Y) * part;
            const int first = Canvas::ClampTo(std::min(y, rest), canvas.Height());
            const int end = Canvas::ClampTo(std::max(y, rest), canvas.Height());
            // In 1/65536 of the colour.
            const auto step = static_cast<int32_t>(65536 / std::max(std::fabs(y - rest), 1.0F)) * 256;
            auto share = static_cast<int32_t>((static_cast<float>(first) + 0.5F - rest) * static_cast<float>(step));
            for (int row = first; row < end; ++row, share += step)
                Canvas::Lift(canvas.Row(row)[x], viz::Shade(color, static_cast<uint32_t>(std::abs(share)) >> 16));
        }
    }

    viz::Loudness loudness_;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Oscilloscope>(out);
}
