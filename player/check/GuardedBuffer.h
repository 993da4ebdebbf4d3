// Memory for a plug-in between two zones that can't be touched.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace tdkplay::check {

// Where the block lies: against the zone behind it, or against the one in front.
enum class Against { kEnd, kBegin };

// Touching a zone is remembered, and the zone is opened so that the plug-in goes on and the extent can be told. That
// takes the handler of CrashHandler; without it a touch ends the process. At most kMostBuffers live at a time.
class GuardedBuffer {
public:
    static constexpr int kMostBuffers = 8;

    // `size` bytes, 0 at first. `name` says in reports what it is, as in "the picture"; it must live on.
    GuardedBuffer(const char* name, size_t size, Against against);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    uint8_t* Data() const { return data_; }
    size_t Size() const { return size_; }

    // From now on writing into the block is a touch as well.
    void MakeReadOnly();

    // What was touched and shouldn't have been, as in "wrote 132 bytes past the end of the picture"; empty: nothing.
    // Closes the zones again.
    std::string TakeTouched();

    // For the signal handler: whether `address` lies in a zone or a read-only block, which is open then.
    static bool OpenAt(uintptr_t address, bool isWrite);

private:
    struct Touch;

    static std::array<Touch, kMostBuffers>& Touches();
    std::string TellBefore() const;
    std::string TellBehind() const;

    const char* const name_;
    const size_t size_;
    size_t inner_ = 0;  // bytes of the pages that hold the block
    uint8_t* map_ = nullptr;
    uint8_t* data_ = nullptr;
    Touch* touch_ = nullptr;
};

}  // namespace tdkplay::check
