// Waterfall: the spectrum of this moment above, all that came before falling away below it. It remembers the
// music by itself and paints every pixel anew, so it asks for no effects. Colours and pace can be chosen in its
// dialog and are kept. Shows an effect mask of 0, preferences and a dialog.
#include <array>
#include <atomic>
#include <vector>

#include <tdkviz/kit/choice_dialog.h>
#include <tdkviz/kit/plugin.h>
#include <tdkviz/kit/preferences.h>
#include <tdkviz/kit/spectrum.h>

#include "Creator.h"

namespace {

using viz::Canvas;
using viz::Color;

constexpr int kColumns = 512;
constexpr int kRows = 512;
constexpr char kColorsValue[] = "Waterfall Colours";
constexpr char kPaceValue[] = "Waterfall Pace";
// What they were called before; read, but not written.
constexpr char kOldColorsValue[] = "Colours";
constexpr char kOldPaceValue[] = "Pace";
constexpr std::array<float, 3> kPaces = {0.6F, 1, 2};  // rows of a picture of 240 each frame

const std::vector<viz::ChoiceGroup> kChoices = {{"Colours", {"Ember", "Sea", "Orchid"}},
                                                {"Pace", {"Slow", "Normal", "Fast"}}};

class Waterfall final : public viz::BufferPlugin {
public:
    Waterfall()
        : BufferPlugin(
              {.Name = "Waterfall",
               .Creator = kCreator,
               .Description =
                   "The spectrum and its past. Colours and pace can be configured; a click changes the colours.",
               .Effects = 0}) {}
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues* properties) override {
        PluginBase::GetCapabilities(effectMask, wantsSpectrum, properties);
        return properties->SetNumber(kPropertySupportConfigure, 1);
    }
    HRESULT SetPreferences(IKVAPreferences* preferences) override {
        preferences_ = viz::Preferences(preferences);
        const size_t colors = std::size(kPalettes);
        colors_ = preferences_.Read(kColorsValue, preferences_.Read(kOldColorsValue, 0, colors), colors);
        pace_ = preferences_.Read(kPaceValue, preferences_.Read(kOldPaceValue, 1, kPaces.size()), kPaces.size());
        return S_OK;
    }
    HRESULT Configure(MPAVizWindowRecord*) override {
        return dialog_.Show("Waterfall", kChoices, {colors_, pace_}, [this](size_t group, uint32_t choice) {
            group == 0 ? Choose(choice, pace_) : Choose(colors_, choice);
        });
    }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override {
        Choose((colors_ + 1) % std::size(kPalettes), pace_);
        return S_OK;
    }

private:
    void Choose(uint32_t colors, uint32_t pace) {
        colors_ = colors;
        pace_ = pace;
        preferences_.Write(kColorsValue, colors);
        preferences_.Write(kPaceValue, pace);
    }

    void Paint(const Canvas& canvas, const VizAnalysisFrame& frame) override {
        spectrum_.Follow(frame);
        fallen_ += kPaces[pace_] * static_cast<float>(std::min(kRows, canvas.Height())) / 240;
        for (; fallen_ >= 1; fallen_ -= 1) {
            newest_ = (newest_ + kRows - 1) % kRows;
            Remember(past_[newest_]);
        }
        const int shore = canvas.Height() * 3 / 10;
        PaintPast(canvas, shore);
        PaintPresent(canvas, shore);
    }

    void Remember(std::array<uint8_t, kColumns>& row) const {
        for (int x = 0; x < kColumns; ++x) {
            const float height = spectrum_.HeightAt(scale_.Start(x));
            row[x] = static_cast<uint8_t>(height * 255);
        }
    }

    // From the shore downwards, older and darker row by row.
    void PaintPast(const Canvas& canvas, int shore) {
        FindColumns(canvas.Width());
        const int rows = canvas.Height() - shore;
        const viz::Palette& palette = kPalettes[colors_];
        std::array<Color, 256> colors;
        for (int y = 0; y < rows; ++y) {
            if (y % 4 == 0) {
                const uint32_t share = 256 - static_cast<uint32_t>(y * 150 / rows);
                for (size_t i = 0; i < colors.size(); ++i) colors[i] = viz::Shade(palette[i], share);
            }
            const int age = rows > kRows ? y * kRows / rows : y;
            const auto& past = past_[(newest_ + age) % kRows];
            Color* row = canvas.Row(shore + y);
            for (int x = 0; x < canvas.Width(); ++x) row[x] = colors[past[columns_[x]]];
        }
    }

    // The present stands on the shore as a lit ridge.
    void PaintPresent(const Canvas& canvas, int shore) {
        for (int y = 0; y < shore; ++y) canvas.FillRow(y, 0, canvas.Width(), 0);
        const float room = static_cast<float>(shore) * 0.9F;
        const viz::Palette& palette = kPalettes[colors_];
        for (int x = 0; x < canvas.Width(); ++x) {
            const float height = spectrum_.HeightAt(scale_.Start(columns_[x]));
            const float tall = height * room;
            const auto whole = static_cast<int>(tall);
            const uint32_t step = 230 * 256 / static_cast<uint32_t>(std::max(whole, 1));
            const Color top = palette.At(0.25F + 0.75F * height);
            uint32_t share = 26 * 256;
            for (int above = 0; above < whole; ++above, share += step)
                canvas.Row(shore - 1 - above)[x] = viz::Shade(top, share >> 8);
            if (whole < shore) canvas.Row(shore - 1 - whole)[x] = viz::Dimmed(top, tall - static_cast<float>(whole));
        }
    }

    // Which column of the past each pixel of a row shows.
    void FindColumns(int width) {
        if (columns_.size() == static_cast<size_t>(width)) return;
        columns_.resize(static_cast<size_t>(width));
        for (int x = 0; x < width; ++x)
            columns_[static_cast<size_t>(x)] = static_cast<uint16_t>(static_cast<int64_t>(x) * kColumns / width);
    }

    inline static const viz::Palette kPalettes[] = {
        {0x000000, 0x1C0B3A, 0x5A1468, 0xA82A5E, 0xE8603C, 0xFBAE3C, 0xFFF3C0},
        {0x000000, 0x06213F, 0x0B4A6E, 0x127F8E, 0x3DB58C, 0xB4DE86, 0xFCFBD2},
        {0x000000, 0x1A1446, 0x4A2C8C, 0x9442B4, 0xDE6AB0, 0xF8AABA, 0xFFF2EC},
    };
    const viz::PitchScale scale_{kColumns, 0.085F};
    std::vector<std::array<uint8_t, kColumns>> past_{kRows};
    std::vector<uint16_t> columns_;
    int newest_ = 0;
    float fallen_ = 0;
    viz::Spectrum spectrum_;
    std::atomic<uint32_t> colors_{0};
    std::atomic<uint32_t> pace_{1};
    viz::Preferences preferences_;
    viz::ChoiceDialog dialog_;
};

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    return viz::Create<Waterfall>(out);
}
