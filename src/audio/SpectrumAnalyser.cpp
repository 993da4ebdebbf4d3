#include "src/audio/SpectrumAnalyser.h"

#include <algorithm>
#include <new>

#include "src/audio/FrameRate.h"
#include "src/audio/SpectrumTransform.h"

namespace tdkviz {
namespace {

// A new spectrum takes nothing from the one before.
constexpr float kSmoothing = 0.0F;

}  // namespace

CSpectrumAnalyser::CSpectrumAnalyser() {
    [[maybe_unused]] const LoudnessScale filled;  // its table, now rather than in the first frame
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

    TransformSamples(*tables_, History.data(), Coefficients.data());
    const Bands& previous = Energy[PreviousBank];
    Bands& current = Energy[CurrentBank];
    for (int p = 0; p < kTransformBands; ++p) {
        current[p] = previous[p] * kSmoothing + Coefficients[p] * (1 - kSmoothing) * Coefficients[p];
    }
    const LoudnessScale scale;
    std::array<int32_t, kTransformBands> steps;
    for (int p = 0; p < kTransformBands; ++p) steps[p] = LoudnessScale::StepOfEnergy(current[p]);
    int32_t* output = Output.get();
    for (int p = 0; p < kTransformBands; ++p) output[tables_->BandAt[p]] = scale.OfStep(steps[p]);
    PreviousBank = CurrentBank;
    CurrentBank ^= 1;
}

}  // namespace tdkviz
