#include "player/window/Help.h"

#include <sys/wait.h>

#include "player/base/Spawn.h"
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
    int status = -1;
    const pid_t child = Spawn().Run("/bin/sh", {"sh", "-c", kScript, "sh", page});
    return child != 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace tdkplay
