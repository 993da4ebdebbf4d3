#include "player/render/Y4mWriter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr std::string_view kFrameHeader = "FRAME\n";

// Pixels that are converted at once: a fixed number of them, in 16 bits, is what compilers make vectors of.
constexpr size_t kBlock = 64;

// Weights of red, green and blue in 1/256, and what is added: half for rounding, and the plane's zero. All sums lie
// between 0 and 65535, so they may be made of parts modulo 65536.
struct Plane {
    uint16_t Red;
    uint16_t Green;
    uint16_t Blue;
    uint16_t Offset;
};

constexpr uint16_t Wrapped(int weight) {
    return static_cast<uint16_t>(weight);
}

constexpr Plane kLuma = {66, 129, 25, (16 << 8) + 128};
constexpr Plane kBlueDifference = {Wrapped(-38), Wrapped(-74), 112, (128 << 8) + 128};
constexpr Plane kRedDifference = {112, Wrapped(-94), Wrapped(-18), (128 << 8) + 128};

struct Channels {
    uint16_t Red[kBlock];
    uint16_t Green[kBlock];
    uint16_t Blue[kBlock];
};

void Split(const DWORD* __restrict pixels, Channels& __restrict out) {
    for (size_t i = 0; i < kBlock; ++i) out.Red[i] = static_cast<uint16_t>(pixels[i] >> 16 & 255);
    for (size_t i = 0; i < kBlock; ++i) out.Green[i] = static_cast<uint16_t>(pixels[i] >> 8 & 255);
    for (size_t i = 0; i < kBlock; ++i) out.Blue[i] = static_cast<uint16_t>(pixels[i] & 255);
}

template <const Plane& kPlane>
void Mix(const Channels& __restrict in, uint8_t* __restrict out) {
    for (size_t i = 0; i < kBlock; ++i) {
        const auto sum = static_cast<uint16_t>(kPlane.Red * in.Red[i] + kPlane.Green * in.Green[i] +
                                               kPlane.Blue * in.Blue[i] + kPlane.Offset);
        out[i] = static_cast<uint8_t>(sum >> 8);
    }
}

void ConvertBlock(const DWORD* pixels, uint8_t* luma, size_t planeSize) {
    Channels channels;
    Split(pixels, channels);
    Mix<kLuma>(channels, luma);
    Mix<kBlueDifference>(channels, luma + planeSize);
    Mix<kRedDifference>(channels, luma + 2 * planeSize);
}

// `count` pixels to three planes of that size, one behind the other.
void Convert(const DWORD* pixels, size_t count, uint8_t* planes) {
    const size_t whole = count / kBlock * kBlock;
    for (size_t i = 0; i < whole; i += kBlock) ConvertBlock(pixels + i, planes + i, count);
    std::array<DWORD, kBlock> rest = {};
    std::array<uint8_t, 3 * kBlock> converted = {};
    std::copy(pixels + whole, pixels + count, rest.begin());
    ConvertBlock(rest.data(), converted.data(), kBlock);
    for (size_t plane = 0; plane < 3; ++plane)
        std::copy_n(converted.data() + plane * kBlock, count - whole, planes + plane * count + whole);
}

}  // namespace

Y4mWriter::Y4mWriter(const std::string& path, const VideoFormat& format)
    : path_(path),
      file_(std::fopen(path.c_str(), "wbe")),
      pixels_(static_cast<size_t>(format.Width) * static_cast<size_t>(format.Height)),
      bytes_(kFrameHeader.size() + 3 * pixels_) {
    if (!file_) throw PlayerError(ExitCode::kCannotWrite, path + ": " + std::strerror(errno));
    const std::string header = "YUV4MPEG2 W" + std::to_string(format.Width) + " H" + std::to_string(format.Height) +
                               " F" + std::to_string(format.Rate) + ":1 Ip A1:1 C444\n";
    Put(header.data(), header.size());
    std::copy(kFrameHeader.begin(), kFrameHeader.end(), bytes_.begin());
}

void Y4mWriter::Write(const Picture& frame) {
    if (frame.Pixels.size() != pixels_) throw PlayerError(ExitCode::kInternalError, "a frame of another size");
    Convert(frame.Pixels.data(), pixels_, bytes_.data() + kFrameHeader.size());
    Put(bytes_.data(), bytes_.size());
}

void Y4mWriter::Finish() {
    if (std::fflush(file_.get()) != 0) throw PlayerError(ExitCode::kCannotWrite, path_ + ": " + std::strerror(errno));
}

void Y4mWriter::Put(const void* bytes, size_t size) {
    if (std::fwrite(bytes, 1, size, file_.get()) != size)
        throw PlayerError(ExitCode::kCannotWrite, path_ + ": " + std::strerror(errno));
}

}  // namespace tdkplay
