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

    explicit VectorBlur(ptrdiff_t pitch) : pitch_(pitch) {
        for (size_t i = 0; i < sizeof(Bytes); ++i) eighthsRest_[i] = static_cast<uint8_t>(kEighthsRest[i % kEighths]);
    }

    Bytes operator()(const uint8_t* centre) const {
        const auto p = [&](int dx, int dy) { return Lanes::Load(centre + dx * 4 + dy * pitch_); };
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
    static constexpr size_t kEighths = 8;
    static constexpr int8_t kEighthsRest[kEighths] = {0, 0, 1, 1, -1, -1, 0, 0};

    // c / 2 + c / 4 + c / 8 + cross / 8, each rounded down, and the low two bits of c; cross is a multiple of 8.
    Bytes WithEighths(Bytes c, Bytes cross) const {
        if constexpr (Lanes::kPermutes) {
            // The terms of c are c - c / 8 and a rest, which only the low three bits of c tell.
            const Bytes own =
                c - Lanes::template ShiftRight<3>(c) + Lanes::LookUp(eighthsRest_, c & Lanes::Splat(kEighths - 1));
            return own + Lanes::template ShiftRightExact<3>(cross);
        } else {
            const Bytes eighths = Lanes::Average(c & Lanes::Splat(0xF8), cross);  // four of them, exactly
            return Lanes::Average(c, Bytes{}) + Lanes::template ShiftRight<2>(c) + (c & Lanes::Splat(2)) +
                   Lanes::template ShiftRightExact<2>(eighths);
        }
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

    // The low three bytes of each pixel; the top one becomes 0. 21845 is 65536 / 3 rounded down.
    static Bytes OfThree(Bytes a, Bytes b, Bytes c) {
        constexpr uint16_t kThird = 21845, kRound = 3, kLow = 0xFF;
        const Halves low = Halves{} + kLow, round = Halves{} + kRound, third = Halves{} + kThird;
        const Halves thirdOfLowest = Halves(Lanes::SplatPixel(kThird));
        const Halves even = (Halves(a) & low) + (Halves(b) & low) + (Halves(c) & low) + round;
        const Halves odd = (Halves(a) >> 8) + (Halves(b) >> 8) + (Halves(c) >> 8) + round;
        return Bytes(Lanes::MulHigh(even, third) | (Lanes::MulHigh(odd, thirdOfLowest) << 8));
    }

    const ptrdiff_t pitch_;
    Bytes eighthsRest_;
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
