#include "player/base/JsonText.h"

#include <array>
#include <cstdio>

namespace tdkplay {

std::string JsonText(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        std::array<char, 8> code = {};
        if (static_cast<unsigned char>(c) < 0x20) {
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(c));
            quoted += code.data();
            continue;
        }
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

}  // namespace tdkplay
