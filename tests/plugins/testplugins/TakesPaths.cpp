// A companion library that takes the table of folders, and tells it again.
#include <tdkviz/viz.h>

#include <cstring>

namespace {
char taken[4096];
}

TDKVIZ_EXPORT HRESULT SetDLLAccessPath(const char* block) {
    size_t size = 1;
    for (const char* entry = block; *entry; entry += std::strlen(entry) + 1) size += std::strlen(entry) + 1;
    if (size <= sizeof taken) std::memcpy(taken, block, size);
    return E_FAIL;  // is not looked at
}

TDKVIZ_EXPORT const char* TakenBlock() {
    return taken;
}
