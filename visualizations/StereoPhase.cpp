// Stereo Phase: left against right, as a beam on a phosphor screen. A vertical line is mono, a wide cloud is
// wide stereo, a level line is out of phase. Shows a beam whose light depends on its speed, and an effect mask
// that leaves only what such a screen does by itself.
#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/waveform.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;
using viz::Point;

struct Phosphor {
    Color Beam, Scale;
};

constexpr Phosphor kPhosphors[] = {{0x6EF0B4, 0x1E4636}, {0x7CC8FF, 0x20384E}, {0xFFBE6A, 0x4A3820}};
// The phosphor's own decay.
constexpr uint16_t kAfterglow = 222;
constexpr int kEvery = 2;  // samples from point to point

class StereoPhase final : public viz::BufferPlugin {
public:
    StereoPhase()
        : BufferPlugin({.Name = "Stereo Phase",
                        .Creator = kCreator,
                        .Description = "Left against right on a phosphor screen. Click for another phosphor.",
                        .Effects = kEffectFade | kEffectBlur,
                        .WantsSpectrum = false}) {}

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Dim(kAfterglow);
        loudness_.Follow(frame);
        follow_ += (Agreement(frame) - follow_) * 0.12F;
        if (loudness_.Presence() <= 0) return;
        const Phosphor& phosphor = kPhosphors[Clicks() % std::size(kPhosphors)];
        const float radius = canvas.Smaller() * 0.40F;
        const Point centre{static_cast<float>(canvas.Width()) / 2, canvas.Smaller() * 0.03F + radius};
        DrawScale(canvas, centre, radius, viz::Dimmed(phosphor.Scale, loudness_.Presence()));
        DrawBeam(canvas, centre, radius, frame, viz::Dimmed(phosphor.Beam, loudness_.Presence()));
        DrawAgreement(canvas, centre, radius, phosphor);
    }

    void DrawBeam(const Canvas& canvas, Point centre, float radius, const VizAnalysisFrame& frame, Color color) const {
        const viz::Pen pen(1.3F * canvas.Unit(), 4 * canvas.Unit(), 0.45F);
        const float gain = radius * loudness_.Gain() * std::min(1.0F, 0.6F + loudness_.Level());
        Point last{};
        for (int i = 2; i + 2 < kWaveformSamples; i += kEvery) {
            const float left = Smooth(frame.WaveformLeft + i);
            const float right = Smooth(frame.WaveformRight + i);
            const Point point{centre.X + (right - left) * gain * 0.7F, centre.Y - (left + right) * gain * 0.5F};
            // A fast beam leaves less light; the oldest part of the frame has faded most.
            const float dx = point.X - last.X, dy = point.Y - last.Y;
            const float slow = 1 / (1 + 7 * std::sqrt(dx * dx + dy * dy) / radius);
            const float light = slow * (0.45F + 0.55F * static_cast<float>(i) / kWaveformSamples);
            if (i > 2) canvas.Stroke(last, point, viz::Dimmed(color, light), pen, 0.8F);
            last = point;
        }
    }

    // The mean of five samples; eight bits are coarse.
    static float Smooth(const int8_t* samples) {
        return static_cast<float>(samples[-2] + 2 * samples[-1] + 3 * samples[0] + 2 * samples[1] + samples[2]) / 9;
    }

    // A diamond with the axes of left, right, middle and sides.
    static void DrawScale(const Canvas& canvas, Point centre, float radius, Color color) {
        const viz::Pen pen(0.8F * canvas.Unit());
        const Point corners[] = {{centre.X, centre.Y - radius},
                                 {centre.X + radius, centre.Y},
                                 {centre.X, centre.Y + radius},
                                 {centre.X - radius, centre.Y}};
        for (int i = 0; i < 4; ++i) canvas.Stroke(corners[i], corners[(i + 1) % 4], color, pen, 0);
        canvas.Stroke(corners[0], corners[2], viz::Dimmed(color, 0.7F), pen, 0);
        canvas.Stroke(corners[1], corners[3], viz::Dimmed(color, 0.7F), pen, 0);
        const float half = radius / 2;
        canvas.Stroke({centre.X - half, centre.Y - half}, {centre.X + half, centre.Y + half}, viz::Dimmed(color, 0.7F),
                      pen, 0);
        canvas.Stroke({centre.X + half, centre.Y - half}, {centre.X - half, centre.Y + half}, viz::Dimmed(color, 0.7F),
                      pen, 0);
    }

    // From -1, opposite, over 0, unrelated, to 1, the same in both channels.
    static float Agreement(const VizAnalysisFrame& frame) {
        int64_t both = 0, left = 0, right = 0;
        for (int i = 0; i < kWaveformSamples; ++i) {
            both += frame.WaveformLeft[i] * frame.WaveformRight[i];
            left += frame.WaveformLeft[i] * frame.WaveformLeft[i];
            right += frame.WaveformRight[i] * frame.WaveformRight[i];
        }
        if (left == 0 || right == 0) return 0;
        return static_cast<float>(both) / std::sqrt(static_cast<float>(left) * static_cast<float>(right));
    }

    // The pointer below the screen, from opposite on the left to the same on the right.
    void DrawAgreement(const Canvas& canvas, Point centre, float radius, const Phosphor& phosphor) const {
        const float y = centre.Y + radius * 1.18F;
        const viz::Pen rail(0.8F * canvas.Unit());
        const viz::Pen mark(2.4F * canvas.Unit(), 5 * canvas.Unit(), 0.4F);
        const Color dark = viz::Dimmed(phosphor.Scale, loudness_.Presence());
        canvas.Stroke({centre.X - radius, y}, {centre.X + radius, y}, dark, rail, 0);
        for (int i = -2; i <= 2; ++i) {
            const float x = centre.X + radius * static_cast<float>(i) / 2;
            canvas.Stroke({x, y - 0.025F * radius}, {x, y + 0.025F * radius}, dark, rail, 0);
        }
        const float x = centre.X + radius * follow_;
        const Color color = viz::Mix(0xF0785A, phosphor.Beam, std::clamp(follow_ + 0.9F, 0.0F, 1.0F));
        canvas.Stroke({x, y - 0.05F * radius}, {x, y + 0.05F * radius}, viz::Dimmed(color, loudness_.Presence()), mark);
    }

    viz::Loudness loudness_;
    float follow_ = 0;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<StereoPhase>(out);
}
