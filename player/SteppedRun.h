// A run without display and sound on the stepped clock: as fast as the machine can, the same pictures
// each time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/Interrupt.h"
#include "player/PlayerWindow.h"
#include "player/Session.h"
#include "player/View.h"

namespace tdkplay {

class SteppedRun {
public:
    // Puts the memory display and the stepped clock in place. Before anything else of the system is used.
    static void Prepare(const Options& options);

    SteppedRun(const Options& options, Session& session, const Interrupt& interrupt);
    ~SteppedRun();

    // A window of its own for this plug-in, and the pictures to take of it.
    void AddView(size_t plugin, const std::vector<SnapshotRequest>& snapshots);
    // Plays from the beginning to the last picture. Throws PlayerError with kCannotWrite or kUsage.
    void Run();

private:
    struct Shown {
        Shown(const Options& options, Session& session, size_t plugin)
            : Window(options.Width, options.Height, nullptr),
              Picture(session.Manager(), Window.Handle(), options.Width, options.Height, session.Plugins(), plugin) {}
        PlayerWindow Window;
        View Picture;
    };
    struct Moment {
        uint64_t At;  // milliseconds
        std::string Path;
        HWND Window;
    };

    void Settle();
    void AdvanceTo(uint64_t time);
    uint32_t DeliverAhead();

    const Options& options_;
    Session& session_;
    const Interrupt& interrupt_;
    std::vector<std::unique_ptr<Shown>> views_;
    std::vector<Moment> moments_;
    uint64_t now_ = 0;  // milliseconds since the piece began
};

}  // namespace tdkplay
