#include "platform/ddraw/CallSwitches.h"

#include <unknwn.h>

#include <atomic>
#include <utility>

#include <tdkplatform.h>

#include "platform/kernel/Dispatcher.h"

namespace tdkp {
namespace {

constinit LayerMutex callLock;
uint32_t calls = 0;    // guarded by callLock, as the two below
uint32_t failing = 0;  // the number of the call that fails, or 0
HRESULT failure = S_OK;
std::atomic<uint32_t> losses{0};
std::atomic<uint32_t> padding{0};

}  // namespace

HRESULT CountCall() {
    const LayerGuard guard(callLock);
    return ++calls == failing ? failure : S_OK;
}

uint32_t LossesSoFar() {
    return losses.load(std::memory_order_relaxed);
}

uint32_t RowPadding() {
    return padding.load(std::memory_order_relaxed);
}

}  // namespace tdkp

TDKP_API DWORD TdkpFailDirectDraw(DWORD call, HRESULT result) {
    const tdkp::LayerGuard guard(tdkp::callLock);
    tdkp::failing = call;
    tdkp::failure = result;
    return std::exchange(tdkp::calls, 0u);
}

TDKP_API void TdkpLoseDirectDrawSurfaces() {
    tdkp::losses.fetch_add(1, std::memory_order_relaxed);
}

TDKP_API void TdkpPadDirectDrawRows(DWORD bytes) {
    tdkp::padding.store(bytes, std::memory_order_relaxed);
}
