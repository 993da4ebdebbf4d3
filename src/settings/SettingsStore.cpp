#include "src/settings/SettingsStore.h"

#include "src/support/RegistryKey.h"

namespace tdkviz {

namespace {

// Effect switches take any number but 0 as on, the other flags only a 1.
template <typename T>
void ReadSwitch(const char* name, T& field) {
    uint32_t value = 0;
    if (ReadNumberSetting(name, 0, &value, kSettingsKey)) field = value != 0;
}

void ReadFlag(const char* name, bool& field) {
    uint32_t value = 0;
    if (ReadNumberSetting(name, 0, &value, kSettingsKey)) field = value == 1;
}

template <typename T>
void ReadNumber(const char* name, T& field) {
    uint32_t value = 0;
    if (ReadNumberSetting(name, 0, &value, kSettingsKey)) field = value;
}

// Signed fields are stored by their bits.
void ReadSigned(const char* name, Relaxed<int32_t>& field) {
    uint32_t value = 0;
    if (ReadNumberSetting(name, 0, &value, kSettingsKey)) field = static_cast<int32_t>(value);
}

void Write(const char* name, uint32_t value) {
    WriteNumberSetting(name, value, kSettingsKey);
}

void WriteSigned(const char* name, const Relaxed<int32_t>& field) {
    Write(name, static_cast<uint32_t>(field.Load()));
}

void WriteFlag(const char* name, bool flag) {
    Write(name, flag ? 1 : 0);
}

}  // namespace

void LoadSettings(StoredSettings& settings) {
    VizEffectParams& effects = settings.UserEffects;
    ReadSwitch("VizBlur", effects.Blur);
    ReadSigned("VizBlurAmount", effects.BlurAmount);
    ReadSwitch("VizZoom", effects.Zoom);
    ReadSigned("VizZoomX", effects.ZoomX);
    ReadSigned("VizZoomY", effects.ZoomY);
    ReadSwitch("VizFade", effects.Fade);
    ReadNumber("VizFadeColor", effects.FadeColor);
    ReadSigned("VizFadeTime", effects.FadeTime);
    ReadSwitch("VizSlide", effects.Slide);
    ReadSigned("VizSlideX", effects.SlideX);
    ReadSigned("VizSlideY", effects.SlideY);
    ReadSwitch("VizRotate", effects.Rotate);
    ReadSigned("VizRotateSpeed", effects.RotateSpeed);
    ReadNumber("VizSampleRate", settings.FrameRate);
    ReadFlag("VizWindowAlwaysOnTop", settings.AlwaysOnTop);
    ReadFlag("VizOn", settings.EffectsOn);
    ReadFlag("VizRandom", settings.Randomize);
    ReadNumber("VizRandomSeed", settings.RandomSeed);
    ReadFlag("VizUseDD", settings.UseDirectDraw);
}

void SaveSettings(const StoredSettings& settings) {
    const VizEffectParams& effects = settings.UserEffects;
    WriteFlag("VizBlur", effects.Blur);
    WriteSigned("VizBlurAmount", effects.BlurAmount);
    WriteFlag("VizZoom", effects.Zoom);
    WriteSigned("VizZoomX", effects.ZoomX);
    WriteSigned("VizZoomY", effects.ZoomY);
    WriteFlag("VizFade", effects.Fade);
    Write("VizFadeColor", effects.FadeColor);
    WriteSigned("VizFadeTime", effects.FadeTime);
    WriteFlag("VizSlide", effects.Slide);
    WriteSigned("VizSlideX", effects.SlideX);
    WriteSigned("VizSlideY", effects.SlideY);
    WriteFlag("VizRotate", effects.Rotate);
    WriteSigned("VizRotateSpeed", effects.RotateSpeed);
    Write("VizSampleRate", settings.FrameRate);
    WriteFlag("VizWindowAlwaysOnTop", settings.AlwaysOnTop);
    WriteFlag("VizOn", settings.EffectsOn);
    WriteFlag("VizRandom", settings.Randomize);
    Write("VizRandomSeed", settings.RandomSeed);
    WriteFlag("VizUseDD", settings.UseDirectDraw);
}

}  // namespace tdkviz
