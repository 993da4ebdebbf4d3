// The run's side of its controls: the pieces, the strip, the menu.
#include <algorithm>

#include "player/LiveRun.h"

namespace tdkplay {
namespace {

constexpr DWORD kProgressInterval = 250;  // milliseconds

}  // namespace

void LiveRun::OnTrackKey(int direction) {
    jukebox_.Step(direction, session_.Sound());
    OnPieceChange();
}

void LiveRun::OnStartKey() {
    session_.Sound().Seek(0.0);
    ShowProgress();
}

void LiveRun::OnSeekBar(double seconds) {
    session_.Sound().Seek(seconds);
    ShowProgress();
}

void LiveRun::OnVolumeBar(int percent) {
    SetVolume(percent);
}

void LiveRun::SetVolume(int percent) {
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
    if (!pieceChanges_) return;
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
    strip_->SetState({jukebox_.Heard().Title, view_->Plugin().Name, session_.Sound().IsPlaying(),
                      session_.Sound().Volume(), place.Position, place.Length});
}

// Only a strip that is seen, and shows a time that runs, costs anything.
DWORD LiveRun::UntilProgress() const {
    if (!strip_ || !strip_->IsShown() || isHidden_ || !session_.Sound().IsPlaying()) return INFINITE;
    return kProgressInterval - std::min(GetTickCount() - progressShownAt_, kProgressInterval);
}

void LiveRun::OnMenu(POINT) {}

}  // namespace tdkplay
