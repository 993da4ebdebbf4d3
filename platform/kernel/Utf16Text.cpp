#include "platform/kernel/Utf16Text.h"

namespace tdkp {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstHigh = 0xD800, kFirstLow = 0xDC00, kBehindLow = 0xE000;
constexpr char32_t kFirstBehindUnit = 0x10000;

bool IsHigh(char32_t unit) {
    return unit >= kFirstHigh && unit < kFirstLow;
}

bool IsLow(char32_t unit) {
    return unit >= kFirstLow && unit < kBehindLow;
}

void Append(std::string& out, char32_t character) {
    // How many bytes of six bits follow the first one, and what marks that number in it.
    const int following = character < 0x80 ? 0 : character < 0x800 ? 1 : character < kFirstBehindUnit ? 2 : 3;
    constexpr unsigned kMarks[] = {0x00, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kMarks[following] | character >> (6 * following));
    for (int i = following - 1; i >= 0; --i) out += static_cast<char>(0x80 | (character >> (6 * i) & 0x3F));
}

}  // namespace

std::string TextFromUtf16(std::u16string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (IsHigh(unit) && i + 1 < text.size() && IsLow(text[i + 1])) {
            Append(out, kFirstBehindUnit + ((unit - kFirstHigh) << 10) + (text[++i] - kFirstLow));
        } else {
            Append(out, IsHigh(unit) || IsLow(unit) ? kReplacement : unit);
        }
    }
    return out;
}

}  // namespace tdkp
