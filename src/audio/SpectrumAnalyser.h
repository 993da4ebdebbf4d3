// CSpectrumAnalyser: 16-bit samples of one channel to 256 loudness values.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "src/audio/SpectrumTables.h"

namespace tdkviz {

// A modified discrete cosine transform of 512 samples under a sine window,
//     X[k] = sqrt(2/256) sum over n of W[n] x[n] cos((pi/256) (n + 0.5 - 128) (k + 0.5)),
// then 80 log10|X[k]| - 140 limited to 0..255. Band k is centred on (k + 0.5) rate / 512 Hz. Blocks of
// 256 samples come in pairs, and each pair gives one spectrum: transforms do not overlap. How the stream
// is split into calls makes no difference. Used by one thread at a time; allocates at a restart only.
class CSpectrumAnalyser {
public:
    CSpectrumAnalyser();

    // Feeds `count` samples [borrowed] at `rate` Hz. Restarts if rate, count or the frame rate differ
    // from the last call: the output is zero then until two blocks have come.
    void Analyse(const int16_t* samples, uint32_t count, uint32_t rate);

    // 256 values of 0 to 255, good until the next restart; null before the first and without memory.
    const int32_t* GetSpectrum() const { return Output.get(); }

private:
    using Bands = std::array<float, kTransformBands>;

    void Restart();
    void FeedBlock(const int16_t* block);

    uint32_t SampleRate = 0;
    uint32_t CallSamples = 0;
    uint32_t CallFrameRate = 0;
    int32_t BlockIndex = 0;
    int32_t PartialCount = 0;
    std::array<int16_t, kTransformBands> PartialBlock{};
    std::array<Bands, 2> Energy{};  // in the order of SpectrumTables::BandAt
    std::unique_ptr<int32_t[]> Output;
    std::array<float, kTransformSamples> History{};
    Bands Coefficients{};  // likewise
    uint8_t CurrentBank = 0;
    uint8_t PreviousBank = 1;
    std::shared_ptr<const SpectrumTables> tables_;
};

}  // namespace tdkviz
