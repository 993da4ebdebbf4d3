// The bands of both channels as two rows of lights, one the mirror of the other. A click changes the colours, and the
// choice lasts.
#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/preferences.h>
#include <tdkviz/kit/spectrum.h>

#include <atomic>

namespace {

constexpr int kLights = 24;
constexpr char kColorsValue[] = "MyVisualization.Colours";

class MyVisualization final : public viz::BufferPlugin {
public:
    MyVisualization()
        : BufferPlugin({.Name = "My Visualization",
                        .Creator = "You",
                        .Description = "The bands as lights. Click for other colours.",
                        .Effects = kEffectsAll & ~kEffectRotate}) {}

    // Comes once, before the first frame.
    HRESULT SetPreferences(IKVAPreferences* preferences) override {
        preferences_ = viz::Preferences(preferences);
        colors_ = preferences_.Read(kColorsValue, 0, std::size(kPalettes));
        return S_OK;
    }
    // Comes at any time, even during Paint: what both use is atomic.
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override {
        const uint32_t next = (colors_ + 1) % std::size(kPalettes);
        colors_ = next;
        preferences_.Write(kColorsValue, next);
        return S_OK;
    }

private:
    // The picture of the last frame is still there, as the effects have left it.
    void Paint(const viz::Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Dim(235);
        left_.Follow(frame.SpectrumLeft, frame.SpectrumLeft);
        right_.Follow(frame.SpectrumRight, frame.SpectrumRight);
        const viz::Palette& palette = kPalettes[colors_];
        for (int i = 0; i < kLights; ++i) {
            PaintLight(canvas, palette, left_, i, -1);
            PaintLight(canvas, palette, right_, i, 1);
        }
    }

    // `side`: -1 above the middle, 1 below it.
    void PaintLight(const viz::Canvas& canvas, const viz::Palette& palette, const viz::Spectrum& spectrum, int index,
                    float side) const {
        const float height = spectrum.Highest(scale_.Start(index), scale_.Start(index + 1)).Height;
        const auto width = static_cast<float>(canvas.Width());
        const auto middle = static_cast<float>(canvas.Height()) / 2;
        const float x = width * (static_cast<float>(index) + 0.5F) / kLights;
        const float y = middle + side * middle * (0.06F + 0.8F * height);
        const float radius = width / kLights * (0.25F + 0.45F * height);
        canvas.Blot({x, y}, radius, palette.At(height));
    }

    inline static const viz::Palette kPalettes[] = {
        {0x101830, 0x2A5A9C, 0x40C0FF, 0xF4FBFF},
        {0x2A0F1E, 0x8C2A4A, 0xFF8A5C, 0xFFF3D6},
    };
    const viz::PitchScale scale_{kLights};
    viz::Spectrum left_, right_;
    viz::Preferences preferences_;
    std::atomic<uint32_t> colors_{0};
};

}  // namespace

// The one thing that the library exports.
TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<MyVisualization>(out);
}
