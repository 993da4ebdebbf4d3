// Meters: the loudness of both channels on two needles that move like real ones.
// A worked example of window mode: it gets a window instead of pixels, paints into it with the system's own
// drawing, and gives everything back in IMPAVisualizationClose.
#include <mutex>

#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/surface.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Point;

constexpr Color kGlow = 0x1F6F8C;
constexpr Color kInk = 0xBFEFFF;
constexpr Color kRed = 0xFF7A5C;
constexpr Color kNeedle = 0xFFF3DC;
constexpr float kSweep = 0.80F;  // radians to each side
constexpr struct {
    int Decibels;
    const char* Text;
} kMarks[] = {{-20, "20"}, {-10, "10"}, {-7, "7"}, {-5, "5"}, {-3, "3"},
              {-1, "1"},   {0, "0"},    {1, "1"},  {2, "2"},  {3, "3"}};

struct Dial {
    float Left, Top, Width, Height;

    // From 0 at the left end of the scale to 1, `distance` in parts of the needle's length.
    Point At(float place, float distance) const {
        const float angle = kSweep * (2 * place - 1);
        return {Left + Width / 2 + distance * Length() * std::sin(angle),
                Top + Height * 0.98F - distance * Length() * std::cos(angle)};
    }
    float Length() const { return std::min(Height * 0.80F, Width * 0.60F); }
};

// A needle has mass: it is late, and swings a little past its mark.
struct Needle {
    static constexpr float kFullScale = 1.41254F;  // +3 dB, the right end of the scale
    static constexpr float kZeroLevel = 38;        // the root of the mean square, in sample units, that reads 0 dB

    float Place = 0;  // 0 at the left end, 1 at the right one
    float Speed = 0;
    float Lamp = 0;  // 1 when the samples have come near their limit, then down to 0

    void Follow(const int8_t* samples) {
        float square = 0;
        int peak = 0;
        for (int i = 0; i < kWaveformSamples; ++i) {
            square += static_cast<float>(samples[i] * samples[i]);
            peak = std::max(peak, std::abs(samples[i]));
        }
        const float volts = std::sqrt(square / kWaveformSamples) / kZeroLevel;
        Speed = (Speed + (std::min(volts / kFullScale, 1.1F) - Place) * 0.34F) * 0.56F;
        Place = std::clamp(Place + Speed, 0.0F, 1.06F);
        Lamp = peak > 118 ? 1 : Lamp * 0.86F;
    }
};

class Meters final : public viz::PluginBase<IMPAVisualization2, kIID_IMPAVisualization2>,
                     public IMPAVisualizationClose {
public:
    Meters()
        : PluginBase({.Name = "Meters",
                      .Creator = kCreator,
                      .Description = "The loudness of both channels on two needles.",
                      .Effects = 0,
                      .WantsSpectrum = false}) {}
    HRESULT QueryInterface(const GUID& id, void** out) override {
        if (!(id == kIID_IMPAVisualizationClose)) return PluginBase::QueryInterface(id, out);
        *out = static_cast<IMPAVisualizationClose*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return PluginBase::AddRef(); }
    ULONG Release() override { return PluginBase::Release(); }
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues* properties) override {
        PluginBase::GetCapabilities(effectMask, wantsSpectrum, properties);
        return properties->SetNumber(kPropertyRenderMode, kRenderToWindow);
    }
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return E_NOTIMPL; }
    HRESULT SetActive(uint32_t) override { return S_OK; }

    // Comes while a frame is painted; that frame is the last one.
    HRESULT SetWindow(MPAVizWindowRecord* target) override {
        shown_ = target && target->Window != 0;
        return S_OK;
    }
    HRESULT DrawToWindow(MPAVizWindowRecord* target, VizAnalysisFrame* frame) override {
        if (!target || !frame) return E_INVALIDARG;
        const std::lock_guard lock(mutex_);
        if (!shown_) return S_OK;
        TakeContext(reinterpret_cast<HWND>(static_cast<uintptr_t>(target->Window)));
        RECT area;
        if (!context_ || !GetClientRect(window_, &area) || area.right < 1 || area.bottom < 1) return S_OK;
        if (!Prepare(area.right, area.bottom)) return E_OUTOFMEMORY;
        loudness_.Follow(*frame);
        needles_[0].Follow(frame->WaveformLeft);
        needles_[1].Follow(frame->WaveformRight);
        face_.CopyTo(picture_.Context());
        PaintNeedles(picture_.Paint());
        picture_.CopyTo(context_);
        return S_OK;
    }
    HRESULT Close() override {
        const std::lock_guard lock(mutex_);
        shown_ = false;
        TakeContext(nullptr);
        face_ = viz::Surface();
        picture_ = viz::Surface();
        return S_OK;
    }

