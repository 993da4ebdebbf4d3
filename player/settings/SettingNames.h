// What people call the settings in the registry, and how their values read.
#pragma once

#include <span>
#include <string>

#include "player/base/SettingsKey.h"

namespace tdkplay {

struct SettingName {
    const char* Value;  // in the registry; with a colon at its end, how the names of several values begin
    const char* Name;
    std::string (*Read)(uint32_t number);  // null for a text
    const char* Unit;                      // as it follows the value
};

// In the order in which they are best read.
std::span<const SettingName> PlayerSettingNames();
std::span<const SettingName> AddOnSettingNames();

bool IsNameOf(const SettingName& setting, const StoredValue& value);

// The stored value with its unit; as it is stored if it isn't of the right type.
std::string Readable(const SettingName& setting, const StoredValue& value);
// A value that nobody has a name for.
std::string Readable(const StoredValue& value);

}  // namespace tdkplay
