#include "src/audio/AudioRing.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <numeric>

#include <tdkviz/analysis_frame.h>

namespace tdkviz {
namespace {

constexpr int32_t kAlignment = 4;
constexpr int32_t kLongestRing = 1 << 26;
constexpr int kBitsPerByteShift = 3;
constexpr uint8_t kSilence16Bit = 0;
constexpr uint8_t kSilence8Bit = 0x80;  // 8-bit audio is unsigned

int32_t RoundUp(int32_t value, int32_t unit) {
    return (value + unit - 1) / unit * unit;
}

int32_t SizeOfRing(const KVAAudioFormat& format, const RingLayout& sizes, double delaySeconds) {
    const int32_t shortest = 3 * format.BlockSize;
    const double wanted = delaySeconds * sizes.BytesPerSecond + 2 * format.BlockSize;
    int32_t size = shortest;
    // Not a number fails the first comparison.
    if (wanted > shortest) size = wanted < kLongestRing ? static_cast<int32_t>(wanted) : kLongestRing;
    if (size == 0) return 0;
    // A whole number of sample frames keeps the channels in their places when the ring wraps round.
    const int32_t unit = std::lcm(kAlignment, std::max(sizes.FrameBytes, 1));
    return RoundUp(std::max(size, sizes.BlockBytes), unit);
}

}  // namespace

bool IsUsable(const KVAAudioFormat& format) {
    const int bytes = format.BitsPerSample >> kBitsPerByteShift;
    return bytes == 1 || bytes == 2;
}

RingLayout LayoutRing(const KVAAudioFormat& format, double delaySeconds, uint32_t frameRate) {
    RingLayout sizes;
    sizes.Channels = format.Channels;
    sizes.BytesPerSample = format.BitsPerSample >> kBitsPerByteShift;
    sizes.FrameBytes = static_cast<int32_t>(format.Channels * sizes.BytesPerSample);
    sizes.BytesPerSecond = sizes.FrameBytes * format.SamplesPerSecond;
    sizes.BlockBytes = sizes.FrameBytes * kWaveformSamples;
    sizes.SamplesInBlock = sizes.BlockBytes / 2;
    sizes.FrameStep = RoundUp(static_cast<int32_t>(sizes.BytesPerSecond / frameRate), kAlignment);
    sizes.RingSize = SizeOfRing(format, sizes, delaySeconds);
    return sizes;
}

AudioRing::AudioRing(const RingLayout& layout) : sizes_(layout) {
    if (IsEmpty()) return;
    Ring.reset(new (std::nothrow) uint8_t[sizes_.RingSize]);
    LinearBlock.reset(new (std::nothrow) uint8_t[sizes_.BlockBytes]);
    if (Ring && LinearBlock) {
        Silence();
    } else {
        sizes_.RingSize = 0;
    }
}

void AudioRing::Silence() {
    if (IsEmpty()) return;
    std::memset(Ring.get(), sizes_.BytesPerSample == 1 ? kSilence8Bit : kSilence16Bit, sizes_.RingSize);
}

void AudioRing::Write(const uint8_t* data, uint32_t size) {
    if (IsEmpty() || size == 0) return;
    const auto ringSize = static_cast<uint32_t>(sizes_.RingSize);
    const uint32_t room = ringSize - WritePos;
    if (size <= room) {
        std::memcpy(Ring.get() + WritePos, data, size);
        WritePos += static_cast<int32_t>(size);
        return;
    }
    std::memcpy(Ring.get() + WritePos, data, room);
    data += room;
    size -= room;
    if (size >= ringSize) {
        // Of all the rounds that this delivery makes, only the last leaves anything behind.
        const uint32_t skipped = (size / ringSize - 1) * ringSize;
        std::memcpy(Ring.get(), data + skipped, ringSize);
        data += skipped + ringSize;
        size -= skipped + ringSize;
    }
    std::memcpy(Ring.get(), data, size);
    WritePos = static_cast<int32_t>(size);
}

void AudioRing::PlaceReadPos(double delaySeconds) {
    const auto lag = static_cast<int64_t>(delaySeconds * sizes_.BytesPerSecond + 0.5);
    int64_t position = WritePos - lag;
    if (position < 0) {
        position += sizes_.RingSize;
        if (position < WritePos) position = WritePos;
    }
    ReadPos = RoundUp(static_cast<int32_t>(position), kAlignment);
}

const uint8_t* AudioRing::CutBlock() {
    if (IsEmpty()) return nullptr;
    const int32_t size = sizes_.RingSize;
    const int32_t start = (sizes_.FrameBytes ? RoundUp(ReadPos, sizes_.FrameBytes) : ReadPos) % size;
    // The step may be longer than a short ring.
    ReadPos = static_cast<int32_t>((static_cast<int64_t>(ReadPos) + sizes_.FrameStep) % size);

    const int32_t rest = size - start;
    if (rest >= sizes_.BlockBytes) return Ring.get() + start;
    std::memcpy(LinearBlock.get(), Ring.get() + start, rest);
    std::memcpy(LinearBlock.get() + rest, Ring.get(), sizes_.BlockBytes - rest);
    return LinearBlock.get();
}

}  // namespace tdkviz
