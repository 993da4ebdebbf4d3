// The help pages, which lie in the folder Help beside the player.
#pragma once

#include <cstdint>
#include <string>

namespace tdkplay {

// The file for a topic of the add-on's.
std::string HelpPage(uint32_t topic);

// Hands the page to the desktop's own viewer. False if there is none.
bool OpenHelpPage(const std::string& page);

}  // namespace tdkplay
