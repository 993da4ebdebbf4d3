#include "src/audio/SpectrumAnalyser.h"

#include <algorithm>
#include <new>

#include "src/audio/FrameRate.h"

namespace tdkviz {
namespace {

// A new spectrum takes nothing from the one before.
constexpr float kSmoothing = 0.0F;

constexpr int kHalf = kTransformBands / 2;
constexpr int kUnrolled = 4;

struct ComplexPoints {
    std::array<float, kFftPoints> Real;
    std::array<float, kFftPoints> Imaginary;
};

// Runs step(0) to step(count - 1), four to a round; count is a multiple of 4.
template <typename Step>
inline void UnrolledByFour(int count, Step step) {
    for (int i = 0; i < count; i += kUnrolled) {
        step(i);
        step(i + 1);
        step(i + 2);
        step(i + 3);
    }
}

// 512 windowed samples to the 256 of the DCT-IV.
void Fold(const SpectrumTables& tables, const float* x, float* u) {
    const float* w = tables.Window.data();
    UnrolledByFour(kHalf, [=](int i) {
        u[i] = w[kHalf - 1 - i] * x[kHalf - 1 - i] + w[kHalf + i] * x[kHalf + i];
        u[2 * kHalf - 1 - i] = w[kHalf + i] * x[3 * kHalf - 1 - i] - w[kHalf - 1 - i] * x[3 * kHalf + i];
    });
}

void RotateIn(const SpectrumTables& tables, const float* u, ComplexPoints& z) {
    UnrolledByFour(kFftPoints, [&](int j) {
        const float a = u[2 * j];
        const float b = u[kTransformBands - 1 - 2 * j];
        z.Real[j] = tables.PreCos[j] * a + tables.PreSin[j] * b;
        z.Imaginary[j] = tables.PreCos[j] * b - tables.PreSin[j] * a;
    });
}

// The first two stages of the FFT at once, over the four quarters.
void FirstTwoStages(ComplexPoints& z) {
    constexpr int kQuarter = kFftPoints / 4;
    float* re = z.Real.data();
    float* im = z.Imaginary.data();
    UnrolledByFour(kQuarter, [=](int a) {
        const int b = a + kQuarter;
        const int c = b + kQuarter;
        const int d = c + kQuarter;
        const float sumAcRe = re[a] + re[c];
        const float sumAcIm = im[a] + im[c];
        const float difAcRe = re[a] - re[c];
        const float difAcIm = im[a] - im[c];
        const float sumBdRe = re[b] + re[d];
        const float sumBdIm = im[b] + im[d];
        const float difBdRe = re[b] - re[d];
        const float difBdIm = im[b] - im[d];
        re[a] = sumAcRe + sumBdRe;
        im[a] = sumAcIm + sumBdIm;
        re[b] = sumAcRe - sumBdRe;
        im[b] = sumAcIm - sumBdIm;
        re[c] = difAcRe + difBdIm;
        im[c] = difAcIm - difBdRe;
        re[d] = difAcRe - difBdIm;
        im[d] = difAcIm + difBdRe;
    });
}

// One stage of 64 butterflies in Groups groups, one twiddle to a group.
template <int Groups>
void Stage(const SpectrumTables& tables, ComplexPoints& z) {
    constexpr int kSpan = kFftPoints / 2 / Groups;
    float* re = z.Real.data();
    float* im = z.Imaginary.data();
    UnrolledByFour(kFftPoints / 2, [&](int butterfly) {
        const int group = butterfly / kSpan;
        const int p = butterfly + group * kSpan;
        const int q = p + kSpan;
        const float c = tables.TwiddleCos[group];
        const float s = tables.TwiddleSin[group];
        const float tRe = re[q] * c + im[q] * s;
        const float tIm = im[q] * c - re[q] * s;
        re[q] = re[p] - tRe;
        im[q] = im[p] - tIm;
        re[p] += tRe;
        im[p] += tIm;
    });
}

void RotateOut(const SpectrumTables& tables, const ComplexPoints& z, float* coefficients) {
    UnrolledByFour(kFftPoints, [&](int j) {
        const uint32_t entry = tables.BitReverse[j];
        const float re = z.Real[entry];
        const float im = z.Imaginary[entry];
        const float p = tables.Post[j];
        const float q = tables.Post[kFftPoints - j];
        coefficients[2 * j] = p * re + q * im;
        coefficients[kTransformBands - 1 - 2 * j] = q * re - p * im;
    });
}

}  // namespace

CSpectrumAnalyser::CSpectrumAnalyser() {
    LoudnessOfEnergy(0);  // fills its table now rather than in the first frame
}

void CSpectrumAnalyser::Analyse(const int16_t* samples, uint32_t count, uint32_t rate) {
    const uint32_t frameRate = GetAnalysisFrameRate();
    if (rate != SampleRate || count != CallSamples || frameRate != CallFrameRate) {
        Restart();
        SampleRate = rate;
        CallSamples = count;
        CallFrameRate = frameRate;
    }
    if (!Output) return;
    while (count > 0) {
        if (PartialCount == 0 && count >= kTransformBands) {
            FeedBlock(samples);
            samples += kTransformBands;
            count -= kTransformBands;
            continue;
        }
        const uint32_t taken = std::min<uint32_t>(count, kTransformBands - PartialCount);
        std::copy_n(samples, taken, PartialBlock.begin() + PartialCount);
        PartialCount += static_cast<int32_t>(taken);
        samples += taken;
        count -= taken;
        if (PartialCount == kTransformBands) {
            PartialCount = 0;
            FeedBlock(PartialBlock.data());
        }
    }
}

void CSpectrumAnalyser::Restart() {
    tables_.reset();
    Output.reset();
    tables_ = SpectrumTables::Acquire();
    if (!tables_) return;
    for (Bands& bank : Energy) bank.fill(0);
    Output.reset(new (std::nothrow) int32_t[kTransformBands]());
    PartialCount = 0;
    BlockIndex = 0;
}

void CSpectrumAnalyser::FeedBlock(const int16_t* block) {
    const auto middle = History.begin() + kTransformBands;
    std::copy(middle, History.end(), History.begin());
    std::copy_n(block, kTransformBands, middle);
    BlockIndex ^= 1;
    if (BlockIndex == 1) return;

    Transform();
    const Bands& previous = Energy[PreviousBank];
    Bands& current = Energy[CurrentBank];
    for (int k = 0; k < kTransformBands; ++k) {
        current[k] = previous[k] * kSmoothing + Coefficients[k] * (1 - kSmoothing) * Coefficients[k];
        Output[k] = LoudnessOfEnergy(current[k]);
    }
    PreviousBank = CurrentBank;
    CurrentBank ^= 1;
}

void CSpectrumAnalyser::Transform() {
    std::array<float, kTransformBands> folded;
    ComplexPoints points;
    Fold(*tables_, History.data(), folded.data());
    RotateIn(*tables_, folded.data(), points);
    FirstTwoStages(points);
    Stage<4>(*tables_, points);
    Stage<8>(*tables_, points);
    Stage<16>(*tables_, points);
    Stage<32>(*tables_, points);
    Stage<64>(*tables_, points);
    RotateOut(*tables_, points, Coefficients.data());
}

}  // namespace tdkviz
