#include "player/check/SharedCalls.h"

#include <cstring>
#include <ctime>

namespace tdkplay::check {
namespace {

SharedCalls* ownCalls = nullptr;
thread_local int ownSlot = SharedCalls::kNoSlot;

}  // namespace

uint64_t MonotonicNow() {
    constexpr uint64_t kNanoseconds = 1'000'000'000;
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * kNanoseconds + static_cast<uint64_t>(now.tv_nsec);
}

SharedCalls* OwnCalls() {
    return ownCalls;
}

void SetOwnCalls(SharedCalls* calls) {
    ownCalls = calls;
}

void UseCallSlot(int slot) {
    ownSlot = slot;
}

int OwnCallSlot() {
    return ownSlot;
}

CallScope::CallScope(const char* name) {
    if (!ownCalls || ownSlot == SharedCalls::kNoSlot) return;
    CallSlot& slot = ownCalls->Slots[static_cast<size_t>(ownSlot)];
    std::strncpy(slot.Name.data(), name, slot.Name.size() - 1);
    slot.Since.store(MonotonicNow(), std::memory_order_release);
}

CallScope::~CallScope() {
    if (!ownCalls || ownSlot == SharedCalls::kNoSlot) return;
    ownCalls->Slots[static_cast<size_t>(ownSlot)].Since.store(0, std::memory_order_release);
}

}  // namespace tdkplay::check
