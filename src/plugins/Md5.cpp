#include "src/plugins/Md5.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace tdkviz {
namespace {

constexpr size_t kBlockSize = 64;
constexpr size_t kLengthOffset = 56;
constexpr uint8_t kPaddingMark = 0x80;
constexpr int kSteps = 64;

using Md5State = std::array<uint32_t, 4>;
constexpr Md5State kStartState = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
// Rotations of the four rounds.
constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The addend of step i is the whole part of 2^32 x |sin(i + 1)|.
std::array<uint32_t, kSteps> MakeAddends() {
    std::array<uint32_t, kSteps> addends;
    for (int i = 0; i < kSteps; ++i) addends[i] = static_cast<uint32_t>(std::fabs(std::sin(i + 1.0)) * 0x1p32);
    return addends;
}

uint32_t ReadWord(const uint8_t* bytes) {
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

void WriteWord(uint8_t* bytes, uint32_t word) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(word >> 8 * i);
}

struct Mixed {
    uint32_t value;
    int word;  // which word of the block the step takes
};

Mixed Mix(int step, uint32_t b, uint32_t c, uint32_t d) {
    switch (step / 16) {
        case 0:
            return {(b & c) | (~b & d), step};
        case 1:
            return {(b & d) | (c & ~d), (5 * step + 1) % 16};
        case 2:
            return {b ^ c ^ d, (3 * step + 5) % 16};
        default:
            return {c ^ (b | ~d), 7 * step % 16};
    }
}

void Transform(Md5State& state, const uint8_t* block) {
    static const std::array<uint32_t, kSteps> addends = MakeAddends();
    auto [a, b, c, d] = state;
    for (int step = 0; step < kSteps; ++step) {
        const Mixed mixed = Mix(step, b, c, d);
        const uint32_t sum = a + mixed.value + addends[step] + ReadWord(block + 4 * mixed.word);
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, kShifts[step / 16][step % 4]);
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

}  // namespace

Md5Digest ComputeMd5(const void* data, size_t size) {
    Md5State state = kStartState;
    const auto* bytes = static_cast<const uint8_t*>(data);
    size_t left = size;
    for (; left >= kBlockSize; left -= kBlockSize, bytes += kBlockSize) Transform(state, bytes);

    // The rest, the mark, zeros, and the length in bits; two blocks if they don't fit into one.
    uint8_t tail[2 * kBlockSize] = {};
    std::copy_n(bytes, left, tail);
    tail[left] = kPaddingMark;
    const size_t lengthOffset = left < kLengthOffset ? kLengthOffset : kBlockSize + kLengthOffset;
    const uint64_t bits = static_cast<uint64_t>(size) * 8;
    WriteWord(tail + lengthOffset, static_cast<uint32_t>(bits));
    WriteWord(tail + lengthOffset + 4, static_cast<uint32_t>(bits >> 32));
    Transform(state, tail);
    if (lengthOffset > kBlockSize) Transform(state, tail + kBlockSize);

    Md5Digest digest;
    for (size_t i = 0; i < state.size(); ++i) WriteWord(&digest[4 * i], state[i]);
    return digest;
}

}  // namespace tdkviz
