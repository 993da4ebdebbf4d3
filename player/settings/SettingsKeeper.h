// Keeps the player's settings for the next run: what the run changes is stored soon after, and at its end.
#pragma once

#include <windows.h>

#include "player/settings/PlayerSettings.h"

namespace tdkplay {

// For the host's thread. A registry that can't be used is told once, on the error output, and then left alone:
// the music plays all the same.
class SettingsKeeper {
public:
    SettingsKeeper();
    // Stores what hasn't been stored yet.
    ~SettingsKeeper();
    SettingsKeeper(const SettingsKeeper&) = delete;
    SettingsKeeper& operator=(const SettingsKeeper&) = delete;

    // As the run began, and as it stands.
    const PlayerSettings& Settings() const { return settings_; }
    template <typename T>
    void Note(T PlayerSettings::*setting, T value) {
        if (settings_.*setting == value) return;
        settings_.*setting = std::move(value);
        NoteChange();
    }

    // Changes come in bursts, as from a window that is being dragged larger: they are stored when they have rested
    // for a moment. Milliseconds until then; INFINITE if nothing waits.
    DWORD UntilStoring() const;
    void StoreWhatHasRested();
    void Store();

private:
    void NoteChange();

    PlayerSettings settings_;
    PlayerSettings stored_;
    bool isUsable_ = true;
    bool isChanged_ = false;
    DWORD changedAt_ = 0;  // by GetTickCount
};

}  // namespace tdkplay
