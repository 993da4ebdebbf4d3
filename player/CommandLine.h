// The command line, whose options every run of the player follows.
#pragma once

#include <optional>

#include "player/session/Options.h"

namespace tdkplay {

// For --help and --version prints the text and gives nothing. Throws PlayerError with kUsage.
std::optional<Options> ParseCommandLine(int argc, const char* const* argv);

}  // namespace tdkplay
