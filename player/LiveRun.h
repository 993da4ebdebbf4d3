// A run in real time: a window, the sound, and the keys.
#pragma once

#include <memory>
#include <string>

#include "player/AudioThread.h"
#include "player/Interrupt.h"
#include "player/PlayerWindow.h"
#include "player/Session.h"
#include "player/View.h"

namespace tdkplay {

class LiveRun final : private PlayerWindowEvents {
public:
    LiveRun(const Options& options, Session& session, Interrupt& interrupt);
    ~LiveRun();

    // Comes back at the end of the piece or of --duration, after the last snapshot, when the user closes the
    // window or interrupts. Throws PlayerError with kCannotWrite or kUsage.
    void Run();

private:
    void OnPauseKey() override;
    void OnSeekKey(double seconds) override;
    void OnPluginKey(int direction) override;
    void OnSize(int width, int height, bool visible) override;
    void OnCloseRequest() override { done_ = true; }

    void Wait();
    void ServeMessages();
    void ServeNews();
    void ServeMoments();
    double NextMoment() const;
    void ShowTitle();

    const Options& options_;
    Session& session_;
    Interrupt& interrupt_;
    const Event news_;
    PlayerWindow window_;
    std::unique_ptr<View> view_;  // none yet while the window comes up
    bool isHidden_ = false;
    std::unique_ptr<AudioThread> audioThread_;
    size_t nextSnapshot_ = 0;
    bool done_ = false;
};

}  // namespace tdkplay
