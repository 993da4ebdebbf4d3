// The vector pass in 256 bits. This file alone is built for processors that have AVX2; nothing in it may be
// called before the processor was asked.
#include "src/render/effects/PassTable.h"

#ifdef __AVX2__
#include <immintrin.h>

#include "src/render/effects/VectorPass.h"
#endif

namespace tdkviz {

#ifdef __AVX2__
namespace {

struct Lanes256 : VectorLanes<32> {
    static constexpr bool kPermutes = true;
    static Bytes Average(Bytes a, Bytes b) { return Bytes(_mm256_avg_epu8(__m256i(a), __m256i(b))); }
    static Halves MulHigh(Halves a, Halves b) { return Halves(_mm256_mulhi_epu16(__m256i(a), __m256i(b))); }
    static Bytes Scale(Bytes a, Bytes below, Halves factor) {
        const __m256i low = _mm256_unpacklo_epi8(__m256i(below), __m256i(a)),
                      high = _mm256_unpackhi_epi8(__m256i(below), __m256i(a));
        return Bytes(
            _mm256_packus_epi16(_mm256_mulhi_epu16(low, __m256i(factor)), _mm256_mulhi_epu16(high, __m256i(factor))));
    }
    static Halves SumLow(Bytes a, Bytes b) { return PairSums(_mm256_unpacklo_epi8(__m256i(a), __m256i(b))); }
    static Halves SumHigh(Bytes a, Bytes b) { return PairSums(_mm256_unpackhi_epi8(__m256i(a), __m256i(b))); }
    static Bytes Narrow(Halves low, Halves high) { return Bytes(_mm256_packus_epi16(__m256i(low), __m256i(high))); }
    static Bytes Permute(Bytes pixels, Words index) {
        return Bytes(_mm256_permutevar8x32_epi32(__m256i(pixels), __m256i(index)));
    }

private:
    static Halves PairSums(__m256i bytes) { return Halves(_mm256_maddubs_epi16(bytes, __m256i(Splat(1)))); }
};

}  // namespace

EffectPassFunction FindVector256(const EffectPass& pass) {
    return FindVectorPass<Lanes256>(pass);
}
#else
EffectPassFunction FindVector256(const EffectPass&) {
    return nullptr;
}
#endif

}  // namespace tdkviz
