// The plug-ins of a run: those beside the player, the user's own, and files that the command line names.
//
// The user's own lie in $XDG_DATA_HOME/tdkviz/Visualizations, where XDG_DATA_HOME is ~/.local/share unless it is set to
// an absolute path. Nobody makes that folder but the user.
//
// The add-on lists one folder, "Visualizations" beside the program, with its subfolders. If there is more to list, the
// program counts as lying in a folder of this run, whose "Visualizations" holds links to the places that there are.
// The add-on watches what the links lead to, so plug-ins come and go in all of them. Nothing of this stays behind, and
// two players of different places don't meet.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/base/ScratchFolder.h"

namespace tdkplay {

class PluginFolders {
public:
    // To be made before the add-on is loaded, and to stay until it has gone. `plugins` is what --viz says; text with a
    // slash that leads to a file counts as a place. If the run's folder can't be made, a warning says so, and there are
    // only the plug-ins beside the player.
    explicit PluginFolders(const std::vector<std::string>& plugins);
    ~PluginFolders();
    PluginFolders(const PluginFolders&) = delete;
    PluginFolders& operator=(const PluginFolders&) = delete;

private:
    std::optional<ScratchFolder> program_;
};

}  // namespace tdkplay
