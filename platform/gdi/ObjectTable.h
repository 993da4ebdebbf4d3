// The handles of the drawing room, shared by all threads. A handle is a 32-bit number above 0xFFFF whose upper
// half changes with each use of a slot, so that an old handle isn't taken for a new one.
#pragma once

#include <windef.h>

#include <memory>
#include <vector>

#include "platform/gdi/GdiObject.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class ObjectTable {
public:
    static ObjectTable& Instance();

    // Null if there is no room left.
    HGDIOBJ Add(std::shared_ptr<GdiObject> object);
    // Null if the handle is none of this table's.
    std::shared_ptr<GdiObject> Find(HGDIOBJ handle);
    template <typename Object>
    std::shared_ptr<Object> Find(HGDIOBJ handle) {
        std::shared_ptr<GdiObject> object = Find(handle);
        if (!object || object->kind != Object::kKind) return nullptr;
        return std::static_pointer_cast<Object>(std::move(object));
    }
    // Takes the handle out of use and gives what it stood for; null if it is unknown, of a stock object, or
    // `mayRemove` (run under the table's lock) says no.
    std::shared_ptr<GdiObject> Remove(HGDIOBJ handle, bool (*mayRemove)(GdiObject& object));

private:
    struct Slot {
        std::shared_ptr<GdiObject> object;
        uint32_t uses = 0;
    };
    Slot* SlotOf(HGDIOBJ handle);

    LayerMutex mutex_;
    std::vector<Slot> slots_;          // guarded by mutex_
    std::vector<uint32_t> freeSlots_;  // guarded by mutex_
};

// A device context in use by one call of the program. A thread that is terminated comes out of the call first,
// so that it leaves no lock and no half-made memory behind.
class ContextRef {
public:
    explicit ContextRef(HDC dc) : context_(ObjectTable::Instance().Find<DeviceContext>(dc)) {}

    explicit operator bool() const { return context_ != nullptr; }
    DeviceContext& operator*() const { return *context_; }
    DeviceContext* operator->() const { return context_.get(); }

private:
    const TerminationDeferral deferral_;  // first, so that it ends last
    const std::shared_ptr<DeviceContext> context_;
};

// The device context behind a handle; false as a condition if there is none.
inline ContextRef FindContext(HDC dc) {
    return ContextRef(dc);
}

}  // namespace tdkp
