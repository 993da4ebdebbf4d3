// Tunnel: a flight through rings, each the form of the music at the moment when it was born far ahead. Beats
// light a ring; the tunnel bends slowly. Shows a scene in depth that is made of nothing but strokes.
#include <array>

#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/spectrum.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::kTurn;
using viz::Point;

constexpr int kRings = 22;
constexpr int kCorners = 40;
constexpr float kFarthest = 9;
constexpr float kNearest = 0.35F;
constexpr float kSpacing = (kFarthest - kNearest) / kRings;

struct Ring {
    std::array<float, kCorners> Form{};  // how far each corner reaches in
    float Light = 0;
    float Hue = 0;
};

class Tunnel final : public viz::BufferPlugin {
public:
    Tunnel()
        : BufferPlugin({.Name = "Tunnel",
                        .Creator = kCreator,
                        .Description = "A flight through rings that the music has shaped. Click for other colours."}) {
        for (Ring& ring : rings_) Shape(ring);
    }

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Sink(6);
        loudness_.Follow(frame);
        beat_.Follow(frame);
        spectrum_.Follow(frame);
        strongest_ = std::max(strongest_, beat_.Hit());
        travelled_ += 0.045F + 0.10F * loudness_.Level() + 0.06F * beat_.Swell();
        while (travelled_ >= kSpacing) {
            travelled_ -= kSpacing;
            first_ = (first_ + kRings - 1) % kRings;
            Shape(rings_[first_]);
        }
        if (loudness_.Presence() <= 0) return;
        const Ring* farther = nullptr;
        for (int i = 0; i < kRings; ++i) {
            const Ring& ring = rings_[(first_ + i) % kRings];
            const float depth = kFarthest - travelled_ - kSpacing * static_cast<float>(i);
            if (depth > kNearest) DrawRing(canvas, ring, farther, depth);
            farther = &ring;
        }
    }

    // A ring is born with what is heard now: bass below, treble above, the same on both sides.
    void Shape(Ring& ring) {
        const auto heard = [&](int corner) {
            const int pitch = std::min(corner % kCorners, kCorners - corner % kCorners);
            return spectrum_.Highest(scale_.Start(pitch), scale_.Start(pitch + 1)).Height;
        };
        for (int i = 0; i < kCorners; ++i)
            ring.Form[i] = 0.34F * (heard(i + kCorners - 1) + 2 * heard(i) + heard(i + 1)) / 4;
        ring.Light = 0.45F + 0.30F * loudness_.Level() + 0.40F * strongest_;
        hue_ += 0.013F;
        ring.Hue = hue_ + 0.10F * strongest_;
        strongest_ = 0;
    }

    void DrawRing(const Canvas& canvas, const Ring& ring, const Ring* farther, float depth) const {
        const float away = std::min(1.0F, depth / kFarthest);
        const float fog = (1 - away) * (1.15F - away) * std::min(1.0F, (depth - kNearest) * 2);
        const Color hue = kWheel.Around(ring.Hue + 0.33F * static_cast<float>(Clicks() % 3));
        const Color color = viz::Dimmed(hue, loudness_.Presence() * fog * ring.Light * 1.5F);
        const float width = std::min(2.6F, 0.9F / depth + 0.7F) * canvas.Unit();
        const viz::Pen pen(width, width * 2.6F, 0.45F);
        const viz::Pen thin(0.5F * width);
        Point last = Corner(canvas, ring, 0, depth);
        for (int i = 1; i <= kCorners; ++i) {
            const Point next = Corner(canvas, ring, i % kCorners, depth);
            canvas.Stroke(last, next, color, pen);
            // Every few corners a beam runs to the next ring ahead.
            if (farther && i % 8 == 4) {
                canvas.Stroke(next, Corner(canvas, *farther, i % kCorners, depth + kSpacing), viz::Dimmed(color, 0.45F),
                              thin, 0);
            }
            last = next;
        }
    }

    Point Corner(const Canvas& canvas, const Ring& ring, int corner, float depth) const {
        const float angle = kTurn * (static_cast<float>(corner) / kCorners + 0.25F) + Bend(depth, 0.11F, 2) * 0.4F;
        const float radius = (1 - ring.Form[corner]) / depth;
        // What lies far ahead lies round the bend.
        const float ahead = depth / kFarthest;
        const float x = Bend(depth, 0.05F, 0) * 0.42F * ahead + 1.25F * radius * std::cos(angle);
        const float y = Bend(depth, 0.037F, 1) * 0.30F * ahead + radius * std::sin(angle);
        return canvas.FromMiddle({x, y}, canvas.Smaller() * 0.62F);
    }
    // A slow wave along the way that has been flown.
    float Bend(float depth, float pace, float phase) const {
        return std::sin((static_cast<float>(Frames()) * 0.1F + depth) * pace * 2.2F + phase);
    }

    inline static const viz::Palette kWheel = viz::Palette::Wheel(0.74F, 0.18F);
    const viz::PitchScale scale_{kCorners / 2 + 1};
    std::array<Ring, kRings> rings_{};
    int first_ = 0;
    float travelled_ = 0;
    float strongest_ = 0;
    float hue_ = 0.5F;
    viz::Loudness loudness_;
    viz::Beat beat_;
    viz::Spectrum spectrum_;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Tunnel>(out);
}
