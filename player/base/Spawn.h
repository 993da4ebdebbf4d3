// A program that the player starts. It begins with the signals of an ordinary program: the player blocks and ignores
// some for its own purposes.
#pragma once

#include <spawn.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace tdkplay {

// For one thread, one start.
class Spawn {
public:
    Spawn();
    ~Spawn();
    Spawn(const Spawn&) = delete;
    Spawn& operator=(const Spawn&) = delete;

    // In a process group of its own, the program doesn't hear of Ctrl-C on the terminal.
    void LeaveGroup() { flags_ |= POSIX_SPAWN_SETPGROUP; }
    // The program has this player's file `from` as its file `number`.
    void Give(int from, int number) { posix_spawn_file_actions_adddup2(&files_, from, number); }
    // The program has the file of this path, with the flags of open(), as its file `number`. One that is made is its
    // user's alone.
    void Open(int number, const char* path, int flags) {
        posix_spawn_file_actions_addopen(&files_, number, path, flags, 0600);
    }

    // `program` is a path, or looked for on the PATH; the first argument is the name that it is told. Gives the
    // process, which the caller waits for; 0 with errno set if it can't be started.
    pid_t Run(const char* program, std::vector<std::string> arguments);

private:
    int flags_ = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    posix_spawnattr_t attributes_;
    posix_spawn_file_actions_t files_;
};

}  // namespace tdkplay
