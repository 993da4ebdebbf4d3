// How DrawTextA cuts a text into lines.
#pragma once

#include <windef.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/FontFace.h"

namespace tdkp {

struct TextLine {
    static constexpr size_t kNone = static_cast<size_t>(-1);

    std::string text;           // without prefix characters
    size_t underlined = kNone;  // the byte at which the underlined character begins
    int width = 0;
};

// Bytes of the character at `at`.
size_t CharacterLength(std::string_view text, size_t at);

// `format` is a sum of DT_ flags; lines are broken or cut to `width` pixels where the flags ask for it.
std::vector<TextLine> LayOutText(const FontFace& face, std::string_view text, UINT format, int width);

}  // namespace tdkp
