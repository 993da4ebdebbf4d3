#include <atomic>

#include "platform/include/winbase.h"

namespace {

constinit thread_local DWORD lastError = NO_ERROR;
std::atomic<UINT> errorMode{0};

}  // namespace

DWORD GetLastError() {
    return lastError;
}

void SetLastError(DWORD error) {
    lastError = error;
}

UINT SetErrorMode(UINT mode) {
    return errorMode.exchange(mode, std::memory_order_relaxed);
}
