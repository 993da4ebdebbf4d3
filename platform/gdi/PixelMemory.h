// The memory behind a bitmap: zeroed pages of its own, or a part of a file mapping.
#pragma once

#include <windef.h>

#include <cstddef>
#include <cstdint>

namespace tdkp {

class PixelMemory {
public:
    PixelMemory() = default;
    ~PixelMemory();
    PixelMemory(const PixelMemory&) = delete;
    PixelMemory& operator=(const PixelMemory&) = delete;

    // Zeroed. False if there is no such memory; called once.
    bool Allocate(size_t bytes);
    // `bytes` of the file mapping from `offset` on, seen by every other view of it. False if the handle is no
    // mapping or the mapping is too small; called once.
    bool Map(HANDLE section, uint64_t offset, size_t bytes);

    uint8_t* Data() const { return data_; }

private:
    uint8_t* data_ = nullptr;
    void* mapped_ = nullptr;
    size_t mappedBytes_ = 0;
};

}  // namespace tdkp
