// Rows of pixels held in one vector: what every instruction set offers to the vector pass.
#pragma once

#include <cstdint>
#include <cstring>

namespace tdkviz {

// kSize bytes seen as bytes, 16-bit halves of pixels, whole pixels and pairs of them. The compiler turns the operators
// into whatever instructions the file is built for.
template <int kSize>
struct VectorLanes {
    typedef uint8_t Bytes __attribute__((vector_size(kSize)));
    typedef uint16_t Halves __attribute__((vector_size(kSize)));
    typedef uint32_t Words __attribute__((vector_size(kSize)));
    typedef uint64_t Pairs __attribute__((vector_size(kSize)));
    static constexpr int32_t kPixels = kSize / 4;

    static Bytes Load(const uint8_t* at) {
        Bytes bytes;
        std::memcpy(&bytes, at, sizeof bytes);
        return bytes;
    }
    static void Store(uint8_t* at, Bytes bytes) { std::memcpy(at, &bytes, sizeof bytes); }
    static Bytes Splat(uint8_t byte) { return Bytes{} + byte; }
    static Words SplatPixel(uint32_t pixel) { return Words{} + pixel; }
    static Pairs SplatPair(uint64_t pair) { return Pairs{} + pair; }

    // Each byte shifted right by kBits.
    template <int kBits>
    static Bytes ShiftRight(Bytes bytes) {
        return Bytes(Halves(bytes) >> kBits) & Splat(static_cast<uint8_t>(0xFF >> kBits));
    }
    // The same for bytes whose low kBits bits are 0: nothing crosses into the next byte.
    template <int kBits>
    static Bytes ShiftRightExact(Bytes bytes) {
        return Bytes(Halves(bytes) >> kBits);
    }
};

// An instruction set derives from VectorLanes and adds:
//   static Bytes Average(Bytes a, Bytes b)          (a + b + 1) >> 1 of each byte
//   static Halves MulHigh(Halves a, Halves b)       a * b >> 16 of each half
//   static Bytes Scale(Bytes a, Bytes below, Halves factor)
//                                                   (a * 256 + below) * factor >> 16 of each byte
//   static constexpr bool kPermutes                 whether lanes can be put in any order at once; if so:
//   static Bytes Permute(Bytes pixels, Words index) pixel i becomes pixel index[i] mod kPixels
//   static Halves SumLow(Bytes a, Bytes b)          a + b of half of the bytes, and of the other half; what Narrow
//   static Halves SumHigh(Bytes a, Bytes b)         makes of the two, which are at most 255 by then, is in order
//   static Bytes Narrow(Halves low, Halves high)
}  // namespace tdkviz
