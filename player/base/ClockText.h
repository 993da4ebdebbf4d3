// Times as people read them.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>

namespace tdkplay {

// "1:23", from an hour on "1:02:03".
inline std::string ClockText(double seconds) {
    const auto whole = static_cast<long>(std::max(seconds, 0.0));
    char text[32] = {};
    if (whole < 3600)
        std::snprintf(text, sizeof(text), "%ld:%02ld", whole / 60, whole % 60);
    else
        std::snprintf(text, sizeof(text), "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
    return text;
}

}  // namespace tdkplay
