// Ridges: the music as a range of hills that rolls away into the night. Each line is the spectrum of its moment,
// and the nearer ones hide what lies behind them. Shows how to hide without sorting: from front to back, each
// column remembers how high it has been covered.
#include <array>
#include <vector>

#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/spectrum.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;

constexpr int kRidges = 34;
constexpr int kPoints = 96;  // across, with the bass in the middle
constexpr int kEvery = 3;    // frames from ridge to ridge

using Ridge = std::array<float, kPoints>;

class Ridges final : public viz::BufferPlugin {
public:
    Ridges()
        : BufferPlugin({.Name = "Ridges",
                        .Creator = kCreator,
                        .Description = "The music as hills that roll away into the night. Click for another night.",
                        .Effects = 0}) {}

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Clear();
        loudness_.Follow(frame);
        spectrum_.Follow(frame);
        if (Frames() % kEvery == 0) {
            nearest_ = (nearest_ + kRidges - 1) % kRidges;
            ridges_[nearest_] = {};
        }
        Grow(ridges_[nearest_]);
        covered_.assign(static_cast<size_t>(canvas.Width()), static_cast<float>(canvas.Height()));
        const float moved = static_cast<float>(Frames() % kEvery) / kEvery;
        for (int i = 0; i < kRidges; ++i) {
            const float away = (static_cast<float>(i) + moved) / kRidges;
            if (away < 1) DrawRidge(canvas, ridges_[(nearest_ + i) % kRidges], away);
        }
    }

    // The nearest ridge keeps the highest of its few frames.
    void Grow(Ridge& ridge) const {
        for (int i = 0; i < kPoints; ++i) {
            const float side = std::fabs(static_cast<float>(2 * i - kPoints + 1)) / kPoints;  // 0 in the middle
            const float heard = spectrum_.HeightAt(scale_.Start(static_cast<int>(side * kPitches)));
            // Flat towards both sides, as hills at a shore.
            const float shore = 1 - side * side * side;
            ridge[i] = std::max(ridge[i], heard * heard * shore * (0.55F + 0.45F * side * 2));
        }
    }

    void DrawRidge(const Canvas& canvas, const Ridge& ridge, float away) {
        const auto height = static_cast<float>(canvas.Height());
        const float depth = 1 / (1 + 2.6F * away);  // how much smaller
        const float ground = height * (0.16F + 0.98F * (depth - 1 / 3.6F));
        const float room = height * 0.34F * depth;
        const float light = loudness_.Presence() * (1 - 0.9F * away) * std::min(1.0F, 0.35F + 8 * away);
        const viz::Palette& night = kNights[Clicks() % std::size(kNights)];
        const float middle = static_cast<float>(canvas.Width()) / 2;
        const float step = kPoints / (static_cast<float>(canvas.Width()) * (0.42F + 0.62F * depth));
        float former = 0;
        for (int x = 0; x < canvas.Width(); ++x) {
            const float place = kPoints / 2.0F + (static_cast<float>(x) + 0.5F - middle) * step - 0.5F;
            const float value = At(ridge, place);
            const float top = ground - value * room;
            const float steep = x > 0 ? std::fabs(top - former) : 0;
            former = top;
            float& covered = covered_[static_cast<size_t>(x)];
            if (top >= covered) continue;
            const Color crest = viz::Dimmed(night.At(0.12F + 1.3F * value), light);
            Fall(canvas, x, top, covered, steep, crest);
            covered = top;
        }
    }

    // One column of a hill: bright at its crest, which is as tall as the slope is steep, and dark below.
    static void Fall(const Canvas& canvas, int x, float top, float end, float steep, Color color) {
        const float line = 1.1F * canvas.Unit() + steep;
        const int first = Canvas::ClampTo(top, canvas.Height());
        const int last = Canvas::ClampTo(end, canvas.Height());
        const float fade = 1 / (14 * canvas.Unit());
        for (int y = first; y < last; ++y) {
            const float below = static_cast<float>(y) + 1 - top;
            const float part = below < 1 ? below : std::max(1 + line - below, 0.42F - (below - line) * 0.42F * fade);
            if (part <= 0) break;
            canvas.Row(y)[x] = viz::Dimmed(color, part);
        }
    }

    // A smooth curve through the points, 0 beyond them.
    static float At(const Ridge& ridge, float place) {
        if (place < 0 || place >= kPoints - 1) return 0;
        const int i = static_cast<int>(place);
        const float part = place - static_cast<float>(i);
        const float ease = part * part * (3 - 2 * part);
        return ridge[i] + (ridge[i + 1] - ridge[i]) * ease;
    }

    static constexpr int kPitches = 64;
    inline static const viz::Palette kNights[] = {
        {0x3458B8, 0x4C8FE0, 0x7AD0F0, 0xF8F2DC},
        {0x6A2C70, 0xB83B5E, 0xF08A5D, 0xF9ED69},
        {0x1F6F5C, 0x3FA77B, 0xA3D977, 0xF7F7D4},
    };
    const viz::PitchScale scale_{kPitches, 0.35F};
    std::array<Ridge, kRidges> ridges_{};
    std::vector<float> covered_;
    int nearest_ = 0;
    viz::Spectrum spectrum_;
    viz::Loudness loudness_;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Ridges>(out);
}
