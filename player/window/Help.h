// The help pages, which lie in the folder Help beside the player.
#pragma once

#include <string>

namespace tdkplay {

// About the settings dialog.
std::string HelpPage();

// Hands the page to the desktop's own viewer. False if there is none.
bool OpenHelpPage(const std::string& page);

}  // namespace tdkplay
