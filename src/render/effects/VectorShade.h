// Blur and fade of pixels that lie side by side, a vector at a time.
//
// Averages that round up are the cheapest operation on packed bytes, so sums of neighbours are trees of
// them: with the low bits masked off no rounding ever takes place.
#pragma once

#include <cstddef>
#include <cstdint>

#include "src/render/effects/EffectPass.h"

namespace tdkviz {

// Kernel kKernel at the pixels from `centre` on. All their neighbours exist.
template <typename Lanes, int kKernel>
class VectorBlur {
public:
    using Bytes = typename Lanes::Bytes;
    using Halves = typename Lanes::Halves;

    explicit VectorBlur(ptrdiff_t pitch) : pitch_(pitch) {}

    Bytes operator()(const uint8_t* centre) const {
        const uint8_t *const above = centre - pitch_, *const below = centre + pitch_;
        const auto p = [&](int dx, int dy) { return Lanes::Load((dy < 0 ? above : dy > 0 ? below : centre) + dx * 4); };
        const Bytes c = p(0, 0);
        if constexpr (kKernel <= 1) {
            return c;
        } else if constexpr (kKernel == 2) {
            return WithEighths(c, Cross<0xE0>(p));
        } else if constexpr (kKernel == 3) {
            return Lanes::Average(c, Bytes{}) + Lanes::template ShiftRight<2>(c) +
                   Lanes::template ShiftRightExact<2>(Cross<0xF0>(p));
        } else if constexpr (kKernel == 4) {
            return Lanes::Average(c, Cross<0xF8>(p));
        } else if constexpr (kKernel == 5) {
            return OfThree(p(-1, -1), c, p(1, 1));
        } else if constexpr (kKernel == 6) {
            return OfThree(p(1, -1), c, p(-1, 1));
        } else if constexpr (kKernel == 7) {
            return OfThree(p(0, -1), c, p(0, 1));
        } else if constexpr (kKernel == 8) {
            return OfThree(p(-1, 0), c, p(1, 0));
        } else if constexpr (kKernel == 9) {
            return Lanes::Average(c, Lanes::Average(Cross<0xF0>(p), Corners<0xF0>(p)));
        } else {
            return Lanes::Average(Cross<0xF8>(p), Corners<0xF8>(p));
        }
    }

private:
    // c / 2 + c / 4 + c / 8 + cross / 8, each rounded down, and the low two bits of c; cross is a multiple of 8. That
    // is the same as three averages that round up, if the first takes c with its bit 1 in the place of bit 2.
    static Bytes WithEighths(Bytes c, Bytes cross) {
        const Bytes bit2 = Lanes::Splat(4), moved = (c & ~bit2) | ((c + c) & bit2);
        return Lanes::Average(c, Lanes::Average(c, Lanes::Average(moved, cross)));
    }
    static Bytes OfFour(Bytes a, Bytes b, Bytes c, Bytes d, uint8_t mask) {
        const Bytes kept = Lanes::Splat(mask);
        return Lanes::Average(Lanes::Average(a & kept, b & kept), Lanes::Average(c & kept, d & kept));
    }
    template <uint8_t kMask, typename Neighbours>
    static Bytes Cross(const Neighbours& p) {
        return OfFour(p(0, -1), p(0, 1), p(1, 0), p(-1, 0), kMask);
    }
    template <uint8_t kMask, typename Neighbours>
    static Bytes Corners(const Neighbours& p) {
        return OfFour(p(-1, -1), p(1, -1), p(-1, 1), p(1, 1), kMask);
    }

