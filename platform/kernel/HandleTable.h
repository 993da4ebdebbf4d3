// Handles and the objects behind them. An object lives as long as a handle to it, or a wait on it.
#pragma once

#include <memory>

#include "platform/include/windef.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class KernelObject {
public:
    KernelObject() = default;
    virtual ~KernelObject() = default;
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;
};

// What a thread can wait for. The first two operations are called under the dispatcher's lock.
class WaitableObject : public KernelObject {
public:
    virtual bool IsSignalled() const = 0;
    // A wait that this object satisfied takes its signal, where a signal serves one wait only.
    virtual void Consume() {}
    // Called by the thread whose wait it satisfied, without the lock.
    virtual void AfterWait() {}
};

// A new handle; null if there is no memory for it.
HANDLE OpenHandle(std::shared_ptr<KernelObject> object);

// False if there is no such handle. The object goes with its last owner, outside the lock.
bool ReleaseHandle(HANDLE handle);

std::shared_ptr<KernelObject> FindObject(DispatcherGuard& guard, HANDLE handle);

// Null if there is no such handle, or if it is one of another kind.
template <typename Object>
std::shared_ptr<Object> FindObjectOf(DispatcherGuard& guard, HANDLE handle) {
    return std::dynamic_pointer_cast<Object>(FindObject(guard, handle));
}

}  // namespace tdkp
