// Oscilloscope: the waveforms of both channels as glowing lines. A click changes the colours.
#include <atomic>

#include "common/Canvas.h"
#include "common/Plugin.h"
#include "common/Waveform.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Curve;

struct Palette {
    Color Left, Right, Loud;
};

constexpr Palette kPalettes[] = {
    {{0.10F, 0.75F, 1.00F}, {1.00F, 0.30F, 0.55F}, {1.00F, 0.98F, 0.85F}},
    {{0.20F, 0.95F, 0.45F}, {0.95F, 0.85F, 0.20F}, {0.95F, 1.00F, 0.95F}},
    {{1.00F, 0.55F, 0.12F}, {0.55F, 0.35F, 1.00F}, {1.00F, 0.95F, 1.00F}},
};
constexpr uint32_t kPaletteCount = std::size(kPalettes);

// What a frame keeps of the last picture by itself: short trails with or without the effects.
constexpr uint32_t kAfterglow = 158;
constexpr float kPixelsPerStep = 2;
// A veil of light hangs between a line and its place of rest.
constexpr float kVeil = 0.30F;

class Oscilloscope final : public viz::BufferPlugin {
public:
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        return Tell(name, "Oscilloscope", creator, description,
                    "The waveforms of both channels as glowing lines. Click for other colours.");
    }
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues*) override {
        *effectMask = kEffectsAll;
        *wantsSpectrum = false;
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
        loudness_.Follow(*frame);
        const Palette& palette = kPalettes[clicks_ % kPaletteCount];
        if (frame->ChannelCount < 2) {
            DrawTrace(canvas, frame->WaveformLeft, 0.5F, 0.40F, palette.Left, palette.Loud);
        } else {
            DrawTrace(canvas, frame->WaveformLeft, 0.29F, 0.25F, palette.Left, palette.Loud);
            DrawTrace(canvas, frame->WaveformRight, 0.71F, 0.25F, palette.Right, palette.Loud);
        }
        return S_OK;
    }

private:
    // `middle` and `reach` in parts of the height.
    void DrawTrace(const Canvas& canvas, const int8_t* samples, float middle, float reach, Color quiet, Color loud) {
        const Curve curve(samples);
        const auto width = static_cast<float>(canvas.Width());
        const auto height = static_cast<float>(canvas.Height());
        const float unit = std::max(1.0F, height / 240);
        const viz::Pen pen{1.7F * unit, 7 * unit, 0.42F + 0.25F * loudness_.Level()};
        const int steps = std::max(2, static_cast<int>(width / kPixelsPerStep));
        const float gain = reach * height * std::min(1.0F, 0.45F + 0.75F * loudness_.Level()) * loudness_.Gain();
        viz::Point last{};
        float lastValue = 0;
        for (int i = 0; i <= steps; ++i) {
            const float place = static_cast<float>(i) / static_cast<float>(steps);
            // The line comes to rest towards both sides of the picture.
            const float edge = std::min({1.0F, place * 8, (1 - place) * 8});
            const float value = curve.At(place) * gain * edge * (2 - edge);
            const viz::Point point{place * width, middle * height - value};
            const float excursion = std::min(1.0F, std::max(std::fabs(value), std::fabs(lastValue)) / (reach * height));
            const Color color = viz::Mix(quiet, loud, 0.15F + 0.85F * excursion * excursion);
            if (i > 0) {
                canvas.Veil(last, point, middle * height, viz::Scale(quiet, kVeil));
                canvas.Stroke(last, point, color, pen);
            }
            last = point;
            lastValue = value;
        }
    }

    viz::Loudness loudness_;
    std::atomic<uint32_t> clicks_{0};
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Oscilloscope>(out);
}
