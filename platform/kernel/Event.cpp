#include <memory>

#include "platform/include/winbase.h"
#include "platform/kernel/HandleTable.h"

namespace tdkp {
namespace {

class Event : public WaitableObject {
public:
    Event(bool manualReset, bool signalled) : manualReset_(manualReset), signalled_(signalled) {}

    bool IsSignalled() const override { return signalled_; }
    void Consume() override { signalled_ = signalled_ && manualReset_; }
    void Signal(bool signalled) { signalled_ = signalled; }

private:
    const bool manualReset_;
    bool signalled_;
};

BOOL SignalEvent(HANDLE handle, bool signalled) {
    DispatcherGuard guard(DispatcherLock());
    const auto event = FindObjectOf<Event>(guard, handle);
    if (event == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    event->Signal(signalled);
    if (signalled) {
        WakeWaiters(guard);
    }
    return TRUE;
}

}  // namespace
}  // namespace tdkp

HANDLE CreateEventA(LPSECURITY_ATTRIBUTES, BOOL manualReset, BOOL initialState, LPCSTR name) {
    if (name != nullptr) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    const HANDLE handle = tdkp::OpenHandle(std::make_shared<tdkp::Event>(manualReset != FALSE, initialState != FALSE));
    SetLastError(handle != nullptr ? NO_ERROR : ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}

BOOL SetEvent(HANDLE event) {
    return tdkp::SignalEvent(event, true);
}

BOOL ResetEvent(HANDLE event) {
    return tdkp::SignalEvent(event, false);
}
