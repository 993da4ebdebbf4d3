#include "player/settings/SettingNames.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "player/settings/PlayerSettings.h"

namespace tdkplay {
namespace {

std::string Count(uint32_t number) {
    return std::to_string(number);
}

std::string Signed(uint32_t number) {
    return std::to_string(static_cast<int32_t>(number));
}

// Some flags take any number but 0 as on, others only a 1.
std::string Switch(uint32_t number) {
    return number != 0 ? "on" : "off";
}

std::string Flag(uint32_t number) {
    return number == 1 ? "on" : "off";
}

std::string Colour(uint32_t number) {
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), "0x%06X", number);
    return text.data();
}

constexpr char kOfDistance[] = "/256 of the distance from the centre in each frame";

constexpr SettingName kPlayerNames[] = {
    {kSizeValue, "Size of the picture", nullptr, " pixels"},
    {kVolumeValue, "Volume", Count, " %"},
    {kPluginValue, "Plug-in", nullptr, ""},
    {kDeviceValue, "Sound device", nullptr, ""},
    {kOnTopValue, "Window stays above others", Switch, ""},
    {kOffsetValues, "Pictures later than sound", Signed, " ms"},
};

constexpr SettingName kAddOnNames[] = {
    {"VizOn", "Effects", Flag, ""},
    {"VizRandom", "Effects change by themselves", Flag, ""},
    {"VizRandomSeed", "Place in their sequence", Count, " frames"},
    {"VizSampleRate", "Frame rate", Count, " frames a second"},
    {"VizFade", "Fade", Switch, ""},
    {"VizFadeTime", "Fade, weight of its colour", Signed, "/256 in each frame"},
    {"VizFadeColor", "Fade, colour", Colour, " (red, green, blue)"},
    {"VizRotate", "Rotate", Switch, ""},
    {"VizRotateSpeed", "Rotate, speed", Signed, kOfDistance},
    {"VizZoom", "Zoom", Switch, ""},
    {"VizZoomX", "Zoom, across", Signed, kOfDistance},
    {"VizZoomY", "Zoom, up and down", Signed, kOfDistance},
    {"VizSlide", "Slide", Switch, ""},
    {"VizSlideX", "Slide, across", Signed, " pixels in each frame"},
    {"VizSlideY", "Slide, up and down", Signed, " pixels in each frame"},
    {"VizBlur", "Blur", Switch, ""},
    {"VizBlurAmount", "Blur, kind", Signed, " of 10"},
    {"VizUseDD", "DirectDraw for display", Flag, ""},
    {"VizWindowAlwaysOnTop", "Window always on top", Flag, ""},
};

}  // namespace

std::span<const SettingName> PlayerSettingNames() {
    return kPlayerNames;
}

std::span<const SettingName> AddOnSettingNames() {
    return kAddOnNames;
}

bool IsNameOf(const SettingName& setting, const StoredValue& value) {
    const std::string_view name = setting.Value;
    return name.ends_with(':') ? value.Name.starts_with(name) : value.Name == name;
}

std::string Readable(const SettingName& setting, const StoredValue& value) {
    std::string text;
    if (const auto number = value.Number(); number && setting.Read)
        text = setting.Read(*number);
    else if (const auto words = value.Text(); words && !setting.Read)
        text = words->empty() ? "(none)" : *words;
    else
        return Readable(value) + " (not of the right type)";
    return text + setting.Unit;
}

std::string Readable(const StoredValue& value) {
    if (const auto number = value.Number()) return std::to_string(*number);
    if (const auto text = value.Text()) return "\"" + *text + "\"";
    return std::to_string(value.Bytes.size()) + " bytes of type " + std::to_string(value.Type);
}

}  // namespace tdkplay
