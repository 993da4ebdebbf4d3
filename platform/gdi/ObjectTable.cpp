#include "platform/gdi/ObjectTable.h"

#include <utility>

#include "platform/kernel/Counts.h"
#include "platform/kernel/Immortal.h"

namespace tdkp {
namespace {

constexpr uint32_t kSlotBits = 16;
constexpr uint32_t kMaxSlots = 1u << kSlotBits;
constexpr uint32_t kUseMask = 0x0FFF;
constexpr uint32_t kMark = 0x1000;  // in the upper half of every handle

HGDIOBJ HandleOf(uint32_t slot, uint32_t uses) {
    const uint32_t value = ((kMark | (uses & kUseMask)) << kSlotBits) | slot;
    return reinterpret_cast<HGDIOBJ>(static_cast<uintptr_t>(value));
}

}  // namespace

ObjectTable& ObjectTable::Instance() {
    return Immortal<ObjectTable>();
}

HGDIOBJ ObjectTable::Add(std::shared_ptr<GdiObject> object) {
    const bool counted = !object->stock;
    HGDIOBJ handle;
    {
        LayerGuard guard(mutex_);
        if (freeSlots_.empty()) {
            if (slots_.size() == kMaxSlots) return nullptr;
            freeSlots_.push_back(static_cast<uint32_t>(slots_.size()));
            slots_.emplace_back();
        }
        const uint32_t slot = freeSlots_.back();
        freeSlots_.pop_back();
        slots_[slot].object = std::move(object);
        handle = HandleOf(slot, ++slots_[slot].uses);
    }
    if (counted) CountGdiObject(1);
    return handle;
}

ObjectTable::Slot* ObjectTable::SlotOf(HGDIOBJ handle) {
    const uintptr_t value = reinterpret_cast<uintptr_t>(handle);
    const uint32_t slot = static_cast<uint32_t>(value) & (kMaxSlots - 1);
    if (slot >= slots_.size() || !slots_[slot].object || HandleOf(slot, slots_[slot].uses) != handle) return nullptr;
    return &slots_[slot];
}

std::shared_ptr<GdiObject> ObjectTable::Find(HGDIOBJ handle) {
    LayerGuard guard(mutex_);
    const Slot* slot = SlotOf(handle);
    return slot != nullptr ? slot->object : nullptr;
}

std::shared_ptr<GdiObject> ObjectTable::Remove(HGDIOBJ handle, bool (*mayRemove)(GdiObject& object)) {
    std::shared_ptr<GdiObject> removed;
    {
        LayerGuard guard(mutex_);
        Slot* slot = SlotOf(handle);
        if (slot == nullptr || slot->object->stock || !mayRemove(*slot->object)) return nullptr;
        removed = std::move(slot->object);
        freeSlots_.push_back(static_cast<uint32_t>(slot - slots_.data()));
    }
    CountGdiObject(-1);
    return removed;
}

}  // namespace tdkp
