#include "platform/gdi/PixelMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include "platform/kernel/FileMapping.h"

namespace tdkp {

PixelMemory::~PixelMemory() {
    if (mapped_ != nullptr) munmap(mapped_, mappedBytes_);
}

bool PixelMemory::Allocate(size_t bytes) {
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return false;
    mapped_ = memory;
    mappedBytes_ = bytes;
    data_ = static_cast<uint8_t*>(memory);
    return true;
}

bool PixelMemory::Map(HANDLE section, uint64_t offset, size_t bytes) {
    const std::shared_ptr<FileMapping> mapping = FindFileMapping(section);
    if (!mapping || offset > mapping->Size() || bytes > mapping->Size() - offset) return false;
    const uint64_t pageSize = static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
    const uint64_t start = offset / pageSize * pageSize;
    const size_t length = bytes + static_cast<size_t>(offset - start);
    void* memory =
        mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, mapping->Descriptor(), static_cast<off_t>(start));
    if (memory == MAP_FAILED) return false;
    mapped_ = memory;
    mappedBytes_ = length;
    data_ = static_cast<uint8_t*>(memory) + (offset - start);
    return true;
}

}  // namespace tdkp
