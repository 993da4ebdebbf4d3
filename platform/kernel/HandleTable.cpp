#include "platform/kernel/HandleTable.h"

#include <deque>
#include <utility>
#include <vector>

#include "platform/include/winbase.h"
#include "platform/kernel/Counts.h"
#include "platform/kernel/Immortal.h"

namespace tdkp {
namespace {

// A handle is a multiple of 4 as on Windows: the place in the table plus 1, shifted by 2, below; above it how
// often that place was used before, so that a stale handle is told from its successor. It fits 31 bits.
constexpr uint32_t kPlaceShift = 2;
constexpr uint32_t kGenerationShift = 20;
constexpr uint32_t kPlaceLimit = (1u << (kGenerationShift - kPlaceShift)) - 1;
constexpr uint32_t kGenerationMask = 0x7FF;

struct Slot {
    std::shared_ptr<KernelObject> Object;
    uint32_t Generation = 0;
};

// Guarded by the dispatcher's lock.
struct HandleTable {
    std::vector<Slot> Slots;
    std::deque<uint32_t> Free;
};

HandleTable& Table() {
    return Immortal<HandleTable>();
}

HANDLE MakeHandle(uint32_t place, uint32_t generation) {
    const uint32_t value = (generation << kGenerationShift) | ((place + 1) << kPlaceShift);
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(value));
}

Slot* FindSlot(HANDLE handle, uint32_t& place) {
    const auto value = reinterpret_cast<uintptr_t>(handle);
    place = static_cast<uint32_t>((value >> kPlaceShift) & kPlaceLimit) - 1;
    if (place >= Table().Slots.size()) {
        return nullptr;
    }
    Slot& slot = Table().Slots[place];
    return slot.Object != nullptr && handle == MakeHandle(place, slot.Generation) ? &slot : nullptr;
}

}  // namespace

HANDLE OpenHandle(std::shared_ptr<KernelObject> object) {
    DispatcherGuard guard(DispatcherLock());
    HandleTable& table = Table();
    uint32_t place = 0;
    if (!table.Free.empty()) {
        place = table.Free.front();
        table.Free.pop_front();
    } else if (table.Slots.size() < kPlaceLimit) {
        place = static_cast<uint32_t>(table.Slots.size());
        table.Slots.emplace_back();
    } else {
        return nullptr;
    }
    Slot& slot = table.Slots[place];
    slot.Object = std::move(object);
    CountHandle(+1);
    return MakeHandle(place, slot.Generation);
}

bool ReleaseHandle(HANDLE handle) {
    std::shared_ptr<KernelObject> last;
    DispatcherGuard guard(DispatcherLock());
    uint32_t place = 0;
    Slot* slot = FindSlot(handle, place);
    if (slot == nullptr) {
        return false;
    }
    last = std::move(slot->Object);
    slot->Object = nullptr;
    slot->Generation = (slot->Generation + 1) & kGenerationMask;
    Table().Free.push_back(place);
    CountHandle(-1);
    return true;
}

std::shared_ptr<KernelObject> FindObject(DispatcherGuard&, HANDLE handle) {
    uint32_t place = 0;
    const Slot* slot = FindSlot(handle, place);
    return slot != nullptr ? slot->Object : nullptr;
}

}  // namespace tdkp

BOOL CloseHandle(HANDLE object) {
    if (!tdkp::ReleaseHandle(object)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}
