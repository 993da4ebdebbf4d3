// FrameBuffer: the plain memory that plug-ins and effects work on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tdkviz {

// Zeroed bytes that start on a 32-byte boundary, or nothing.
class FrameBuffer {
public:
    static constexpr size_t kAlignment = 32;

    // Replaces what was held. False, and nothing is held, for 0 bytes or when memory runs out.
    bool Allocate(size_t bytes);
    void Free();
    uint8_t* Pixels() const { return pixels_; }

private:
    struct FreeRaw {
        void operator()(void* raw) const;
    };
    std::unique_ptr<void, FreeRaw> raw_;
    uint8_t* pixels_ = nullptr;
};

}  // namespace tdkviz
