#include "player/check/GuardedBuffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>
#include <new>

namespace tdkplay::check {
namespace {

// Room for many rows of the largest picture, on each side. A multiple of every page size.
constexpr size_t kZone = size_t{1} << 20;
// What an opened zone is filled with: no pixel of a plug-in has its upper byte so by chance, nor has it four alike.
constexpr uint8_t kFill = 0xA7;

size_t WholePages(size_t size) {
    const auto page = static_cast<size_t>(getpagesize());
    return (size + page - 1) / page * page;
}

std::string Bytes(size_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

}  // namespace

// What the signal handler needs of a buffer, and leaves for it. Plain memory that is there before any signal comes.
struct GuardedBuffer::Touch {
    std::atomic<uint8_t*> Map;  // null: free
    size_t Inner;
    std::atomic<bool> IsReadOnly;
    std::atomic<bool> Before, Behind, Inside;
};

std::array<GuardedBuffer::Touch, GuardedBuffer::kMostBuffers>& GuardedBuffer::Touches() {
    static std::array<Touch, kMostBuffers> all;
    return all;
}

GuardedBuffer::GuardedBuffer(const char* name, size_t size, Against against)
    : name_(name), size_(size), inner_(WholePages(size)) {
    void* const map = mmap(nullptr, inner_ + 2 * kZone, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (map == MAP_FAILED) throw std::bad_alloc();
    map_ = static_cast<uint8_t*>(map);
    mprotect(map_ + kZone, inner_, PROT_READ | PROT_WRITE);
    data_ = map_ + kZone + (against == Against::kEnd ? inner_ - size_ : 0);
    for (Touch& touch : Touches()) {
        if (touch.Map) continue;
        touch.Inner = inner_;
        touch.IsReadOnly = touch.Before = touch.Behind = touch.Inside = false;
        touch.Map = map_;
        touch_ = &touch;
        return;
    }
    munmap(map_, inner_ + 2 * kZone);
    throw std::bad_alloc();
}

GuardedBuffer::~GuardedBuffer() {
    touch_->Map = nullptr;
    munmap(map_, inner_ + 2 * kZone);
}

void GuardedBuffer::MakeReadOnly() {
    touch_->IsReadOnly = true;
    mprotect(map_ + kZone, inner_, PROT_READ);
}

bool GuardedBuffer::OpenAt(uintptr_t address, bool isWrite) {
    for (Touch& touch : Touches()) {
        uint8_t* const map = touch.Map;
        const auto begin = reinterpret_cast<uintptr_t>(map);
        if (!map || address < begin || address >= begin + touch.Inner + 2 * kZone) continue;
        const size_t offset = address - begin;
        const bool isInside = offset >= kZone && offset < kZone + touch.Inner;
        if (isInside && !(touch.IsReadOnly && isWrite)) return false;
        uint8_t* const zone = isInside ? map + kZone : offset < kZone ? map : map + kZone + touch.Inner;
        (isInside ? touch.Inside : offset < kZone ? touch.Before : touch.Behind) = true;
        if (mprotect(zone, isInside ? touch.Inner : kZone, PROT_READ | PROT_WRITE) != 0) return false;
        if (!isInside) std::memset(zone, kFill, kZone);
        return true;
    }
    return false;
}

std::string GuardedBuffer::TellBefore() const {
    size_t clean = 0;
    while (clean < kZone && map_[clean] == kFill) ++clean;
    const std::string place = std::string(" before the start of ") + name_;
    if (clean == kZone) return "read" + place;
    return "wrote " + Bytes(static_cast<size_t>(data_ - (map_ + clean))) + place;
}

std::string GuardedBuffer::TellBehind() const {
    const uint8_t* const zone = map_ + kZone + inner_;
    size_t touched = kZone;
    while (touched > 0 && zone[touched - 1] == kFill) --touched;
    const std::string place = std::string(" past the end of ") + name_;
    if (touched == 0) return "read" + place;
    return "wrote " + Bytes(static_cast<size_t>(zone + touched - (data_ + size_))) + place;
}

std::string GuardedBuffer::TakeTouched() {
    std::string told;
    const auto add = [&told](const std::string& text) { told += (told.empty() ? "" : " and ") + text; };
    if (touch_->Inside.exchange(false)) add(std::string("wrote into ") + name_);
    if (touch_->Before.exchange(false)) add(TellBefore());
    if (touch_->Behind.exchange(false)) add(TellBehind());
    if (told.empty()) return told;
    mprotect(map_, kZone, PROT_NONE);
    mprotect(map_ + kZone + inner_, kZone, PROT_NONE);
    if (touch_->IsReadOnly) MakeReadOnly();
    return told;
}

}  // namespace tdkplay::check