private:
    ~Meters() override { TakeContext(nullptr); }

    // The context is kept for as long as the window is painted into: a view's window has a context of its own,
    // and giving it back says that the picture no longer comes from there.
    void TakeContext(HWND window) {
        if (window == window_) return;
        if (context_) ReleaseDC(window_, context_);
        window_ = window;
        context_ = window ? GetDC(window) : nullptr;
    }

    // What doesn't move is painted once for each size.
    bool Prepare(int width, int height) {
        if (picture_.IsOfSize(width, height)) return true;
        face_ = viz::Surface(width, height);
        picture_ = viz::Surface(width, height);
        if (!face_.IsGood() || !picture_.IsGood()) return false;
        const bool beside = width > height;
        const auto w = static_cast<float>(width), h = static_cast<float>(height);
        for (int i = 0; i < 2; ++i) {
            const auto index = static_cast<float>(i);
            dials_[i] =
                beside ? Dial{w / 2 * index, h / 2 - w / 5.2F, w / 2, w / 2.6F} : Dial{0, h / 2 * index, w, h / 2};
            PaintFace(face_.Paint(), dials_[i]);
            PaintTexts(face_.Context(), dials_[i], i == 0 ? "LEFT" : "RIGHT");
        }
        return true;
    }

    // Light from below, and the scale.
    static void PaintFace(const Canvas& canvas, const Dial& dial) {
        const float unit = dial.Length() / 110;
        canvas.Blot(dial.At(0.5F, 0.45F), dial.Length() * 0.98F, kGlow);
        const viz::Pen line(1.3F * unit + 0.4F, 5 * unit, 0.35F);
        const viz::Pen heavy(3.2F * unit + 0.4F, 7 * unit, 0.35F);
        const float zero = 1 / Needle::kFullScale;
        for (int i = 0; i < 64; ++i) {
            const float from = static_cast<float>(i) / 64, to = static_cast<float>(i + 1) / 64;
            const bool loud = from >= zero;
            canvas.Stroke(dial.At(from, 0.86F), dial.At(to, 0.86F), loud ? kRed : kInk, loud ? heavy : line);
        }
        for (const auto& mark : kMarks) {
            const float place = PlaceOf(mark.Decibels);
            canvas.Stroke(dial.At(place, 0.86F), dial.At(place, 0.93F), mark.Decibels > 0 ? kRed : kInk, line);
        }
    }

    static void PaintTexts(HDC context, const Dial& dial, const char* channel) {
        const auto size = static_cast<int>(dial.Length() * 0.085F);
        if (size < 6) return;
        const HFONT font =
            CreateFontA(-size, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                        CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, VARIABLE_PITCH | FF_SWISS, "Arial");
        const HGDIOBJ former = SelectObject(context, font);
        SetBkMode(context, TRANSPARENT);
        SetTextAlign(context, TA_CENTER | TA_BASELINE);
        const auto write = [&](Point at, Color color, const char* text) {
            SetTextColor(context, RGB(color >> 16, color >> 8, color));
            TextOutA(context, static_cast<int>(at.X), static_cast<int>(at.Y), text,
                     static_cast<int>(std::strlen(text)));
        };
        for (const auto& mark : kMarks)
            write(dial.At(PlaceOf(mark.Decibels), 0.96F), mark.Decibels > 0 ? kRed : kInk, mark.Text);
        write(dial.At(0.5F, 0.58F), kInk, "VU");
        write(dial.At(0.5F, 0.30F), viz::Dimmed(kInk, 0.6F), channel);
        SelectObject(context, former);
        DeleteObject(font);
    }

    void PaintNeedles(const Canvas& canvas) const {
        for (int i = 0; i < 2; ++i) {
            const Dial& dial = dials_[i];
            const float unit = dial.Length() / 110;
            const viz::Pen pen(1.7F * unit + 0.4F, 4.5F * unit, 0.3F);
            canvas.Stroke(dial.At(needles_[i].Place, 0.16F), dial.At(needles_[i].Place, 0.90F), kNeedle, pen);
            canvas.Light(dial.At(0.5F, 0.05F), dial.Length() * 0.16F, viz::Dimmed(kGlow, 0.5F));
            const Point lamp = dial.At(0.97F, 0.52F);
            canvas.Light(lamp, 4 * unit + 1, viz::Dimmed(kRed, 0.25F + 0.75F * needles_[i].Lamp));
            canvas.Light(lamp, 16 * unit + 1, viz::Dimmed(kRed, 0.6F * needles_[i].Lamp));
        }
        // The light behind the scales goes out when there is nothing to read.
        if (loudness_.Presence() < 1) canvas.Dim(static_cast<uint16_t>(viz::ShareOf(loudness_.Presence())));
    }

    static float PlaceOf(int decibels) {
        return std::pow(10.0F, static_cast<float>(decibels) / 20) / Needle::kFullScale;
    }

    std::mutex mutex_;
    std::atomic<bool> shown_{false};
    HWND window_ = nullptr;
    HDC context_ = nullptr;
    viz::Surface face_, picture_;
    Dial dials_[2] = {};
    Needle needles_[2];
    viz::Loudness loudness_;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    auto* made = new (std::nothrow) Meters;
    *out = static_cast<IMPAVisualization2*>(made);
    return made ? S_OK : E_OUTOFMEMORY;
}
