// The run's side of its controls: the pieces, the strip, the menu.
#include <algorithm>

#include "player/LiveRun.h"

namespace tdkplay {
namespace {

constexpr DWORD kProgressInterval = 250;  // milliseconds
constexpr UINT kMenuInterval = 100;       // milliseconds, between looks at the music while a menu is open

}  // namespace

void LiveRun::OnTrackKey(int direction) {
    if (!PlaysPieces()) return;
    jukebox_.Step(direction, session_.Sound());
    OnPieceChange();
}

// They play at once, whatever played before.
void LiveRun::OnFiles(const std::vector<std::string>& paths) {
    if (!PlaysPieces() || !jukebox_.Replace(paths, session_.Sound())) return;
    session_.Sound().Play();
    OnPieceChange();
}

void LiveRun::OnStartKey() {
    OnSeekBar(0.0);
}

void LiveRun::OnSeekBar(double seconds) {
    if (!PlaysPieces()) return;
    session_.Sound().Seek(seconds);
    ShowProgress();
}

void LiveRun::OnVolumeBar(int percent) {
    SetVolume(percent);
}

void LiveRun::SetVolume(int percent) {
    if (!PlaysPieces()) return;
    session_.Sound().SetVolume(percent);
    keeper_.Note(&PlayerSettings::Volume, std::optional(session_.Sound().Volume()));
    ShowState();
}

void LiveRun::OnStripMoved() {
    if (!strip_) return;
    strip_->Place(window_.StripPlace());
    ShowProgress();
}

void LiveRun::FollowPieces() {
    if (!pieceChanges_ || !PlaysPieces()) return;
    if (jukebox_.Follow(session_.Sound())) OnPieceChange();
    pieceChanges_ = session_.Sound().Pump().Where().IsLeaving();
}

void LiveRun::OnPieceChange() {
    pieceChanges_ = true;
    session_.Component().AnnounceTrack();
    ShowState();
}

void LiveRun::ShowProgress() {
    progressShownAt_ = GetTickCount();
    if (!strip_ || !strip_->IsShown()) return;
    const HeardPlace place = session_.Sound().Pump().Where();
    strip_->SetState({Heard(), view_->Plugin().Name, session_.Sound().IsPlaying(), session_.Sound().Volume(),
                      place.Position, place.Length});
}

// Only a strip that is seen, and shows a time that runs, costs anything.
DWORD LiveRun::UntilProgress() const {
    if (!strip_ || !strip_->IsShown() || isHidden_ || !session_.Sound().IsPlaying() || session_.Sound().IsResting())
        return INFINITE;
    return kProgressInterval - std::min(GetTickCount() - progressShownAt_, kProgressInterval);
}

// The menu has a message loop of its own, in which the music goes on by the timer. A run for pictures has no menu: its
// errors could not get through that loop.
void LiveRun::OnMenu(POINT place) {
    if (!strip_ || isMenuOpen_) return;
    isMenuOpen_ = true;
    view_->TurnToMouse();
    const std::vector<PluginInfo> plugins = view_->Plugins();
    SetTimer(window_.Handle(), PlayerWindow::kTickTimer, kMenuInterval, nullptr);
    const MenuChoice choice = ShowPlayerMenu(window_.Handle(), place, MenuNow());
    KillTimer(window_.Handle(), PlayerWindow::kTickTimer);
    isMenuOpen_ = false;
    if (!done_) Choose(choice, plugins);
}

MenuState LiveRun::MenuNow() const {
    MenuState state;
    for (const PluginInfo& plugin : view_->Plugins()) {
        if (plugin.Path == view_->Plugin().Path) state.Shown = state.Plugins.size();
        state.Plugins.push_back(plugin.Name);
    }
    const PictureSettings picture = session_.Component().Picture();
    state.Effects = picture.Effects.value_or(false);
    state.Randomize = picture.Randomize.value_or(false);
    state.FrameRate = picture.FrameRate.value_or(0);
    state.IsFullScreen = window_.IsFullScreen();
    state.IsOnTop = window_.IsOnTop();
    return state;
}

void LiveRun::Choose(const MenuChoice& choice, const std::vector<PluginInfo>& plugins) {
    AddOn& addOn = session_.Component();
    switch (choice.What) {
        case MenuChoice::Kind::kNothing:
            return;
        case MenuChoice::Kind::kPlugin:
            view_->ChoosePlugin(plugins[choice.Number].Path);
            return ShowState();
        case MenuChoice::Kind::kEffects:
            return addOn.Change({{}, !addOn.Picture().Effects.value_or(false), {}});
        case MenuChoice::Kind::kRandomize:
            return addOn.Change({{}, {}, !addOn.Picture().Randomize.value_or(false)});
        case MenuChoice::Kind::kFrameRate:
            return addOn.Change({static_cast<uint32_t>(choice.Number), {}, {}});
        case MenuChoice::Kind::kSettings:
            return OnSettingsKey();
        case MenuChoice::Kind::kFullScreen:
            return window_.ToggleFullScreen();
        case MenuChoice::Kind::kOnTop:
            return SetOnTop(!window_.IsOnTop());
        case MenuChoice::Kind::kNextPiece:
            return OnTrackKey(1);
        case MenuChoice::Kind::kPreviousPiece:
            return OnTrackKey(-1);
        case MenuChoice::Kind::kQuit:
            return OnCloseRequest();
    }
}

void LiveRun::KeepScreenAwake() {
    screen_.Keep(window_.IsFullScreen() && !isHidden_ && session_.Sound().IsPlaying());
}

void LiveRun::SetOnTop(bool on) {
    window_.SetOnTop(on);
    keeper_.Note(&PlayerSettings::OnTop, std::optional(on));
}

}  // namespace tdkplay
