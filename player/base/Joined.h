// Texts in a row, with something between them.
#pragma once

#include <string>
#include <vector>

namespace tdkplay {

// All of `texts`; `between` stands behind each but the last one.
inline std::string Joined(const std::vector<std::string>& texts, const std::string& between) {
    std::string all;
    for (const std::string& text : texts) all += (&text == &texts.front() ? "" : between) + text;
    return all;
}

}  // namespace tdkplay
