#include "player/window/Help.h"

#include <spawn.h>
#include <sys/wait.h>

#include "player/base/PlainSignals.h"
#include "player/host/AddOn.h"

namespace tdkplay {
namespace {

// Leaves the viewer to itself, so that nobody has to wait for its end.
constexpr char kScript[] = "command -v xdg-open >/dev/null && { xdg-open \"$1\" >/dev/null 2>&1 & }";

}  // namespace

std::string HelpPage() {
    return OwnFolder() + "/Help/settings.html";
}

bool OpenHelpPage(const std::string& page) {
    const PlainSignals signals;
    const char* const arguments[] = {"sh", "-c", kScript, "sh", page.c_str(), nullptr};
    pid_t child = 0;
    int status = -1;
    if (posix_spawn(&child, "/bin/sh", nullptr, signals.Attributes(), const_cast<char* const*>(arguments), environ) !=
        0)
        return false;
    return waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace tdkplay
