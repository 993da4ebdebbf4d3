// Ink: wells of ink drift round the middle and swell with their part of the music; the effects draw the ink out
// into plumes and let it dry. A click stirs in other colours.
// Shows how little to draw when the feedback does the rest.
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

constexpr int kWells = 9;
constexpr int kDrops = 3;  // that circle each well and give the plumes their threads

class Ink final : public viz::BufferPlugin {
public:
    Ink()
        : BufferPlugin(
              {.Name = "Ink",
               .Creator = kCreator,
               .Description = "Wells of ink that the effects draw out into plumes. Click for other colours."}) {}

private:
    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        canvas.Sink(3);
        loudness_.Follow(frame);
        beat_.Follow(frame);
        spectrum_.Follow(frame);
        time_ += 0.006F + 0.020F * loudness_.Level() + 0.012F * beat_.Swell();
        if (loudness_.Presence() <= 0) return;
        for (int i = 0; i < kWells; ++i) {
            const float heard = spectrum_.Highest(scale_.Start(i), scale_.Start(i + 1)).Height;
            press_[i] += (heard - press_[i]) * (heard > press_[i] ? 0.35F : 0.10F);
            Well(canvas, i);
        }
    }

    void Well(const Canvas& canvas, int index) const {
        const float own = kTurn * static_cast<float>(index) / kWells;
        const float press = press_[index] * press_[index];
        const float time = time_ * (index % 2 ? -0.7F : 1.0F);
        const float distance = 0.20F + 0.13F * std::sin(time_ * 0.61F + 2.3F * own);
        const Point place{1.2F * distance * std::cos(time + own), distance * std::sin(time + own)};
        const viz::Palette& inks = kInks[Clicks() % std::size(kInks)];
        const float hue = static_cast<float>(index) / kWells + time_ * 0.03F;
        const float light = loudness_.Presence() * (0.45F + 0.55F * press_[index]);
        const float radius = canvas.Smaller() * (0.022F + 0.085F * press);
        canvas.Blot(canvas.FromMiddle(place), radius, viz::Dimmed(inks.Around(hue), 0.85F * light));
        for (int i = 0; i < kDrops; ++i) {
            const float angle = time_ * (5 + static_cast<float>(index % 3)) + kTurn * static_cast<float>(i) / kDrops;
            const float away = 0.022F + 0.070F * press;
            const Point drop{place.X + away * std::cos(angle), place.Y + away * std::sin(angle)};
            const Color color = viz::Dimmed(inks.Around(hue + 0.08F * static_cast<float>(i + 1)), light);
            canvas.Blot(canvas.FromMiddle(drop), 0.34F * radius + 1.6F * canvas.Unit(), color);
        }
    }

    inline static const viz::Palette kInks[] = {
        {0x3A6BE0, 0x7A58DC, 0xD458B4, 0xFF7C68, 0xFFC868, 0x54B8C4, 0x3A6BE0},
        {0x1A9A90, 0x4CC49A, 0xD2E294, 0xFFF4D4, 0xEDAE62, 0x6A7CC4, 0x1A9A90},
        {0xD03A5A, 0xF07848, 0xFFC45E, 0xFFEFC8, 0xB87CDC, 0x6A4CC0, 0xD03A5A},
    };
    const viz::PitchScale scale_{kWells, 1.6F};
    std::array<float, kWells> press_{};
    viz::Loudness loudness_;
    viz::Beat beat_;
    viz::Spectrum spectrum_;
    float time_ = 0;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Ink>(out);
}
