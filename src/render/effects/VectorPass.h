// The 32-bit path in vectors, for coordinates that are linear along a row.
//
// Blur and fade commute with the choice of the source pixel. So pixels are shaded where they lie side by
// side in the source, a vector at a time, and only then brought to their places:
//  1. A row of the destination is cut where the source row changes; what has no source is filled.
//  2. Where lanes permute freely, a vector of shaded pixels is put in order by one permutation.
//  3. Where they don't, a stretch is cut again where the source column jumps.
// Vectors are stored whole from left to right: what spills over is written again by what follows, and only
// the last row needs care. No load leaves the source's rows.
#pragma once

#include <algorithm>
#include <array>
#include <utility>

#include "src/render/effects/Blur32.h"
#include "src/render/effects/EffectPass.h"
#include "src/render/effects/Fade32.h"
#include "src/render/effects/VectorLanes.h"
#include "src/render/effects/VectorShade.h"

namespace tdkviz {
namespace {  // see Blur32.h

// How many columns it takes until a coordinate that drifts by a few 1/256 pixel a column enters another pixel.
class DriftTable {
public:
    static constexpr int32_t kMaxDrift = 64;

    explicit DriftTable(int32_t drift)
        : reciprocal_(drift == 0 ? 0 : kUnit / static_cast<uint32_t>(drift < 0 ? -drift : drift) + 1),
          rises_(drift > 0) {}
    // From a column at `position`, which counts: at least 1.
    int32_t ColumnsFrom(int32_t position) const {
        if (reciprocal_ == 0) return INT32_MAX;
        const uint32_t fraction = static_cast<uint32_t>(position) & kFraction;
        return static_cast<int32_t>(((rises_ ? kFraction - fraction : fraction) * reciprocal_) / kUnit) + 1;
    }

private:
    static constexpr uint32_t kFraction = kOffsetUnit - 1, kUnit = 1 << 16;
    const uint32_t reciprocal_;
    const bool rises_;
};

template <typename Lanes, int kKernel, FadeKind kFade>
class VectorPass {
public:
    explicit VectorPass(const EffectPass& pass)
        : pass_(pass),
          range_(pass),
          shadeOne_(pass),
          shade_{VectorBlur<Lanes, kKernel>(pass.sourcePitch), VectorFade<Lanes, kFade>(pass)},
          stepX_(kOffsetUnit - WholePixels(pass.zoomX)),
          stepY_(WholePixels(pass.rotate)),
          advance_(AdvanceOf(stepX_)),
          columnRuns_(stepX_ - kOffsetUnit),
          rowRuns_(stepY_) {
        for (int32_t i = 0; i < kPixels; ++i) ramp_[i] = static_cast<uint32_t>(i * stepX_);
    }

    // Whether the pass is one that this class does well.
    static bool Serves(const EffectPass& pass) {
        const int32_t stepX = kOffsetUnit - WholePixels(pass.zoomX), stepY = WholePixels(pass.rotate);
        const auto isSmall = [](int32_t drift) {
            return drift >= -DriftTable::kMaxDrift && drift <= DriftTable::kMaxDrift;
        };
        return pass.width >= kPixels + 2 && pass.height >= 3 && isSmall(stepX - kOffsetUnit) && isSmall(stepY);
    }

    void Run() const {
        if (stepX_ == kOffsetUnit && stepY_ == 0) return RunStraight();
        uint8_t* row = pass_.destination;
        const int32_t last = pass_.height - 1;
        for (int32_t y = 0; y < last; ++y) {
            Row<false>(y, row);
            row += static_cast<ptrdiff_t>(pass_.width) * kPixelBytes;
        }
        Row<true>(last, row);
    }

private:
    using Bytes = typename Lanes::Bytes;
    using Words = typename Lanes::Words;
    static constexpr int32_t kPixels = Lanes::kPixels;
    static constexpr int32_t kPixelBytes = 4;
    static constexpr int32_t kWorthAligning = 8 * kPixels;

    // Pixels of the destination that one vector of source pixels serves: fewer than it holds if pixels are
    // skipped.
    static constexpr int32_t AdvanceOf(int32_t stepX) {
        return stepX <= kOffsetUnit ? kPixels : (kPixels - 1) * kOffsetUnit / stepX + 1;
    }

    // Every row of the destination is a piece of one source row.
    void RunStraight() const {
        const auto [from, to] = ColumnsAt(StartX(0));
        const int32_t firstX = WholePixels(StartX(0)) + from;
        uint8_t* row = pass_.destination;
        for (int32_t y = 0; y < pass_.height; ++y) {
            const uint8_t* source = SourceRow(WholePixels(StartY(y)));
            if (source) {
                Fill(row, from, EdgePixel(source, range_.lowX));
                if (from < to) SideBySide<true>(source, firstX, to - from, row + from * kPixelBytes);
                Fill(row + to * kPixelBytes, pass_.width - to, EdgePixel(source, range_.highX));
            } else {
                Fill(row, pass_.width, pass_.fadeColor);
            }
            row += static_cast<ptrdiff_t>(pass_.width) * kPixelBytes;
        }
    }

