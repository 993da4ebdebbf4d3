#include "src/settings/SettingsStore.h"

#include <optional>

#include "src/support/RegistryKey.h"

namespace tdkviz {

namespace {

class Reader {
public:
    // Effect switches take any number but 0 as on, the other flags only a 1.
    static void Switch(const char* name, Relaxed<bool>& field) {
        if (const auto value = Read(name)) field = *value != 0;
    }
    static void Flag(const char* name, bool& field) {
        if (const auto value = Read(name)) field = *value == 1;
    }
    static void Number(const char* name, uint32_t& field) {
        if (const auto value = Read(name)) field = *value;
    }
    // Signed fields are stored by their bits.
    template <typename T>
    static void Number(const char* name, Relaxed<T>& field) {
        if (const auto value = Read(name)) field = static_cast<T>(*value);
    }

private:
    static std::optional<uint32_t> Read(const char* name) {
        uint32_t value = 0;
        if (!ReadNumberSetting(name, 0, &value, kSettingsKey)) return std::nullopt;
        return value;
    }
};

struct Writer {
    static void Switch(const char* name, bool field) { Number(name, field ? 1u : 0u); }
    static void Flag(const char* name, bool field) { Number(name, field ? 1u : 0u); }
    template <typename T>
    static void Number(const char* name, const T& field) {
        WriteNumberSetting(name, static_cast<uint32_t>(field), kSettingsKey);
    }
};

template <typename Visitor, typename Settings>
void ForEach(Settings& settings) {
    auto& effects = settings.UserEffects;
    Visitor::Switch("VizBlur", effects.Blur);
    Visitor::Number("VizBlurAmount", effects.BlurAmount);
    Visitor::Switch("VizZoom", effects.Zoom);
    Visitor::Number("VizZoomX", effects.ZoomX);
    Visitor::Number("VizZoomY", effects.ZoomY);
    Visitor::Switch("VizFade", effects.Fade);
    Visitor::Number("VizFadeColor", effects.FadeColor);
    Visitor::Number("VizFadeTime", effects.FadeTime);
    Visitor::Switch("VizSlide", effects.Slide);
    Visitor::Number("VizSlideX", effects.SlideX);
    Visitor::Number("VizSlideY", effects.SlideY);
    Visitor::Switch("VizRotate", effects.Rotate);
    Visitor::Number("VizRotateSpeed", effects.RotateSpeed);
    Visitor::Number("VizSampleRate", settings.FrameRate);
    Visitor::Flag("VizWindowAlwaysOnTop", settings.AlwaysOnTop);
    Visitor::Flag("VizOn", settings.EffectsOn);
    Visitor::Flag("VizRandom", settings.Randomize);
    Visitor::Number("VizRandomSeed", settings.RandomSeed);
    Visitor::Flag("VizUseDD", settings.UseDirectDraw);
}

}  // namespace

void LoadSettings(StoredSettings& settings) {
    ForEach<Reader>(settings);
}

void SaveSettings(const StoredSettings& settings) {
    ForEach<Writer>(settings);
}

}  // namespace tdkviz
