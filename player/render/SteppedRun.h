// A run without display and sound on the stepped clock: as fast as the machine can, the same pictures
// each time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/base/Interrupt.h"
#include "player/session/Session.h"
#include "player/window/PlayerWindow.h"
#include "player/window/ViewGrid.h"

namespace tdkplay {

class SteppedRun {
public:
    // Puts the memory display and the stepped clock in place, and the seed into the registry, which is then the run's
    // own. Before anything else of the system is used.
    static void Prepare(const Options& options);

    SteppedRun(const Options& options, Session& session, const Interrupt& interrupt);
    ~SteppedRun();

    // A window of its own for these plug-ins side by side, and the pictures to take of it. Gives the window.
    HWND AddViews(const std::vector<size_t>& plugins, const std::vector<SnapshotRequest>& snapshots = {});
    // Plays from the beginning to the last picture. Throws PlayerError with kCannotWrite or kUsage.
    void Run();

    // The steps that Run is made of. Play comes first, and once; AdvanceTo goes to this time since the beginning, in
    // milliseconds, and stops early at an interrupt.
    void Play() { session_.Sound().Play(); }
    void AdvanceTo(uint64_t time);
    // Fills the device and gives the milliseconds until it has room again.
    uint32_t DeliverAhead();

private:
    struct Shown {
        Shown(const Options& options, Session& session, const std::vector<size_t>& plugins)
            : Window(options.SizeOrUsual(), nullptr),
              Pictures(session.Manager(), Window.Handle(), options.SizeOrUsual(), session.Plugins(), plugins) {}
        PlayerWindow Window;
        ViewGrid Pictures;
    };
    struct Moment {
        uint64_t At;  // milliseconds
        std::string Path;
        HWND Window;
    };

    void Settle();

    const Options& options_;
    Session& session_;
    const Interrupt& interrupt_;
    std::vector<std::unique_ptr<Shown>> shown_;
    std::vector<Moment> moments_;
    uint64_t now_ = 0;  // milliseconds since the piece began
};

}  // namespace tdkplay