    template <bool kLastRow>
    [[gnu::always_inline]] void Row(int32_t y, uint8_t* out) const {
        const int32_t atX = StartX(y), atY = StartY(y);
        const auto [from, to] = ColumnsAt(atX);
        const auto fill = [&](int32_t x, int32_t end, int32_t edge) {
            ForEachRun(x, end, atY, [&](const uint8_t* source, int32_t begin, int32_t count) {
                Fill(out + begin * kPixelBytes, count, EdgePixel(source, edge));
            });
        };
        fill(0, from, range_.lowX);
        ForEachRun(from, to, atY, [&](const uint8_t* source, int32_t x, int32_t count) {
            if (source) {
                Stretch<kLastRow>(source, atX + x * stepX_, count, out + x * kPixelBytes);
            } else {
                Fill(out + x * kPixelBytes, count, pass_.fadeColor);
            }
        });
        fill(to, pass_.width, range_.highX);
    }

    // Calls `run` with the source row, the first column and the number of columns for each run of columns from
    // `x` to `end` that has one source row. The row is null if that is beyond the edge and edges don't repeat.
    template <typename Run>
    [[gnu::always_inline]] void ForEachRun(int32_t x, int32_t end, int32_t atY, const Run& run) const {
        // Copies, which stay in registers: a store into the frame might change any field.
        const DriftTable runs = rowRuns_;
        const int32_t step = stepY_;
        int32_t at = atY + x * step;
        while (x < end) {
            const int32_t count = std::min(runs.ColumnsFrom(at), end - x), sourceY = WholePixels(at), begin = x;
            x += count;
            at += count * step;
            run(SourceRow(sourceY), begin, count);
        }
    }

    // The columns of a row that have a source.
    struct Columns {
        int32_t from, to;
    };
    Columns ColumnsAt(int32_t atX) const {
        const int32_t from = ColumnAt(range_.lowX * kOffsetUnit, atX);
        return {from, std::max(from, ColumnAt((range_.highX + 1) * kOffsetUnit, atX))};
    }
    // The source position of the first column of a row.
    int32_t StartX(int32_t y) const {
        return (pass_.width >> 1) * WholePixels(pass_.zoomX) + pass_.jitterX +
               ((pass_.height >> 1) - y) * WholePixels(pass_.rotate) + pass_.slideX;
    }
    int32_t StartY(int32_t y) const {
        return y * kOffsetUnit - (pass_.width >> 1) * WholePixels(pass_.rotate) + pass_.jitterY +
               ((pass_.height >> 1) - y) * WholePixels(pass_.zoomY) + pass_.slideY;
    }
    // Null beyond the edge if edges don't repeat.
    const uint8_t* SourceRow(int32_t y) const {
        const int32_t limited = range_.LimitY(y);
        return pass_.clamp || limited == y ? pass_.source + limited * pass_.sourcePitch : nullptr;
    }
    // The first column of a row whose source position is at least `position`, for a row that begins at `atX`.
    int32_t ColumnAt(int32_t position, int32_t atX) const {
        return position <= atX ? 0
                               : static_cast<int32_t>(
                                     std::min<int64_t>(pass_.width, (int64_t{position} - atX + stepX_ - 1) / stepX_));
    }
    uint32_t EdgePixel(const uint8_t* row, int32_t x) const {
        return pass_.clamp ? shadeOne_(row + x * kPixelBytes) : pass_.fadeColor;
    }
    static void Fill(uint8_t* out, int32_t count, uint32_t pixel) {
        for (int32_t i = 0; i < count; ++i) StorePixel(out + i * kPixelBytes, pixel);
    }

    // `count` pixels that all have a source in `row`, from the source position `at` on.
    template <bool kLastRow>
    [[gnu::always_inline]] void Stretch(const uint8_t* row, int32_t at, int32_t count, uint8_t* out) const {
        if (stepX_ == kOffsetUnit) {
            SideBySide<kLastRow>(row, WholePixels(at), count, out);
        } else if constexpr (Lanes::kPermutes) {
            Permuted<kLastRow>(row, at, count, out);
        } else {
            while (count > 0) {
                const int32_t run = std::min(count, columnRuns_.ColumnsFrom(at));
                SideBySide<kLastRow>(row, WholePixels(at), run, out);
                at += run * stepX_;
                out += static_cast<ptrdiff_t>(run) * kPixelBytes;
                count -= run;
            }
        }
    }

    template <bool kLastRow>
    [[gnu::always_inline]] void Permuted(const uint8_t* row, int32_t at, int32_t count, uint8_t* out) const {
        // Copies, which stay in registers: a store into the frame might change any field.
        const Shader shade = shade_;
        const Words ramp = ramp_;
        const int32_t lastBase = pass_.width - 1 - kPixels, advance = advance_, step = advance * stepX_;
        const auto block = [&](int32_t base) {
            const Words position = ramp + static_cast<uint32_t>(at - base * kOffsetUnit);
            const Bytes pixels = Lanes::Permute(shade(row + base * kPixelBytes), position >> kOffsetBits);
            Store<kLastRow>(out, pixels, std::min(count, advance));
            at += step;
            out += static_cast<ptrdiff_t>(advance) * kPixelBytes;
            count -= advance;
        };
        // Up to the last column from which a whole vector of source pixels can be read.
        int32_t beyond = 0;
        if (WholePixels(at + (count - 1) * stepX_) > lastBase) {
            beyond = count - std::clamp(((lastBase + 1) * kOffsetUnit - at + stepX_ - 1) / stepX_, 0, count);
        }
#pragma GCC unroll 2
        while (count > beyond) block(WholePixels(at));
        while (count > 0) block(lastBase);
    }

