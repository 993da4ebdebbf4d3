#include "src/render/FrameBuffer.h"

#include <cstdlib>

namespace tdkviz {

void FrameBuffer::FreeRaw::operator()(void* raw) const {
    std::free(raw);
}

bool FrameBuffer::Allocate(size_t bytes) {
    Free();
    if (bytes == 0 || bytes > SIZE_MAX - kAlignment) return false;
    raw_.reset(std::calloc(bytes + kAlignment, 1));
    if (!raw_) return false;
    const uintptr_t address = reinterpret_cast<uintptr_t>(raw_.get()) + kAlignment - 1;
    pixels_ = reinterpret_cast<uint8_t*>(address & ~uintptr_t{kAlignment - 1});
    return true;
}

void FrameBuffer::Free() {
    raw_.reset();
    pixels_ = nullptr;
}

}  // namespace tdkviz
