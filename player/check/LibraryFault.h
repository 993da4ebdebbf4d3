// Why a file doesn't load as a library.
#pragma once

#include <string>

namespace tdkplay::check {

// In words, as in "undefined symbol: sqrt"; for a file that has just failed to load. Tries to load it once more.
std::string WhyItDoesNotLoad(const std::string& path);

}  // namespace tdkplay::check
