// A run in real time: a window with the strip below the picture, the sound, and the keys. What the user changes is
// remembered.
#pragma once

#include <memory>
#include <string>

#include "player/base/Interrupt.h"
#include "player/host/PictureClicks.h"
#include "player/host/PluginWatch.h"
#include "player/list/Jukebox.h"
#include "player/session/Session.h"
#include "player/settings/SettingsKeeper.h"
#include "player/sound/AudioThread.h"
#include "player/window/PassingNote.h"
#include "player/window/PlayerMenu.h"
#include "player/window/PlayerWindow.h"
#include "player/window/ScreenAwake.h"
#include "player/window/SettingsButton.h"
#include "player/window/TransportStrip.h"
#include "player/window/ViewGrid.h"

namespace tdkplay {

class LiveRun final : private PlayerWindowEvents, private TransportEvents {
public:
    // The session plays the jukebox's first piece.
    LiveRun(const Options& options, Session& session, Jukebox& jukebox, Interrupt& interrupt, SettingsKeeper& keeper);
    ~LiveRun();

    // Comes back at the end of the list or of --duration, after the last snapshot, when the user closes the
    // window or interrupts. Throws PlayerError with kCannotWrite or kUsage.
    void Run();

private:
    void OnPauseKey() override;
    void OnSeekKey(double seconds) override;
    void OnPluginKey(int direction) override;
    void OnVolumeKey(int direction) override;
    void OnSettingsKey() override;
    void OnOffsetKey(int milliseconds) override;
    void OnSize(PictureSize size, bool visible) override;
    void OnCloseRequest() override { done_ = true; }
    void OnTrackKey(int direction) override;
    void OnStartKey() override;
    void OnMenu(POINT place) override;
    void OnFiles(const std::vector<std::string>& paths) override;
    void OnTick() override { Serve(); }
    void OnStripMoved() override;

    void OnPlayButton() override { OnPauseKey(); }
    void OnStepButton(int direction) override { OnTrackKey(direction); }
    void OnSeekBar(double seconds) override;
    void OnVolumeBar(int percent) override;
    void OnPointerInStrip() override { window_.OnPointer(); }

    void Wait();
    // All that doesn't come as a message.
    void Serve();
    void ServeMessages();
    void ServeNews();
    void FollowPlugins();
    DWORD UntilLook() const;
    void ServeMoments();
    double NextMoment() const;
    PictureSize StartingSize() const;
    void NoteSize(PictureSize size);
    void SetVolume(int percent);
    // Otherwise it captures: there is no list, no place in a piece, and no volume.
    bool PlaysPieces() const { return !session_.Sound().Captured(); }
    // What the title says of the sound.
    std::string Heard() const;
    std::string StateText();
    void ShowState();
    void ShowNote();
    // The strip alone, whose time runs.
    void ShowProgress();
    DWORD UntilProgress() const;
    void FollowPieces();
    void OnPieceChange();
    MenuState MenuNow() const;
    void Choose(const MenuChoice& choice, const std::vector<PluginInfo>& plugins);
    void SetOnTop(bool on);
    // In full screen, as long as there is something to see that moves.
    void KeepScreenAwake();

    const Options& options_;
    Session& session_;
    Jukebox& jukebox_;
    Interrupt& interrupt_;
    SettingsKeeper& keeper_;
    const Event news_;
    const bool hasStrip_;  // pictures of the window are pictures of the music alone
    bool stands_ = false;  // the window reports its size before the rest is there, and after
    PlayerWindow window_;
    const ComPtr<PictureClicks> clicks_ = MakeCom<PictureClicks>(window_.Handle(), PlayerWindow::kPictureClicked);
    const ComPtr<PictureClicks> rightClicks_ =
        MakeCom<PictureClicks>(window_.Handle(), PlayerWindow::kPictureRightClicked);
    std::unique_ptr<TransportStrip> strip_;
    std::unique_ptr<SettingsButton> button_;
    std::unique_ptr<ViewGrid> view_;
    const ComPtr<PluginWatch> pluginWatch_ = MakeCom<PluginWatch>(news_);
    int looksLeft_ = 1;   // at the plug-ins; the first one is for what came before the watch
    DWORD lookedAt_ = 0;  // by GetTickCount
    bool isHidden_ = false;
    bool isMenuOpen_ = false;
    bool pieceChanges_ = true;   // another piece is on its way to the listener, or may be
    DWORD progressShownAt_ = 0;  // by GetTickCount
    PassingNote note_;
    std::unique_ptr<AudioThread> audioThread_;
    ScreenAwake screen_;
    size_t nextSnapshot_ = 0;
    bool done_ = false;
};

}  // namespace tdkplay
