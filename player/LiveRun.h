// A run in real time: a window with the settings button, the sound, and the keys. What the user changes is remembered.
#pragma once

#include <memory>
#include <string>

#include "player/AudioThread.h"
#include "player/Interrupt.h"
#include "player/PassingNote.h"
#include "player/PlayerWindow.h"
#include "player/PluginWatch.h"
#include "player/Session.h"
#include "player/SettingsButton.h"
#include "player/SettingsKeeper.h"
#include "player/View.h"

namespace tdkplay {

class LiveRun final : private PlayerWindowEvents {
public:
    LiveRun(const Options& options, Session& session, Interrupt& interrupt, SettingsKeeper& keeper);
    ~LiveRun();

    // Comes back at the end of the piece or of --duration, after the last snapshot, when the user closes the
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

    void Wait();
    void ServeMessages();
    void ServeNews();
    void FollowPlugins();
    DWORD UntilLook() const;
    void ServeMoments();
    double NextMoment() const;
    PictureSize StartingSize() const;
    void NoteSize(PictureSize size);
    std::string Heard() const;
    void ShowState();

    const Options& options_;
    Session& session_;
    Interrupt& interrupt_;
    SettingsKeeper& keeper_;
    const Event news_;
    const bool hasStrip_;  // pictures of the window are pictures of the music alone
    bool stands_ = false;  // the window reports its size before the rest is there, and after
    PlayerWindow window_;
    std::unique_ptr<SettingsButton> button_;
    std::unique_ptr<View> view_;
    const ComPtr<PluginWatch> pluginWatch_ = MakeCom<PluginWatch>(news_);
    int looksLeft_ = 1;   // at the plug-ins; the first one is for what came before the watch
    DWORD lookedAt_ = 0;  // by GetTickCount
    bool isHidden_ = false;
    PassingNote note_;
    std::unique_ptr<AudioThread> audioThread_;
    size_t nextSnapshot_ = 0;
    bool done_ = false;
};

}  // namespace tdkplay
