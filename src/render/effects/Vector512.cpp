// The vector pass in 512 bits. This file alone is built for processors that have AVX-512; nothing in it may be
// called before the processor was asked.
#include "src/render/effects/PassTable.h"

#ifdef __AVX512BW__
#include <immintrin.h>

#include "src/render/effects/VectorPass.h"
#endif

namespace tdkviz {

#ifdef __AVX512BW__
namespace {

struct Lanes512 : VectorLanes<64> {
    static constexpr bool kPermutes = true;
    static Bytes Average(Bytes a, Bytes b) { return Bytes(_mm512_avg_epu8(__m512i(a), __m512i(b))); }
    static Halves MulHigh(Halves a, Halves b) { return Halves(_mm512_mulhi_epu16(__m512i(a), __m512i(b))); }
    static Bytes Scale(Bytes a, Bytes below, Halves factor) {
        const __m512i low = _mm512_unpacklo_epi8(__m512i(below), __m512i(a)),
                      high = _mm512_unpackhi_epi8(__m512i(below), __m512i(a));
        return Bytes(
            _mm512_packus_epi16(_mm512_mulhi_epu16(low, __m512i(factor)), _mm512_mulhi_epu16(high, __m512i(factor))));
    }
    static Halves SumLow(Bytes a, Bytes b) { return PairSums(_mm512_unpacklo_epi8(__m512i(a), __m512i(b))); }
    static Halves SumHigh(Bytes a, Bytes b) { return PairSums(_mm512_unpackhi_epi8(__m512i(a), __m512i(b))); }
    static Bytes Narrow(Halves low, Halves high) { return Bytes(_mm512_packus_epi16(__m512i(low), __m512i(high))); }
    // The form without a mask warns of an uninitialised variable inside the compiler's own header.
    static Bytes Permute(Bytes pixels, Words index) {
        constexpr __mmask16 kAll = 0xFFFF;
        return Bytes(_mm512_maskz_permutexvar_epi32(kAll, __m512i(index), __m512i(pixels)));
    }

private:
    static Halves PairSums(__m512i bytes) { return Halves(_mm512_maddubs_epi16(bytes, __m512i(Splat(1)))); }
};

}  // namespace

EffectPassFunction FindVector512(const EffectPass& pass) {
    // Where memory sets the pace, loads across two cache lines cost more than the width gains.
    const bool justPasses = pass.zoomX == 0 && pass.rotate == 0 && pass.kernel <= 1;
    return justPasses ? nullptr : FindVectorPass<Lanes512>(pass);
}
#else
EffectPassFunction FindVector512(const EffectPass&) {
    return nullptr;
}
#endif

}  // namespace tdkviz
