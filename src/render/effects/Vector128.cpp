// The vector pass in 128 bits: what every 64-bit processor has.
#include "src/render/effects/PassTable.h"
#include "src/render/effects/VectorPass.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tdkviz {

namespace {

struct Lanes128 : VectorLanes<16> {
    static constexpr bool kPermutes = false;
#ifdef __SSE2__
    static Bytes Average(Bytes a, Bytes b) {
        return Bytes(_mm_avg_epu8(__m128i(a), __m128i(b)));
    }
    static Halves MulHigh(Halves a, Halves b) {
        return Halves(_mm_mulhi_epu16(__m128i(a), __m128i(b)));
    }
    static Bytes Scale(Bytes a, Bytes below, Halves factor) {
        const __m128i low = _mm_unpacklo_epi8(__m128i(below), __m128i(a)),
                      high = _mm_unpackhi_epi8(__m128i(below), __m128i(a));
        return Bytes(_mm_packus_epi16(_mm_mulhi_epu16(low, __m128i(factor)), _mm_mulhi_epu16(high, __m128i(factor))));
    }
#else
    static Bytes Average(Bytes a, Bytes b) {
        return (a | b) - ((a ^ b) >> 1);
    }
    static Halves MulHigh(Halves a, Halves b) {
        constexpr uint32_t kLow = 0xFFFF;
        const Words even = (Words(a) & kLow) * (Words(b) & kLow), odd = (Words(a) >> 16) * (Words(b) >> 16);
        return Halves((even >> 16) | (odd & ~kLow));
    }
    static Bytes Scale(Bytes a, Bytes below, Halves factor) {
        const Halves even = (Halves(a) << 8) | (Halves(below) >> 8), odd = (Halves(a) & 0xFF00) | (Halves(below) >> 8);
        return Bytes(MulHigh(even, factor) | (MulHigh(odd, factor) << 8));
    }
#endif
};

}  // namespace

EffectPassFunction FindVector128(const EffectPass& pass) {
    return FindVectorPass<Lanes128>(pass);
}

}  // namespace tdkviz
