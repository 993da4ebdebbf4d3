// CopyText: how texts reach the host's buffers.
#pragma once

#include <cstdint>
#include <cstring>

namespace tdkviz {

// Copies a text with its terminator if it fits into `size` bytes, else nothing. `out` may be null: nothing fits then.
inline bool CopyText(const char* text, char* out, uint32_t size) {
    const size_t needed = std::strlen(text) + 1;
    if (!out || needed > size) return false;
    std::memcpy(out, text, needed);
    return true;
}

}  // namespace tdkviz
