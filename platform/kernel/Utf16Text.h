// Texts of resources and templates are UTF-16; the layer's own are UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tdkp {

// In UTF-8: does the byte go on with the character in front of it?
constexpr bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Halves of pairs that stand alone become U+FFFD.
std::string TextFromUtf16(std::u16string_view text);

}  // namespace tdkp
