// The loops behind a RowTable. Each file that includes this gets loops of its own, built for its instruction set, so
// everything here is local to it.
#pragma once

#include "companions/qzcolor/RowTable.h"
#include "companions/qzcolor/RowVectors.h"

namespace qzcolor {
namespace {

// A pixel of each format, from 0x??RRGGBB.
struct Rgb32 {
    template <typename T>
    static T From(T p) {
        return p;
    }
};
struct Argb {
    template <typename T>
    static T From(T p) {
        return p | 0xFF000000;
    }
};
struct Bgr32 {
    template <typename T>
    static T From(T p) {
        return (p & 0xFF) << 16 | (p & 0xFF00) | (p >> 16 & 0xFF);
    }
};

// 16 bits a pixel: red and blue are spread to their places by one multiplication each, which adds them up, too.
template <bool kSixBitGreen, bool kRedIsLow>
struct HalfPixel {
    static constexpr uint32_t kFives = 0x00F800F8, kGreen = kSixBitGreen ? 0xFC00 : 0xF800;
    static constexpr uint32_t kToLow = kSixBitGreen ? 4 : 8, kToHigh = 0x2000;
    static constexpr uint32_t kFactors = kRedIsLow ? kToLow << 16 | kToHigh : kToHigh << 16 | kToLow;
    static constexpr int kRaise = kSixBitGreen ? 11 : 10;
    // In the high half, above zeros.
    template <typename T>
    static T Raised(T p) {
        return (SumOfProducts(p & kFives, T{} + kFactors) | (p & kGreen)) << kRaise;
    }
};
using Rgb565 = HalfPixel<true, false>;
using Rgb555 = HalfPixel<false, false>;
using Bgr565 = HalfPixel<true, true>;
using Bgr555 = HalfPixel<false, true>;

template <typename Pixel>
void PackWords(const uint8_t* from, uint8_t* to, int32_t count) {
    const Word32* in = reinterpret_cast<const Word32*>(from);
    Word32* out = reinterpret_cast<Word32*>(to);
#pragma GCC ivdep
    for (int32_t x = 0; x < count; ++x) out[x] = Pixel::From(uint32_t{in[x]});
}

template <typename Pixel>
void PackHalves(const uint8_t* __restrict from, uint8_t* __restrict to, int32_t count) {
    const Word32* in = reinterpret_cast<const Word32*>(from);
    Word16* out = reinterpret_cast<Word16*>(to);
    int32_t x = 0;
#ifdef __SSE2__
    for (; x + 2 * kLanes <= count; x += 2 * kLanes) {
        Store(out + x, PackHighHalves(Pixel::Raised(Load(in + x)), Pixel::Raised(Load(in + x + kLanes))));
    }
#endif
    for (; x < count; ++x) out[x] = static_cast<uint16_t>(Pixel::Raised(uint32_t{in[x]}) >> 16);
}

// Calls `put` with the first pixel of one vector after the other, for at least one vector of source pixels. The first
// and the last overlap their neighbours, so that no store in between crosses a cache line; `pixelBytes` of `out` are
// written for each.
template <typename Put>
void ForEachVector(const uint8_t* out, int32_t pixelBytes, int32_t count, const Put& put) {
    put(0);
    int32_t x = static_cast<int32_t>(-reinterpret_cast<uintptr_t>(out) % kVectorBytes) / pixelBytes;
    for (; x + kLanes <= count; x += kLanes) put(x);
    if (x < count) put(count - kLanes);
}

template <typename Pixel>
void DoubleWordsInto(const Word32* __restrict in, Word64* __restrict out, int32_t count) {
    if (count >= kLanes) {
        return ForEachVector(reinterpret_cast<const uint8_t*>(out), sizeof *out, count, [&](int32_t x) {
            Words left, right;
            Twice(Pixel::From(Load(in + x)), left, right);
            Store(out + x, left);
            Store(out + x + kLanes / 2, right);
        });
    }
    for (int32_t x = 0; x < count; ++x) {
        const uint64_t pixel = Pixel::From(uint32_t{in[x]});
        out[x] = pixel << 32 | pixel;
    }
}

// One row after the other: more than two streams of stores at a time get in each other's way.
template <typename Pixel>
void DoubleWords(const uint8_t* from, uint8_t* upper, uint8_t* lower, int32_t count) {
    const Word32* in = reinterpret_cast<const Word32*>(from);
    DoubleWordsInto<Pixel>(in, reinterpret_cast<Word64*>(upper), count);
    DoubleWordsInto<Pixel>(in, reinterpret_cast<Word64*>(lower), count);
}

// Two pixels of 16 bits are one word, so reading and writing go in step.
template <typename Pixel>
void DoubleHalves(const uint8_t* __restrict from, uint8_t* __restrict upper, uint8_t* __restrict lower, int32_t count) {
    const Word32* in = reinterpret_cast<const Word32*>(from);
    Word32* out0 = reinterpret_cast<Word32*>(upper);
    Word32* out1 = reinterpret_cast<Word32*>(lower);
    const auto twice = [](auto pixels) {
        const auto raised = Pixel::Raised(pixels);
        return raised | raised >> 16;
    };
    if (count >= kLanes) {
        return ForEachVector(upper, sizeof *out0, count, [&](int32_t x) {
            const Words words = twice(Load(in + x));
            Store(out0 + x, words);
            Store(out1 + x, words);
        });
    }
    for (int32_t x = 0; x < count; ++x) out0[x] = out1[x] = twice(uint32_t{in[x]});
}

// Two colours of a pixel, in the low bytes of its halves, with 16 bits of room: they never run into each other. The
// others come out in the high bytes.
Words Mix(Words leftWords, Words rightWords, Words weights) {
    constexpr uint16_t kLow = 0x00FF, kHigh = 0xFF00, kRound = 0x0080;
    const auto left = reinterpret_cast<Halves>(leftWords), right = reinterpret_cast<Halves>(rightWords),
               weight = reinterpret_cast<Halves>(weights);
    const Halves low = (left << 8) + ((right & kLow) - (left & kLow)) * weight + kRound;
    const Halves high = (left & kHigh) + ((right >> 8) - (left >> 8)) * weight + kRound;
    return reinterpret_cast<Words>((low >> 8) | (high & kHigh));
}

void MixWords(const uint8_t* __restrict from, const int32_t* __restrict places, const uint32_t* __restrict weights,
              uint8_t* __restrict to, int32_t count) {
    const Word32* in = reinterpret_cast<const Word32*>(from);
    Word32* out = reinterpret_cast<Word32*>(to);
    Words left, right;
    int32_t x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        LoadNeighbours(in, places + x, left, right);
        Store(out + x, Mix(left, right, Load(weights + x)));
    }
    if (x == count) return;
    // The rest goes through a vector that is filled with its last pixel.
    int32_t lastPlaces[kLanes];
    Words lastWeights;
    for (int i = 0; i < kLanes; ++i) {
        const int32_t at = x + i < count ? x + i : count - 1;
        lastPlaces[i] = places[at];
        lastWeights[i] = weights[at];
    }
    LoadNeighbours(in, lastPlaces, left, right);
    const Words mixed = Mix(left, right, lastWeights);
    std::memcpy(out + x, &mixed, static_cast<size_t>(count - x) * sizeof(uint32_t));
}

constexpr RowTable MakeRowTable() {
    RowTable table = {};
    table.Mix = MixWords;
    const auto words = [&]<typename Pixel>(FormatId format, Pixel) {
        table.Pack[format] = PackWords<Pixel>;
        table.Double[format] = DoubleWords<Pixel>;
    };
    const auto halves = [&]<typename Pixel>(FormatId format, Pixel) {
        table.Pack[format] = PackHalves<Pixel>;
        table.Double[format] = DoubleHalves<Pixel>;
    };
    words(FormatRGB32, Rgb32());
    words(FormatARGB, Argb());
    table.Double[FormatBGR32] = DoubleWords<Bgr32>;  // libyuv packs them faster
    halves(FormatRGB565, Rgb565());
    halves(FormatRGB555, Rgb555());
    halves(FormatBGR565, Bgr565());
    halves(FormatBGR555, Bgr555());
    return table;
}

}  // namespace
}  // namespace qzcolor
