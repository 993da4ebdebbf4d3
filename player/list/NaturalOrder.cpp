#include "player/list/NaturalOrder.h"

namespace tdkplay {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Bytes of UTF-8 beyond ASCII stay as they are, which keeps the order of the code points.
int Folded(char c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : static_cast<unsigned char>(c);
}

// A run of digits without its leading zeros; `at` goes behind it. So long numbers compare, too.
std::string TakeNumber(const std::string& text, size_t& at) {
    size_t end = at;
    while (end < text.size() && IsDigit(text[end])) ++end;
    while (at + 1 < end && text[at] == '0') ++at;
    const std::string digits = text.substr(at, end - at);
    at = end;
    return digits;
}

int Compare(const std::string& a, const std::string& b) {
    size_t i = 0;
    size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (IsDigit(a[i]) && IsDigit(b[j])) {
            const std::string first = TakeNumber(a, i);
            const std::string second = TakeNumber(b, j);
            if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
            if (const int order = first.compare(second)) return order;
        } else {
            const int difference = Folded(a[i++]) - Folded(b[j++]);
            if (difference != 0) return difference;
        }
    }
    if (i == a.size() && j == b.size()) return a.compare(b);
    return i == a.size() ? -1 : 1;
}

}  // namespace

bool ComesBefore(const std::string& a, const std::string& b) {
    return Compare(a, b) < 0;
}

}  // namespace tdkplay
