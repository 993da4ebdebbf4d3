// Where audio comes from: a file or the project's own piece, as interleaved 16-bit samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace tdkplay {

// What flows from decoder to device: 16-bit, 1 or 2 channels.
struct PcmFormat {
    uint32_t Rate = 0;  // Hz
    uint16_t Channels = 0;

    uint32_t FrameBytes() const { return Channels * static_cast<uint32_t>(sizeof(int16_t)); }
    bool operator==(const PcmFormat&) const = default;
};

// Used by one thread at a time.
class Decoder {
public:
    virtual ~Decoder() = default;

    virtual PcmFormat Format() const = 0;
    // Length in sample frames; 0 if the file doesn't tell.
    virtual uint64_t TotalFrames() const = 0;
    // What the file says that it is, "artist - title"; empty if it doesn't. UTF-8.
    virtual std::string Title() const { return {}; }
    // Writes up to `frames` sample frames and gives their number; 0 at the end.
    virtual size_t Read(int16_t* samples, size_t frames) = 0;
    // Goes on from this sample frame. False leaves the place as it was.
    virtual bool Seek(uint64_t frame) = 0;
};

// Opens a file, or the project's own piece if `path` is empty. Throws PlayerError with kFileUnreadable or
// kUnknownFormat.
std::unique_ptr<Decoder> OpenDecoder(const std::string& path);

}  // namespace tdkplay
