// Texts of resources and templates are UTF-16; the layer's own are UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tdkp {

// Halves of pairs that stand alone become U+FFFD.
std::string TextFromUtf16(std::u16string_view text);

}  // namespace tdkp
