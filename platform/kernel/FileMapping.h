// Memory that several bitmaps can show at once.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/kernel/HandleTable.h"

namespace tdkp {

// Owns its descriptor. The bytes live as long as the object or a bitmap of it.
class FileMapping : public KernelObject {
public:
    FileMapping(int descriptor, uint64_t size) : descriptor_(descriptor), size_(size) {}
    ~FileMapping() override;

    // For mmap with MAP_SHARED; stays the object's own.
    int Descriptor() const { return descriptor_; }
    uint64_t Size() const { return size_; }

private:
    const int descriptor_;
    const uint64_t size_;
};

// Null if the handle isn't one of a file mapping. Any thread.
std::shared_ptr<FileMapping> FindFileMapping(HANDLE handle);

}  // namespace tdkp
