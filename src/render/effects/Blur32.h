// The blur kernels of the 32-bit path, all four bytes of a pixel at once. Files for one instruction set include this,
// so everything here is local to the file that does: no other may end up with a copy that its processor can't run.
#pragma once

#include <cstdint>
#include <cstring>

namespace tdkviz {
namespace {

inline uint32_t LoadPixel(const uint8_t* at) {
    uint32_t pixel;
    std::memcpy(&pixel, at, sizeof(pixel));
    return pixel;
}
inline void StorePixel(uint8_t* at, uint32_t pixel) {
    std::memcpy(at, &pixel, sizeof(pixel));
}

// Each byte of the pixel shifted right by kBits.
template <int kBits>
constexpr uint32_t Part(uint32_t pixel) {
    return (pixel >> kBits) & (0x01010101u * (0xFFu >> kBits));
}

// The average of three pixels on the low three bytes. The sum of three bytes has 10 bits, so two of them
// with a gap fit one word; 21845 is 65536 / 3 rounded down.
constexpr uint32_t AverageOfThree(uint32_t a, uint32_t b, uint32_t c) {
    constexpr uint32_t kThird = 21845, kRound = 3;
    const auto byte = [=](int shift) {
        const uint32_t sum = ((a >> shift) & 0xFF) + ((b >> shift) & 0xFF) + ((c >> shift) & 0xFF) + kRound;
        return ((sum * kThird) >> 16) << shift;
    };
    return byte(0) | byte(8) | byte(16);
}

// Kernel kKernel at a pixel; `at(dx, dy)` gives the address of a neighbour, dy -1 being the row before.
template <int kKernel, typename Reader>
inline uint32_t Blur32(const Reader& at) {
    constexpr uint32_t kLowBits = 0x01010101, kSecondBits = 0x02020202;
    const auto p = [&at](int dx, int dy) { return LoadPixel(at(dx, dy)); };
    const auto cross = [&p]<int kBits>() {
        return Part<kBits>(p(0, -1)) + Part<kBits>(p(0, 1)) + Part<kBits>(p(1, 0)) + Part<kBits>(p(-1, 0));
    };
    const auto corners = [&p]<int kBits>() {
        return Part<kBits>(p(-1, -1)) + Part<kBits>(p(1, -1)) + Part<kBits>(p(-1, 1)) + Part<kBits>(p(1, 1));
    };
    const uint32_t c = p(0, 0);
    if constexpr (kKernel <= 1) {
        return c;
    } else if constexpr (kKernel == 2) {
        return Part<1>(c) + Part<2>(c) + Part<3>(c) + (c & kSecondBits) + (c & kLowBits) +
               cross.template operator()<5>();
    } else if constexpr (kKernel == 3) {
        return Part<1>(c) + Part<2>(c) + (c & kLowBits) + cross.template operator()<4>();
    } else if constexpr (kKernel == 4) {
        return Part<1>(c) + (c & kLowBits) + cross.template operator()<3>();
    } else if constexpr (kKernel == 5) {
        return AverageOfThree(p(-1, -1), c, p(1, 1));
    } else if constexpr (kKernel == 6) {
        return AverageOfThree(p(1, -1), c, p(-1, 1));
    } else if constexpr (kKernel == 7) {
        return AverageOfThree(p(0, -1), c, p(0, 1));
    } else if constexpr (kKernel == 8) {
        return AverageOfThree(p(-1, 0), c, p(1, 0));
    } else if constexpr (kKernel == 9) {
        return Part<1>(c) + (c & kLowBits) + cross.template operator()<4>() + corners.template operator()<4>();
    } else {
        return cross.template operator()<3>() + corners.template operator()<3>();
    }
}

}  // namespace
}  // namespace tdkviz
