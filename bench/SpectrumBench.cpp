// One spectrum of 512 samples: window, fold, DCT-IV of 256, logarithm; beside FFTW's DCT-IV alone.
#include <array>
#include <cmath>
#include <cstdint>

#include <benchmark/benchmark.h>

#include "bench/Goals.h"
#include "src/audio/SpectrumAnalyser.h"
#include "src/audio/SpectrumTransform.h"

#ifdef TDKBENCH_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

using namespace tdkviz;

constexpr uint32_t kRate = 44100;

using Samples = std::array<int16_t, kTransformSamples>;

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

class WholeSpectrum {
public:
    void Run() {
        analyser_.Analyse(samples_.data(), kTransformSamples, kRate);
        benchmark::DoNotOptimize(analyser_.GetSpectrum());
    }

private:
    const Samples samples_ = MakeSamples();
    CSpectrumAnalyser analyser_;
};

class TransformAlone {
public:
    TransformAlone() {
        const Samples samples = MakeSamples();
        for (size_t i = 0; i < samples.size(); ++i) samples_[i] = samples[i];
    }
    void Run() {
        TransformSamples(*tables_, samples_.data(), coefficients_.data());
        benchmark::DoNotOptimize(coefficients_.data());
        benchmark::ClobberMemory();
    }

private:
    const std::shared_ptr<const SpectrumTables> tables_ = SpectrumTables::Acquire();
    std::array<float, kTransformSamples> samples_;
    std::array<float, kTransformBands> coefficients_;
};

#ifdef TDKBENCH_HAVE_FFTW

// Out of place, so that the values don't grow from run to run.
class FftwTransform {
public:
    static constexpr bool kIsThere = true;

    FftwTransform()
        : in_(fftwf_alloc_real(kTransformBands)),
          out_(fftwf_alloc_real(kTransformBands)),
          plan_(fftwf_plan_r2r_1d(kTransformBands, in_, out_, FFTW_REDFT11, FFTW_MEASURE)) {
        const Samples samples = MakeSamples();
        for (size_t i = 0; i < kTransformBands; ++i) in_[i] = samples[i];
    }
    ~FftwTransform() {
        fftwf_destroy_plan(plan_);
        fftwf_free(out_);
        fftwf_free(in_);
    }
    FftwTransform(const FftwTransform&) = delete;
    FftwTransform& operator=(const FftwTransform&) = delete;

    void Run() {
        fftwf_execute(plan_);
        benchmark::ClobberMemory();
    }

private:
    float* const in_;
    float* const out_;
    const fftwf_plan plan_;
};

#else

struct FftwTransform {
    static constexpr bool kIsThere = false;
    void Run() {}
};

#endif

template <typename Work>
void Bench(benchmark::State& state) {
    Work work;
    for (auto _ : state) work.Run();
}
BENCHMARK(Bench<WholeSpectrum>)->Name("Spectrum/Whole");
BENCHMARK(Bench<TransformAlone>)->Name("Spectrum/FoldAndTransform");
BENCHMARK(Bench<FftwTransform>)->Name("Spectrum/FftwTransform");

template <typename Work>
std::optional<double> TimeAgainstFftw(const bench::Trial& trial) {
    if (!FftwTransform::kIsThere) return std::nullopt;
    Work work;
    FftwTransform fftw;
    return bench::Contest([&] { work.Run(); }, [&] { fftw.Run(); }, trial.seconds);
}

}  // namespace

void bench::AddSpectrumGoals() {
    AddGoal({"Spectrum without logarithm", "FFTW's DCT-IV", false, 0.85, 0.5, TimeAgainstFftw<TransformAlone>});
    AddGoal({"Spectrum whole", "FFTW's DCT-IV", false, 1.4, 0.9, TimeAgainstFftw<WholeSpectrum>});
}
