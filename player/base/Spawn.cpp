#include "player/base/Spawn.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace tdkplay {

Spawn::Spawn() {
    sigset_t none;
    sigset_t usual;
    sigemptyset(&none);
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &usual);
    posix_spawn_file_actions_init(&files_);
}

Spawn::~Spawn() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
}

pid_t Spawn::Run(const char* program, std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawnattr_setflags(&attributes_, static_cast<short>(flags_));
    pid_t child = 0;
    errno = posix_spawnp(&child, program, &files_, &attributes_, pointers.data(), environ);
    return errno == 0 ? child : 0;
}

}  // namespace tdkplay
