// Starfield: a flight between stars. The music sets the speed, each beat gives a push, and every star listens to
// a band of its own. Shows particles: where they are born, how they move evenly, when they are reborn.
#include <array>

#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/spectrum.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Point;

constexpr int kStars = 520;
constexpr size_t kPixelsPerStar = 140;
constexpr float kFarthest = 1;
constexpr float kNearest = 0.045F;

struct Star {
    float X = 0, Y = 0, Depth = 0;  // -1 to 1 across, kNearest to kFarthest away
    int Band = 0;
    float Warmth = 0;
};

class Starfield final : public viz::BufferPlugin {
public:
    Starfield()
        : BufferPlugin({.Name = "Starfield",
                        .Creator = kCreator,
                        .Description = "A flight between stars that listen to the music."}) {
        for (Star& star : stars_) {
            Bear(star);
            star.Depth = kNearest + (kFarthest - kNearest) * Chance();
        }
    }

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Sink(5);
        loudness_.Follow(frame);
        beat_.Follow(frame);
        spectrum_.Follow(frame);
        if (loudness_.Presence() <= 0) return;
        const float speed = 0.003F + 0.012F * loudness_.Level() + 0.014F * beat_.Swell();
        // The ship leans into slow curves.
        const auto time = static_cast<float>(Frames());
        const Point aim{0.22F * std::sin(time * 0.0061F), 0.16F * std::sin(time * 0.0047F + 1)};
        const float roll = 0.0035F * std::sin(time * 0.0039F);
        // Small pictures have room for few.
        size_t room = static_cast<size_t>(canvas.Width()) * static_cast<size_t>(canvas.Height()) / kPixelsPerStar + 8;
        for (Star& star : stars_) {
            const Star before = star;
            star.Depth -= speed;
            star.X += roll * star.Y;
            star.Y -= roll * star.X;
            if (star.Depth < kNearest) {
                Bear(star);
                continue;
            }
            if (room > 0) {
                --room;
                Show(canvas, aim, before, star);
            }
        }
    }

    void Show(const Canvas& canvas, Point aim, const Star& before, const Star& star) const {
        const Point from = Place(canvas, aim, before);
        const Point to = Place(canvas, aim, star);
        const float margin = canvas.Smaller() * 0.1F;
        if (to.X < -margin || to.Y < -margin || to.X > static_cast<float>(canvas.Width()) + margin ||
            to.Y > static_cast<float>(canvas.Height()) + margin)
            return;
        const float nearness = 1 - star.Depth / kFarthest;
        const float heard = spectrum_[star.Band].Height;
        const float light = loudness_.Presence() * std::min(1.0F, nearness * (0.55F + 1.5F * heard) * 1.6F);
        const Color color = kTemperatures.At(star.Warmth);
        const float size = canvas.Unit() * (0.8F + 2.6F * nearness * nearness);
        const viz::Pen trail(0.6F * size);
        canvas.Stroke(from, to, viz::Dimmed(color, 0.7F * light), trail, 0.3F);
        canvas.Light(to, size, viz::Dimmed(color, light));
        // Loud bands give their near stars a halo.
        const float halo = nearness * heard * heard;
        if (halo > 0.25F) canvas.Blot(to, size * 4.5F, viz::Dimmed(color, 0.55F * halo * loudness_.Presence()));
    }

    static Point Place(const Canvas& canvas, Point aim, const Star& star) {
        const float half = static_cast<float>(std::max(canvas.Width(), canvas.Height())) / 2;
        const float scale = half * 0.42F / star.Depth;
        return {static_cast<float>(canvas.Width()) / 2 + aim.X * half * (1 - star.Depth) + star.X * scale,
                static_cast<float>(canvas.Height()) / 2 + aim.Y * half * (1 - star.Depth) + star.Y * scale};
    }

    void Bear(Star& star) {
        star.X = Chance() * 2 - 1;
        star.Y = Chance() * 2 - 1;
        star.Depth = kFarthest;
        const float pitch = Chance();
        star.Band = static_cast<int>(pitch * pitch * pitch * (viz::Spectrum::kBands - 1));
        // Low bands are warm, high ones cold.
        star.Warmth = std::clamp(pitch + 0.3F * (Chance() - 0.5F), 0.0F, 1.0F);
    }

    // The same numbers in every run.
    float Chance() {
        seed_ = seed_ * 1664525 + 1013904223;
        return static_cast<float>(seed_ >> 8) / (1 << 24);
    }

    inline static const viz::Palette kTemperatures{0xFF7E4A, 0xFFB36B, 0xFFEBD2, 0xA9C8FF, 0x6E8CFF, 0xA67CFF};
    uint32_t seed_ = 2463534242;
    std::array<Star, kStars> stars_;
    viz::Loudness loudness_;
    viz::Beat beat_;
    viz::Spectrum spectrum_;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Starfield>(out);
}
