// One spectrum of 512 samples beside the same through FFTW: window, fold to a DCT-IV of 256, logarithm.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include <benchmark/benchmark.h>

#include "src/audio/SpectrumAnalyser.h"

#ifdef TDKBENCH_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

constexpr int kSamples = 512;
constexpr int kBands = 256;
constexpr uint32_t kRate = 44100;

using Samples = std::array<int16_t, kSamples>;

Samples MakeSamples() {
    Samples samples;
    uint32_t noise = 1;
    for (size_t i = 0; i < samples.size(); ++i) {
        noise = noise * 1664525 + 1013904223;
        const double tone = 12000 * std::sin(0.11 * static_cast<double>(i));
        samples[i] = static_cast<int16_t>(tone + static_cast<double>(noise >> 21));
    }
    return samples;
}

void BenchAnalyser(benchmark::State& state) {
    const Samples samples = MakeSamples();
    tdkviz::CSpectrumAnalyser analyser;
    for (auto _ : state) {
        analyser.Analyse(samples.data(), kSamples, kRate);
        benchmark::DoNotOptimize(analyser.GetSpectrum());
    }
}
BENCHMARK(BenchAnalyser)->Name("Spectrum/Analyser");

#ifdef TDKBENCH_HAVE_FFTW

class FftwSpectrum {
public:
    FftwSpectrum()
        : buffer_(fftwf_alloc_real(kBands)),
          plan_(fftwf_plan_r2r_1d(kBands, buffer_, buffer_, FFTW_REDFT11, FFTW_MEASURE)) {
        for (size_t n = 0; n < kSamples; ++n) {
            window_[n] = static_cast<float>(std::sin(std::numbers::pi * (static_cast<double>(n) + 0.5) / kSamples));
        }
    }
    ~FftwSpectrum() {
        fftwf_destroy_plan(plan_);
        fftwf_free(buffer_);
    }
    FftwSpectrum(const FftwSpectrum&) = delete;
    FftwSpectrum& operator=(const FftwSpectrum&) = delete;

    void Transform() { fftwf_execute(plan_); }

    // The cosine's phase is n + 0.5 - 128: what lies before 0 folds back as it is, what lies beyond 256
    // with its sign turned.
    void Fold(const Samples& samples) {
        const auto at = [&](size_t n) { return window_[n] * static_cast<float>(samples[n]); };
        for (size_t j = 0; j < kBands; ++j)
            buffer_[j] = j < 128 ? at(j + 128) + at(127 - j) : at(j + 128) - at(639 - j);
    }
    void Scale(std::array<int32_t, kBands>& out) const {
        // FFTW's transform is twice the plain sum.
        const float factor = std::sqrt(2.0F / kBands) / 2;
        for (size_t k = 0; k < kBands; ++k) {
            const float loudness = 80 * std::log10(std::max(std::fabs(buffer_[k] * factor), 1e-6F)) - 140;
            out[k] = static_cast<int32_t>(std::clamp(loudness, 0.0F, 255.0F));
        }
    }

private:
    float* buffer_;
    fftwf_plan plan_;
    std::array<float, kSamples> window_ = {};
};

void BenchFftw(benchmark::State& state) {
    const Samples samples = MakeSamples();
    FftwSpectrum spectrum;
    std::array<int32_t, kBands> out = {};
    for (auto _ : state) {
        spectrum.Fold(samples);
        spectrum.Transform();
        spectrum.Scale(out);
        benchmark::DoNotOptimize(out.data());
    }
    // Both must be about the same thing.
    tdkviz::CSpectrumAnalyser analyser;
    analyser.Analyse(samples.data(), kSamples, kRate);
    int32_t largest = 0;
    for (size_t k = 0; k < kBands; ++k) largest = std::max(largest, std::abs(out[k] - analyser.GetSpectrum()[k]));
    state.counters["largest_difference"] = largest;
}
BENCHMARK(BenchFftw)->Name("Spectrum/Fftw");

void BenchFftwTransform(benchmark::State& state) {
    const Samples samples = MakeSamples();
    FftwSpectrum spectrum;
    for (auto _ : state) {
        // In place: fresh values, so that they don't grow from run to run.
        spectrum.Fold(samples);
        spectrum.Transform();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BenchFftwTransform)->Name("Spectrum/FftwWithoutLogarithm");

#else

void BenchNoFftw(benchmark::State& state) {
    state.SkipWithError("built without FFTW");
}
BENCHMARK(BenchNoFftw)->Name("Spectrum/Fftw");

#endif

}  // namespace