    // How many pixels lie before the next address at which a vector is aligned.
    static int32_t PixelsToAlignment(const uint8_t* out) {
        return static_cast<int32_t>(-reinterpret_cast<uintptr_t>(out) % sizeof(Bytes)) / kPixelBytes;
    }

    // `count` pixels, at least one, whose sources lie side by side from column `x` on.
    template <bool kLastRow>
    [[gnu::always_inline]] void SideBySide(const uint8_t* row, int32_t x, int32_t count, uint8_t* out) const {
        const Shader shade = shade_;
        const uint8_t* source = row + x * kPixelBytes;
        if (count >= kPixels) {
            Vectors(shade, source, count, out);
        } else if (pass_.width - 1 - x >= kPixels) {
            Store<kLastRow>(out, shade(source), count);
        } else {
            for (int32_t i = 0; i < count; ++i) StorePixel(out + i * kPixelBytes, shadeOne_(source + i * kPixelBytes));
        }
    }

    // The same for at least one vector of pixels. Vectors overlap at both ends, so nothing is done singly, and in
    // between no store of a long stretch crosses a cache line.
    template <typename Shader>
    [[gnu::always_inline]] static void Vectors(const Shader& shade, const uint8_t* source, int32_t count,
                                               uint8_t* out) {
        const auto put = [&](int32_t pixel) __attribute__((always_inline)) {
            Lanes::Store(out + pixel * kPixelBytes, shade(source + pixel * kPixelBytes));
        };
        int32_t next = 0;
        if (count >= kWorthAligning) {
            put(0);
            next = PixelsToAlignment(out);
        }
        const int32_t whole = (count - next) / kPixels;
#pragma GCC unroll 4
        for (int32_t i = 0; i < whole; ++i) put(next + i * kPixels);
        if (next + whole * kPixels < count) put(count - kPixels);
    }

    // `count` pixels of the vector, or all of it where it may spill over into what is written next.
    template <bool kLastRow>
    [[gnu::always_inline]] void Store(uint8_t* out, Bytes pixels, int32_t count) const {
        if (kLastRow && count < kPixels) {
            std::memcpy(out, &pixels, static_cast<size_t>(count) * kPixelBytes);
        } else {
            Lanes::Store(out, pixels);
        }
    }

    struct Shader {
        VectorBlur<Lanes, kKernel> blur;
        VectorFade<Lanes, kFade> fade;
        [[gnu::always_inline]] Bytes operator()(const uint8_t* centre) const { return fade(blur(centre)); }
    };

    class ShadeOne {
    public:
        explicit ShadeOne(const EffectPass& pass) : pitch_(pass.sourcePitch), fade_(pass) {}
        uint32_t operator()(const uint8_t* centre) const {
            return fade_(Blur32<kKernel>(InnerReader{centre, kPixelBytes, pitch_}));
        }

    private:
        const ptrdiff_t pitch_;
        const Fade32<kFade != FadeKind::kNone> fade_;
    };

    const EffectPass pass_;
    const SourceRange range_;
    const ShadeOne shadeOne_;
    const Shader shade_;
    // Source positions are in 1/256 pixel: a column steps by this much.
    const int32_t stepX_, stepY_;
    const int32_t advance_;
    const DriftTable columnRuns_, rowRuns_;
    Words ramp_;
};

template <typename Lanes, int kKernel, FadeKind kFade>
void RunVectorPass(const EffectPass& pass) {
    VectorPass<Lanes, kKernel, kFade>(pass).Run();
}

// Finds the function for a pass that Lanes serves, else null.
template <typename Lanes>
EffectPassFunction FindVectorPass(const EffectPass& pass) {
    constexpr auto kPasses = []<int... kKernels>(std::integer_sequence<int, kKernels...>) {
        return std::array{std::array{&RunVectorPass<Lanes, kKernels, FadeKind::kNone>,
                                     &RunVectorPass<Lanes, kKernels, FadeKind::kToBlack>,
                                     &RunVectorPass<Lanes, kKernels, FadeKind::kToColor>}...};
    }
    (std::make_integer_sequence<int, kKernelCount>());
    constexpr int kPixelBytes = 4;
    if (pass.bytesPerPixel != kPixelBytes || !pass.FadeIsBlend() || !pass.IsLinear()) return nullptr;
    if (!VectorPass<Lanes, 0, FadeKind::kNone>::Serves(pass)) return nullptr;
    return kPasses[static_cast<size_t>(pass.kernel)][static_cast<size_t>(FadeKindOf(pass))];
}

}  // namespace
}  // namespace tdkviz
