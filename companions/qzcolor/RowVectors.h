// Vectors of pixels, by the compiler's own operators and the few instructions that it doesn't find by itself. As in
// RowLoops.h, everything is local to the file that includes it.
#pragma once

#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace qzcolor {
namespace {

// Words at any address, over memory of any type.
using Word16 [[gnu::may_alias, gnu::aligned(1)]] = uint16_t;
using Word32 [[gnu::may_alias, gnu::aligned(1)]] = uint32_t;
using Word64 [[gnu::may_alias, gnu::aligned(1)]] = uint64_t;

// As wide as the instruction set has them.
#ifdef __AVX2__
constexpr int kVectorBytes = 32;
#else
constexpr int kVectorBytes = 16;
#endif
using Halves [[gnu::vector_size(kVectorBytes)]] = uint16_t;
using Words [[gnu::vector_size(kVectorBytes)]] = uint32_t;
using Pairs [[gnu::vector_size(kVectorBytes)]] = uint64_t;
constexpr int kLanes = kVectorBytes / 4;

Words Load(const void* at) {
    Words words;
    std::memcpy(&words, at, sizeof(words));
    return words;
}
void Store(void* at, Words words) {
    std::memcpy(at, &words, sizeof(words));
}

// The halves of each word times those of the other.
template <typename T>
T SumOfProducts(T a, T b) {
    return (a >> 16) * (b >> 16) + (a & 0xFFFF) * (b & 0xFFFF);
}
#if defined(__AVX2__)
Words SumOfProducts(Words a, Words b) {
    return reinterpret_cast<Words>(_mm256_madd_epi16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
}
// The high halves of both, in order.
Words PackHighHalves(Words a, Words b) {
    const __m256i lanes = _mm256_packs_epi32(_mm256_srai_epi32(reinterpret_cast<__m256i>(a), 16),
                                             _mm256_srai_epi32(reinterpret_cast<__m256i>(b), 16));
    return reinterpret_cast<Words>(_mm256_permute4x64_epi64(lanes, 0xD8));
}
#elif defined(__SSE2__)
Words SumOfProducts(Words a, Words b) {
    return reinterpret_cast<Words>(_mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
}
Words PackHighHalves(Words a, Words b) {
    return reinterpret_cast<Words>(_mm_packs_epi32(_mm_srai_epi32(reinterpret_cast<__m128i>(a), 16),
                                                   _mm_srai_epi32(reinterpret_cast<__m128i>(b), 16)));
}
#endif

// Each word twice, in order.
void Twice(Words words, Words& left, Words& right) {
#ifdef __AVX2__
    left = __builtin_shufflevector(words, words, 0, 0, 1, 1, 2, 2, 3, 3);
    right = __builtin_shufflevector(words, words, 4, 4, 5, 5, 6, 6, 7, 7);
#else
    left = __builtin_shufflevector(words, words, 0, 0, 1, 1);
    right = __builtin_shufflevector(words, words, 2, 2, 3, 3);
#endif
}

// The words at as many places as a vector has lanes, and those behind them.
void LoadNeighbours(const Word32* in, const int32_t* places, Words& left, Words& right) {
    const auto pair = [&](int lane) {
        return static_cast<uint64_t>(*reinterpret_cast<const Word64*>(in + places[lane]));
    };
#ifdef __AVX2__
    const Words a = reinterpret_cast<Words>(Pairs{pair(0), pair(1), pair(4), pair(5)});
    const Words b = reinterpret_cast<Words>(Pairs{pair(2), pair(3), pair(6), pair(7)});
    left = __builtin_shufflevector(a, b, 0, 2, 8, 10, 4, 6, 12, 14);
    right = __builtin_shufflevector(a, b, 1, 3, 9, 11, 5, 7, 13, 15);
#else
    const Words a = reinterpret_cast<Words>(Pairs{pair(0), pair(1)});
    const Words b = reinterpret_cast<Words>(Pairs{pair(2), pair(3)});
    left = __builtin_shufflevector(a, b, 0, 2, 4, 6);
    right = __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
}

}  // namespace
}  // namespace qzcolor
