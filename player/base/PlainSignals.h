// How programs that the player starts begin: with the signals of an ordinary program. The player blocks and ignores
// some for its own purposes.
#pragma once

#include <spawn.h>

#include <csignal>

namespace tdkplay {

class PlainSignals {
public:
    // In a process group of its own, a child doesn't hear of Ctrl-C on the terminal.
    explicit PlainSignals(bool ownGroup = false) {
        sigset_t none;
        sigset_t usual;
        sigemptyset(&none);
        sigemptyset(&usual);
        sigaddset(&usual, SIGPIPE);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &usual);
        const int group = ownGroup ? POSIX_SPAWN_SETPGROUP : 0;
        posix_spawnattr_setflags(&attributes_,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | group));
    }
    ~PlainSignals() { posix_spawnattr_destroy(&attributes_); }
    PlainSignals(const PlainSignals&) = delete;
    PlainSignals& operator=(const PlainSignals&) = delete;
    const posix_spawnattr_t* Attributes() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

}  // namespace tdkplay
