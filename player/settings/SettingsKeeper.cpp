#include "player/settings/SettingsKeeper.h"

#include <algorithm>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr DWORD kRest = 500;  // milliseconds

}  // namespace

SettingsKeeper::SettingsKeeper() {
    try {
        settings_ = stored_ = PlayerSettings::Load();
    } catch (const PlayerError& error) {
        isUsable_ = false;
        Warn(error);
    }
}

SettingsKeeper::~SettingsKeeper() {
    Store();
}

void SettingsKeeper::NoteChange() {
    isChanged_ = true;
    changedAt_ = GetTickCount();
}

DWORD SettingsKeeper::UntilStoring() const {
    if (!isChanged_) return INFINITE;
    return kRest - std::min(GetTickCount() - changedAt_, kRest);
}

void SettingsKeeper::StoreWhatHasRested() {
    if (UntilStoring() == 0) Store();
}

void SettingsKeeper::Store() {
    if (!isChanged_) return;
    isChanged_ = false;
    if (!isUsable_) return;
    try {
        settings_.StoreChanges(stored_);
        stored_ = settings_;
    } catch (const PlayerError& error) {
        isUsable_ = false;
        Warn(error);
    }
}

}  // namespace tdkplay
