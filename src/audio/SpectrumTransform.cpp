// Four numbers at a time, in vectors that every processor of 64 bits has. Real and imaginary parts stand in
// arrays of their own. The stages of the FFT whose butterflies span four points or more run along the
// arrays; for the last two, blocks of 16 points are transposed, so that a butterfly's ends come to lie in
// two vectors. What the transposition and the FFT do to the order is left to SpectrumTables::BandAt.
#include "src/audio/SpectrumTransform.h"

#include <array>
#include <cstring>

namespace tdkviz {
namespace {

constexpr int kLanes = 4;
constexpr int kHalf = kTransformBands / 2;
typedef float Floats __attribute__((vector_size(kLanes * sizeof(float))));

Floats Load(const float* at) {
    Floats floats;
    std::memcpy(&floats, at, sizeof floats);
    return floats;
}
void Store(float* at, Floats floats) {
    std::memcpy(at, &floats, sizeof floats);
}
Floats Splat(float value) {
    return Floats{value, value, value, value};
}
Floats Reversed(Floats a) {
    return __builtin_shufflevector(a, a, 3, 2, 1, 0);
}
Floats Evens(Floats a, Floats b) {
    return __builtin_shufflevector(a, b, 0, 2, 4, 6);
}
Floats Odds(Floats a, Floats b) {
    return __builtin_shufflevector(a, b, 1, 3, 5, 7);
}

void Transpose(std::array<Floats, kLanes>& rows) {
    const Floats low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Floats high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Floats low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Floats high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

struct ComplexPoints {
    alignas(Floats) std::array<float, kFftPoints> Real;
    alignas(Floats) std::array<float, kFftPoints> Imaginary;
};

// 512 windowed samples to the 256 of the DCT-IV.
void Fold(const SpectrumTables& tables, const float* x, float* u) {
    const float* w = tables.Window.data();
    for (int i = 0; i < kHalf; i += kLanes) {
        const int mirrored = kHalf - kLanes - i;  // of i to i + 3, the last first
        const Floats rising = Load(w + mirrored), falling = Load(w + kHalf + i);
        Store(u + i, Reversed(rising * Load(x + mirrored)) + falling * Load(x + kHalf + i));
        const Floats late = falling * Reversed(Load(x + 3 * kHalf - kLanes - i));
        const Floats last = Reversed(rising) * Load(x + 3 * kHalf + i);
        Store(u + 2 * kHalf - kLanes - i, Reversed(late - last));
    }
}

void RotateIn(const SpectrumTables& tables, const float* u, ComplexPoints& z) {
    for (int j = 0; j < kFftPoints; j += kLanes) {
        const float* front = u + 2 * j;
        const float* back = u + kTransformBands - 2 * kLanes - 2 * j;
        const Floats a = Evens(Load(front), Load(front + kLanes));
        const Floats b = Reversed(Odds(Load(back), Load(back + kLanes)));
        const Floats c = Load(&tables.PreCos[j]), s = Load(&tables.PreSin[j]);
        Store(&z.Real[j], c * a + s * b);
        Store(&z.Imaginary[j], c * b - s * a);
    }
}

// The first two stages of the FFT at once, over the four quarters.
void FirstTwoStages(ComplexPoints& z) {
    constexpr int kQuarter = kFftPoints / 4;
    for (int at = 0; at < kQuarter; at += kLanes) {
        float* re = &z.Real[at];
        float* im = &z.Imaginary[at];
        const Floats aRe = Load(re), bRe = Load(re + kQuarter), cRe = Load(re + 2 * kQuarter),
                     dRe = Load(re + 3 * kQuarter);
        const Floats aIm = Load(im), bIm = Load(im + kQuarter), cIm = Load(im + 2 * kQuarter),
                     dIm = Load(im + 3 * kQuarter);
        const Floats sumAcRe = aRe + cRe, sumAcIm = aIm + cIm, difAcRe = aRe - cRe, difAcIm = aIm - cIm;
        const Floats sumBdRe = bRe + dRe, sumBdIm = bIm + dIm, difBdRe = bRe - dRe, difBdIm = bIm - dIm;
        Store(re, sumAcRe + sumBdRe);
        Store(im, sumAcIm + sumBdIm);
        Store(re + kQuarter, sumAcRe - sumBdRe);
        Store(im + kQuarter, sumAcIm - sumBdIm);
        Store(re + 2 * kQuarter, difAcRe + difBdIm);
        Store(im + 2 * kQuarter, difAcIm - difBdRe);
        Store(re + 3 * kQuarter, difAcRe - difBdIm);
        Store(im + 3 * kQuarter, difAcIm + difBdRe);
    }
}

struct Twiddle {
    Floats c, s;
};

void Butterfly(Floats& pRe, Floats& pIm, Floats& qRe, Floats& qIm, const Twiddle& twiddle) {
    const Floats tRe = qRe * twiddle.c + qIm * twiddle.s;
    const Floats tIm = qIm * twiddle.c - qRe * twiddle.s;
    qRe = pRe - tRe;
    qIm = pIm - tIm;
    pRe = pRe + tRe;
    pIm = pIm + tIm;
}

// One stage of 64 butterflies in kGroups groups, one twiddle to a group.
template <int kGroups>
void Stage(const SpectrumTables& tables, ComplexPoints& z) {
    constexpr int kSpan = kFftPoints / 2 / kGroups;
    static_assert(kSpan >= kLanes);
    for (int group = 0; group < kGroups; ++group) {
        const Twiddle twiddle{Splat(tables.TwiddleCos[group]), Splat(tables.TwiddleSin[group])};
        for (int p = 2 * kSpan * group; p < 2 * kSpan * group + kSpan; p += kLanes) {
            float* re = &z.Real[p];
            float* im = &z.Imaginary[p];
            Floats pRe = Load(re), pIm = Load(im), qRe = Load(re + kSpan), qIm = Load(im + kSpan);
            Butterfly(pRe, pIm, qRe, qIm, twiddle);
            Store(re, pRe);
            Store(im, pIm);
            Store(re + kSpan, qRe);
            Store(im + kSpan, qIm);
        }
    }
}

// The stages of 32 and 64 groups, and the rotation out of the frequency domain, over 16 points. Once they are
// transposed, lane l of row r is point 4 l + r.
void LastStagesAndRotateOut(const SpectrumTables& tables, const ComplexPoints& z, int block, float* coefficients) {
    constexpr int kPoints = kLanes * kLanes;
    std::array<Floats, kLanes> re, im;
    for (int row = 0; row < kLanes; ++row) {
        re[row] = Load(&z.Real[block * kPoints + row * kLanes]);
        im[row] = Load(&z.Imaginary[block * kPoints + row * kLanes]);
    }
    Transpose(re);
    Transpose(im);
    const float* c = tables.TwiddleCos.data();
    const float* s = tables.TwiddleSin.data();
    const Twiddle ofFour{Load(c + block * kLanes), Load(s + block * kLanes)};
    Butterfly(re[0], im[0], re[2], im[2], ofFour);
    Butterfly(re[1], im[1], re[3], im[3], ofFour);
    c += 2 * block * kLanes;
    s += 2 * block * kLanes;
    Butterfly(re[0], im[0], re[1], im[1], {Evens(Load(c), Load(c + kLanes)), Evens(Load(s), Load(s + kLanes))});
    Butterfly(re[2], im[2], re[3], im[3], {Odds(Load(c), Load(c + kLanes)), Odds(Load(s), Load(s + kLanes))});
    for (int row = 0; row < kLanes; ++row) {
        const int at = block * kPoints + row * kLanes;
        const Floats p = Load(&tables.PostP[at]), q = Load(&tables.PostQ[at]);
        Store(coefficients + at, p * re[row] + q * im[row]);
        Store(coefficients + kFftPoints + at, q * re[row] - p * im[row]);
    }
}

}  // namespace

void TransformSamples(const SpectrumTables& tables, const float* samples, float* coefficients) {
    alignas(Floats) std::array<float, kTransformBands> folded;
    ComplexPoints points;
    Fold(tables, samples, folded.data());
    RotateIn(tables, folded.data(), points);
    FirstTwoStages(points);
    Stage<4>(tables, points);
    Stage<8>(tables, points);
    Stage<16>(tables, points);
    for (int block = 0; block < kFftPoints / (kLanes * kLanes); ++block) {
        LastStagesAndRotateOut(tables, points, block, coefficients);
    }
}

}  // namespace tdkviz
