// What the player itself remembers from one run to the next.
#pragma once

#include <optional>
#include <string>

#include "player/base/PictureSize.h"
#include "player/sound/DeviceOffsets.h"

namespace tdkplay {

// The key below HKEY_CURRENT_USER, and the values in it.
inline constexpr char kPlayerKey[] = "Software\\Corvane\\Tunedeck\\1.0\\Player";

inline constexpr char kSizeValue[] = "WindowSize";    // text, "640x480"
inline constexpr char kVolumeValue[] = "Volume";      // number, 0 to 100
inline constexpr char kPluginValue[] = "Plugin";      // text, the file's name
inline constexpr char kDeviceValue[] = "Device";      // text, as the sound server names it
inline constexpr char kOnTopValue[] = "AlwaysOnTop";  // number, 0 or 1
// With a device's name behind it: a number, milliseconds, which may be below 0.
inline constexpr char kOffsetValues[] = "Offset:";

struct PlayerSettings {
    std::optional<PictureSize> Size;
    std::optional<int> Volume;  // percent
    std::string Plugin;         // empty: none
    std::string Device;         // empty: the sound server's choice
    std::optional<bool> OnTop;  // the window stays above others
    DeviceOffsets Offsets;

    // What is stored; a value that makes no sense counts as missing. Throws PlayerError with kNoSettings.
    static PlayerSettings Load();
    // Stores what differs from `before`, so that two players at once don't undo each other's changes. Throws
    // PlayerError with kNoSettings.
    void StoreChanges(const PlayerSettings& before) const;
};

}  // namespace tdkplay