    // The low three bytes of each pixel; the top one becomes 0. With 21845, which is 65536 / 3 rounded down,
    // (sum + 3) * 21845 >> 16 is a third of the sum rounded up.
    static constexpr uint16_t kThird = 21845;
    static constexpr uint8_t kRound = 3;
    static Bytes OfThree(Bytes a, Bytes b, Bytes c) {
        if constexpr (Lanes::kPermutes) {
            constexpr uint64_t kThirds = kThird * uint64_t{0x0001'0001'0001};
            const Bytes round = Lanes::Splat(kRound);
            const auto third = [](Halves sum) { return Lanes::MulHigh(sum, Halves(Lanes::SplatPair(kThirds))); };
            return Lanes::Narrow(third(Lanes::SumLow(a, b) + Lanes::SumLow(c, round)),
                                 third(Lanes::SumHigh(a, b) + Lanes::SumHigh(c, round)));
        } else {
            constexpr uint16_t kLow = 0xFF;
            const Halves low = Halves{} + kLow, round = Halves{} + kRound;
            const Halves even = (Halves(a) & low) + (Halves(b) & low) + (Halves(c) & low) + round;
            const Halves odd = (Halves(a) >> 8) + (Halves(b) >> 8) + (Halves(c) >> 8) + round;
            return Bytes(Lanes::MulHigh(even, Halves{} + kThird) |
                         (Lanes::MulHigh(odd, Halves(Lanes::SplatPixel(kThird))) << 8));
        }
    }

    const ptrdiff_t pitch_;
};

enum class FadeKind { kNone, kToBlack, kToColor };

// To black for the weights of which a high multiplication rounds as it should; see VectorFade.
constexpr FadeKind FadeKindOf(const EffectPass& pass) {
    constexpr int32_t kMaxWeight = 127;
    if (pass.fade == 0) return FadeKind::kNone;
    return pass.fadeColor == 0 && pass.fade <= kMaxWeight ? FadeKind::kToBlack : FadeKind::kToColor;
}

// Blends pixels with the fade colour.
template <typename Lanes, FadeKind kKind>
class VectorFade;

template <typename Lanes>
class VectorFade<Lanes, FadeKind::kNone> {
public:
    explicit VectorFade(const EffectPass&) {}
    typename Lanes::Bytes operator()(typename Lanes::Bytes pixels) const { return pixels; }
};

// (b * keep + 128) >> 8 as (b * 256 + below) * keep >> 16. With below = 32768 / keep, rounded up, below * keep
// is 32768 to 33023: no multiple of 256 lies between the one and the other sum.
template <typename Lanes>
class VectorFade<Lanes, FadeKind::kToBlack> {
public:
    explicit VectorFade(const EffectPass& pass) : VectorFade(kOffsetUnit - pass.fade) {}
    typename Lanes::Bytes operator()(typename Lanes::Bytes pixels) const { return Lanes::Scale(pixels, below_, keep_); }

private:
    static constexpr int32_t kHalf = 32768;
    explicit VectorFade(int32_t keep)
        : below_(Lanes::Splat(static_cast<uint8_t>((kHalf + keep - 1) / keep))),
          keep_(typename Lanes::Halves{} + static_cast<uint16_t>(keep)) {}

    const typename Lanes::Bytes below_;
    const typename Lanes::Halves keep_;
};

// The weights add up to 256, so every sum fits a half.
template <typename Lanes>
class VectorFade<Lanes, FadeKind::kToColor> {
public:
    using Bytes = typename Lanes::Bytes;
    using Halves = typename Lanes::Halves;

    explicit VectorFade(const EffectPass& pass)
        : keep_(Halves{} + static_cast<uint16_t>(kOffsetUnit - pass.fade)),
          even_(Tint(pass.fadeColor, pass.fade)),
          odd_(Tint(pass.fadeColor >> 8, pass.fade)) {}

    Bytes operator()(Bytes pixels) const {
        const Halves even = ((Halves(pixels) & low_) * keep_ + even_) >> 8;
        const Halves odd = ((Halves(pixels) >> 8) * keep_ + odd_) & ~low_;
        return Bytes(even | odd);
    }

private:
    static Halves Tint(uint32_t color, int32_t weight) {
        constexpr uint32_t kEven = 0x00FF00FF, kRound = 0x00800080;
        return Halves(Lanes::SplatPixel((color & kEven) * static_cast<uint32_t>(weight) + kRound));
    }

    const Halves low_ = Halves{} + uint16_t{0xFF};
    const Halves keep_, even_, odd_;
};

}  // namespace tdkviz
