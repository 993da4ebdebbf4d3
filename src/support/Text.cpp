#include "src/support/Text.h"

#include <windows.h>

#include <mbctype.h>

#include <cstring>

namespace tdkviz {
namespace {

bool HasDoubleByteCodePage() {
    static const bool answer = GetSystemMetrics(SM_DBCSENABLED) != 0;
    return answer;
}

// Goes by whole characters, so that a trail byte never matches.
template <bool lastMatch>
const char* WalkFor(const char* text, char c) {
    const char* found = nullptr;
    for (const char* p = text;; p = NextChar(p)) {
        const bool isSingle = !IsLeadByte(static_cast<uint8_t>(*p));
        if (isSingle && *p == c) {
            found = p;
            if (!lastMatch) return found;
        }
        if (*p == 0) return found;
    }
}

}  // namespace

const char* NextChar(const char* p) {
    if (!p) return nullptr;
    if (!HasDoubleByteCodePage()) return p + 1;
    const char* next = CharNextA(p);
    return next != p ? next : p + 1;
}

const char* FindChar(const char* text, char c) {
    if (!text) return nullptr;
    return HasDoubleByteCodePage() ? WalkFor<false>(text, c) : std::strchr(text, c);
}

const char* FindLastChar(const char* text, char c) {
    if (!text) return nullptr;
    return HasDoubleByteCodePage() ? WalkFor<true>(text, c) : std::strrchr(text, c);
}

bool IsLeadByte(uint8_t b) {
    return HasDoubleByteCodePage() && _ismbblead(b) != 0;
}

}  // namespace tdkviz
