// Texts in JSON.
#pragma once

#include <string>

namespace tdkplay {

// Quoted, with what JSON doesn't take as it stands escaped.
std::string JsonText(const std::string& text);

}  // namespace tdkplay
