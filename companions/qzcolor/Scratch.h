// Scratch: memory for the length of one conversion, kept from one to the next.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qzcolor {

// Conversions run on several threads at once, and a library that is to be unloaded can hold nothing per thread.
// So a few blocks wait in slots that all threads share, and each conversion takes one without a lock. As long as
// sizes stand, nothing is allocated.
class Scratch {
public:
    explicit Scratch(size_t bytes);
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    // Null when memory has run out. Aligned to 64 bytes.
    uint8_t* Bytes() const;

    struct Block;

private:
    Block* block_ = nullptr;
};

}  // namespace qzcolor
