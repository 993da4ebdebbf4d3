// Memory between two pages that can't be touched.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace tdkviz::test {

class GuardedMemory {
public:
    explicit GuardedMemory(size_t size) : page_(static_cast<size_t>(getpagesize())) {
        size_ = (size + page_ - 1) / page_ * page_;
        map_ = mmap(nullptr, size_ + 2 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map_ == MAP_FAILED) throw std::bad_alloc();
        mprotect(static_cast<uint8_t*>(map_) + page_, size_, PROT_READ | PROT_WRITE);
    }
    ~GuardedMemory() { munmap(map_, size_ + 2 * page_); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    // A block of this size that lies against the page behind or, else, the one before.
    uint8_t* Block(size_t size, bool atEnd) const {
        return static_cast<uint8_t*>(map_) + page_ + (atEnd ? size_ - size : 0);
    }

private:
    const size_t page_;
    size_t size_ = 0;
    void* map_ = nullptr;
};

}  // namespace tdkviz::test
