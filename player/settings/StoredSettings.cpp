#include "player/settings/StoredSettings.h"

#include <algorithm>
#include <cstdio>

#include "player/settings/PlayerSettings.h"
#include "player/settings/SettingNames.h"

namespace tdkplay {
namespace {

// Below HKEY_CURRENT_USER.
constexpr char kPreferencesKey[] = "Software\\Corvane\\Tunedeck\\1.0\\Preferences";

constexpr SettingName kCacheNames[] = {
    {"Name", "Name", nullptr, ""},
    {"Creator", "Creator", nullptr, ""},
    {"RenderMode", "Draws",
     [](uint32_t mode) -> std::string { return mode == 1 ? "into the window itself" : "into frames"; }, ""},
};

void PrintHeading(const char* heading, const std::string& key) {
    std::printf("%s (HKEY_CURRENT_USER\\%s)\n", heading, key.c_str());
}

void PrintLine(const std::string& name, const std::string& registryName, const std::string& value) {
    std::printf("  %-30s %-22s %s\n", name.c_str(), registryName.c_str(), value.c_str());
}

bool IsIn(std::span<const SettingName> names, const StoredValue& value) {
    return std::any_of(names.begin(), names.end(), [&value](const SettingName& name) { return IsNameOf(name, value); });
}

// The values that have a name, in the names' order, then the others. Gives the number of lines.
int PrintValues(const char* heading, const char* path, std::span<const SettingName> names) {
    const std::vector<StoredValue> values = SettingsKey::OpenToRead(path).Values();
    if (values.empty()) return 0;
    PrintHeading(heading, path);
    for (const SettingName& name : names)
        for (const StoredValue& value : values)
            if (IsNameOf(name, value)) PrintLine(name.Name, value.Name, Readable(name, value));
    for (const StoredValue& value : values)
        if (!IsIn(names, value)) PrintLine("", value.Name, Readable(value));
    return static_cast<int>(values.size());
}

void PrintPlugin(const std::string& file) {
    const std::vector<StoredValue> values = SettingsKey::OpenToRead(kAddOnKey + ("\\" + file)).Values();
    std::printf("  %s%s\n", file.c_str(), values.empty() ? ": not described" : "");
    for (const SettingName& name : kCacheNames)
        for (const StoredValue& value : values)
            if (IsNameOf(name, value)) PrintLine(std::string("  ") + name.Name, name.Value, Readable(name, value));
}

int PrintPlugins() {
    const std::vector<std::string> files = SettingsKey::OpenToRead(kAddOnKey).SubKeys();
    if (files.empty()) return 0;
    PrintHeading("Known plug-ins", kAddOnKey);
    for (const std::string& file : files) PrintPlugin(file);
    return static_cast<int>(files.size());
}

// A registry that is empty and one that can't be used read alike; writing tells them apart. The key is one that every
// system has.
void RequireRegistry() {
    SettingsKey::OpenToWrite("Software");
}

std::string Counted(size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

void PrintStoredSettings() {
    int count = PrintValues("Player", kPlayerKey, PlayerSettingNames());
    count += PrintValues("Pictures", kAddOnKey, AddOnSettingNames());
    count += PrintPlugins();
    count += PrintValues("Preferences of plug-ins", kPreferencesKey, {});
    if (count != 0) return;
    RequireRegistry();
    std::printf("Nothing is stored.\n");
}

void ResetStoredSettings() {
    const size_t player = SettingsKey::OpenToRead(kPlayerKey).Values().size();
    const size_t pictures = SettingsKey::OpenToRead(kAddOnKey).Values().size();
    const size_t plugins = SettingsKey::OpenToRead(kAddOnKey).SubKeys().size();
    const size_t preferences = SettingsKey::OpenToRead(kPreferencesKey).Values().size();
    bool wasThere = false;
    for (const char* key : {kPlayerKey, kAddOnKey, kPreferencesKey}) wasThere = SettingsKey::Remove(key) || wasThere;
    if (!wasThere) {
        RequireRegistry();
        std::printf("Nothing was stored.\n");
        return;
    }
    std::printf("Cleared: %s of the player, %s of the pictures, %s, %s of plug-ins.\n",
                Counted(player, "setting").c_str(), Counted(pictures, "setting").c_str(),
                Counted(plugins, "known plug-in").c_str(), Counted(preferences, "preference").c_str());
}

}  // namespace tdkplay
