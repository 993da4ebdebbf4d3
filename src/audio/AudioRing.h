// AudioRing: delivered audio on its way to being heard. RingLayout: the sizes that follow from a format.
#pragma once

#include <cstdint>
#include <memory>

#include <tdkviz/host.h>

namespace tdkviz {

// Bytes, but for BytesPerSecond.
struct RingLayout {
    uint16_t Channels = 0;
    uint32_t BytesPerSample = 0;  // of one channel: 1 or 2
    int32_t FrameBytes = 0;       // of all channels
    uint32_t BytesPerSecond = 0;
    int32_t RingSize = 0;        // holds the delay and two of the host's blocks, and no less than three
    int32_t FrameStep = 0;       // how far the read position moves per frame; a multiple of 4
    int32_t BlockBytes = 0;      // 512 sample frames
    int32_t SamplesInBlock = 0;  // 16-bit entries in a block
};

// Whether samples of this format can be read: 8 or 16 bits, or what is carried in as many bytes.
bool IsUsable(const KVAAudioFormat& format);

// The sizes for a usable format. `delaySeconds` may be anything that a double can be. A ring is never
// longer than 64 MiB, nor shorter than one block unless its size is 0, which means that there is none.
RingLayout LayoutRing(const KVAAudioFormat& format, double delaySeconds, uint32_t frameRate);

// 1. RingSize is 0 (nothing is kept, nothing is read) or at least BlockBytes, and a multiple of 4 and of
//    FrameBytes.
// 2. WritePos and ReadPos lie in 0..RingSize. Both ends of that range name the same place.
// 3. A sample frame of the stream starts at each multiple of FrameBytes.
//
// Has no lock. Allocates when it is made and never again.
class AudioRing {
public:
    AudioRing() = default;
    // Full of silence; empty if there is no memory for it.
    explicit AudioRing(const RingLayout& layout);

    bool IsEmpty() const { return sizes_.RingSize == 0; }
    const RingLayout& Layout() const { return sizes_; }

    // Makes all that is held silent. Positions stay.
    void Silence();
    // Appends `size` bytes; what is older than the ring is long is lost.
    void Write(const uint8_t* data, uint32_t size);
    // Moves the read position to `delaySeconds` behind the end of what was written. No delay, or one longer
    // than the ring, gives the oldest audio.
    void PlaceReadPos(double delaySeconds);
    // The block at the read position, which then moves by FrameStep; null if the ring is empty. Good until
    // the next operation. A block may run over the write position: it then holds new and old audio.
    const uint8_t* CutBlock();

private:
    RingLayout sizes_;
    std::unique_ptr<uint8_t[]> Ring;
    std::unique_ptr<uint8_t[]> LinearBlock;  // a block that wraps round the end of the ring
    int32_t WritePos = 0;
    int32_t ReadPos = 0;
};

}  // namespace tdkviz
