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

    // Pixels of the destination that one vector of source pixels serves: fewer than it holds if pixels are
    // skipped.
    static constexpr int32_t AdvanceOf(int32_t stepX) {
        return stepX <= kOffsetUnit ? kPixels : (kPixels - 1) * kOffsetUnit / stepX + 1;
    }

    template <bool kLastRow>
    [[gnu::always_inline]] void Row(int32_t y, uint8_t* out) const {
        const int32_t u = pass_.width >> 1, v = (pass_.height >> 1) - y;
        const int32_t atX = u * WholePixels(pass_.zoomX) + pass_.jitterX + v * WholePixels(pass_.rotate) + pass_.slideX;
        const int32_t atY = y * kOffsetUnit - u * WholePixels(pass_.rotate) + pass_.jitterY +
                            v * WholePixels(pass_.zoomY) + pass_.slideY;
        const int32_t from = ColumnAt(range_.lowX * kOffsetUnit, atX);
        const int32_t to = std::max(from, ColumnAt((range_.highX + 1) * kOffsetUnit, atX));
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
        for (atY += x * stepY_; x < end;) {
            const int32_t count = std::min(rowRuns_.ColumnsFrom(atY), end - x), sourceY = WholePixels(atY);
            const int32_t limited = range_.LimitY(sourceY);
            const bool shows = pass_.clamp || limited == sourceY;
            run(shows ? pass_.source + limited * pass_.sourcePitch : nullptr, x, count);
            x += count;
            atY += count * stepY_;
        }
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

    // `count` pixels whose sources lie side by side from column `x` on.
    template <bool kLastRow>
    [[gnu::always_inline]] void SideBySide(const uint8_t* row, int32_t x, int32_t count, uint8_t* out) const {
        const Shader shade = shade_;
        const uint8_t* source = row + x * kPixelBytes;
        if constexpr (kKernel <= 1 && kFade == FadeKind::kNone) {
            std::memcpy(out, source, static_cast<size_t>(count) * kPixelBytes);
            return;
        }
        const int32_t room = pass_.width - 1 - x;  // pixels up to the last that has neighbours
        const int32_t whole = std::min(count, room) / kPixels;
#pragma GCC unroll 4
        for (int32_t i = 0; i < whole; ++i) {
            Lanes::Store(out + i * kPixels * kPixelBytes, shade(source + i * kPixels * kPixelBytes));
        }
        source += whole * kPixels * kPixelBytes;
        out += whole * kPixels * kPixelBytes;
        count -= whole * kPixels;
        if (count > 0 && room - whole * kPixels >= kPixels) {
            Store<kLastRow>(out, shade(source), count);
            return;
        }
        for (; count > 0; --count) {
            StorePixel(out, shadeOne_(source));
            source += kPixelBytes;
            out += kPixelBytes;
        }
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

}  // namespace tdkviz
