#include "player/settings/PlayerSettings.h"

#include "player/base/SettingsKey.h"
#include "player/sound/Gain.h"

namespace tdkplay {
namespace {

std::string TextOf(const SettingsKey& key, const char* name) {
    const std::optional<StoredValue> value = key.Find(name);
    return value ? value->Text().value_or("") : "";
}

DeviceOffsets OffsetsOf(const SettingsKey& key) {
    const std::string prefix = kOffsetValues;
    DeviceOffsets offsets;
    for (const StoredValue& value : key.Values())
        if (const auto number = value.Number(); number && value.Name.starts_with(prefix))
            offsets.Set(value.Name.substr(prefix.size()), static_cast<int>(*number));
    return offsets;
}

}  // namespace

PlayerSettings PlayerSettings::Load() {
    PlayerSettings settings;
    const SettingsKey key = SettingsKey::OpenToRead(kPlayerKey);
    settings.Size = PictureSize::FromText(TextOf(key, kSizeValue));
    if (settings.Size && !settings.Size->IsWithinBounds()) settings.Size.reset();
    const std::optional<StoredValue> volume = key.Find(kVolumeValue);
    const std::optional<uint32_t> percent = volume ? volume->Number() : std::nullopt;
    if (percent && *percent <= kFullVolume) settings.Volume = static_cast<int>(*percent);
    const std::optional<StoredValue> onTop = key.Find(kOnTopValue);
    if (const auto flag = onTop ? onTop->Number() : std::nullopt) settings.OnTop = *flag != 0;
    settings.Plugin = TextOf(key, kPluginValue);
    settings.Device = TextOf(key, kDeviceValue);
    settings.Offsets = OffsetsOf(key);
    return settings;
}

void PlayerSettings::StoreChanges(const PlayerSettings& before) const {
    SettingsKey key = SettingsKey::OpenToWrite(kPlayerKey);
    if (Size && Size != before.Size) key.SetText(kSizeValue, Size->Text());
    if (Volume && Volume != before.Volume) key.SetNumber(kVolumeValue, static_cast<uint32_t>(*Volume));
    if (OnTop && OnTop != before.OnTop) key.SetNumber(kOnTopValue, *OnTop ? 1 : 0);
    if (Plugin != before.Plugin) key.SetText(kPluginValue, Plugin);
    if (Device != before.Device) key.SetText(kDeviceValue, Device);
    for (const auto& [device, milliseconds] : Offsets.All())
        if (!device.empty() && milliseconds != before.Offsets.Of(device))
            key.SetNumber((kOffsetValues + device).c_str(), static_cast<uint32_t>(milliseconds));
}

}  // namespace tdkplay
