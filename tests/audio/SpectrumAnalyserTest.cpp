#include "src/audio/SpectrumAnalyser.h"

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "src/audio/FrameRate.h"

namespace tdkviz {
namespace {

using Block = std::vector<int16_t>;
using std::numbers::pi;

constexpr uint32_t kRate = 44100;

std::vector<int32_t> SpectrumOf(const Block& samples) {
    CSpectrumAnalyser analyser;
    analyser.Analyse(samples.data(), static_cast<uint32_t>(samples.size()), kRate);
    return {analyser.GetSpectrum(), analyser.GetSpectrum() + kTransformBands};
}

// The sum formula, straight on.
std::vector<double> DirectTransform(const Block& x) {
    std::vector<double> bands(256);
    for (int k = 0; k < 256; ++k) {
        double sum = 0;
        for (int n = 0; n < 512; ++n) {
            const double window = std::sin(((n < 256 ? n : 511 - n) + 0.5) * pi / 512);
            sum += window * x[n] * std::cos(pi / 256 * (n + 0.5 - 128) * (k + 0.5));
        }
        bands[k] = sum * std::sqrt(2.0 / 256);
    }
    return bands;
}

TEST(SpectrumAnalyser, AgreesWithTheSumFormula) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        Block x(512);
        const int loudness = 1 << random() % 15;
        const double pitch = (random() % 2560) / 10.0;
        for (int n = 0; n < 512; ++n) {
            const int noise = static_cast<int>(random() % (2 * loudness)) - loudness;
            x[n] = static_cast<int16_t>(round % 2 ? noise : loudness * std::sin(pi / 256 * n * pitch) + noise % 16);
        }
        const auto spectrum = SpectrumOf(x);
        const auto bands = DirectTransform(x);
        for (int k = 0; k < 256; ++k) {
            const double exact = 20 * std::log10(bands[k] * bands[k] + 1e-30);
            const double expected = std::clamp(2 * (exact - 70), 0.0, 255.0);
            // Half a step of rounding, and the six bits of the logarithm; the step is 2.
            ASSERT_NEAR(spectrum[k], expected, 1.25) << "band " << k << " round " << round;
        }
    }
}

TEST(SpectrumAnalyser, KnownPictures) {
    Block click(512), sine(512);
    click[255] = 32767;
    for (int n = 0; n < 512; ++n)
        sine[n] = static_cast<int16_t>(std::lround(1000 * std::sin(pi / 256 * (n + 0.5) * 40.5)));
    const auto clickBands = SpectrumOf(click);
    EXPECT_EQ(clickBands[0], 126);
    EXPECT_EQ(clickBands[1], 124);
    const auto sineBands = SpectrumOf(sine);
    EXPECT_EQ(sineBands[40], 180);
    EXPECT_EQ(sineBands[39], 142);
    EXPECT_EQ(sineBands[41], 142);
    EXPECT_EQ(sineBands[38], 86);
    EXPECT_EQ(sineBands[42], 86);
    EXPECT_EQ(SpectrumOf(Block(512)), std::vector<int32_t>(256));
    for (int32_t value : SpectrumOf(Block(512, -32768))) EXPECT_TRUE(value % 2 == 0 || value == 255) << value;
}

TEST(SpectrumAnalyser, LoudnessScale) {
    const std::pair<float, int> cases[] = {{0.0F, 0},   {1.0F, 0},    {3162.0F, 0},  {10000.0F, 20},
                                           {1e8F, 180}, {1e10F, 255}, {7.9e9F, 255}, {4e12F, 255}};
    for (const auto& [energy, loudness] : cases)
        EXPECT_EQ(LoudnessScale().OfStep(LoudnessScale::StepOfEnergy(energy)), loudness) << energy;
}

TEST(SpectrumAnalyser, AnySplitIntoCallsGivesTheSamePairs) {
    std::mt19937 random(3);
    Block stream(512 * 6);
    for (int16_t& sample : stream) sample = static_cast<int16_t>(random());
    for (uint32_t count : {1u, 64u, 100u, 256u, 300u, 511u, 512u, 600u, 768u, 1024u, 1536u, 3072u}) {
        CSpectrumAnalyser analyser;
        for (uint32_t fed = 0; fed + count <= stream.size();) {
            analyser.Analyse(stream.data() + fed, count, kRate);
            fed += count;
            const uint32_t pairs = fed / 512;
            if (pairs == 0) {
                ASSERT_EQ(std::count(analyser.GetSpectrum(), analyser.GetSpectrum() + 256, 0), 256);
                continue;
            }
            const auto start = stream.begin() + (pairs - 1) * 512;
            const auto expected = SpectrumOf(Block(start, start + 512));
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), analyser.GetSpectrum())) << count << " " << fed;
        }
    }
}

TEST(SpectrumAnalyser, RestartsOnAnyChangeAndForgetsThePartialBlock) {
    const Block loud(512, 20000);
    CSpectrumAnalyser analyser;
    EXPECT_EQ(analyser.GetSpectrum(), nullptr);
    analyser.Analyse(nullptr, 0, 0);
    const auto isSilent = [&] { return std::count(analyser.GetSpectrum(), analyser.GetSpectrum() + 256, 0) == 256; };
    analyser.Analyse(loud.data(), 512, kRate);
    EXPECT_FALSE(isSilent());
    analyser.Analyse(loud.data(), 256, kRate);  // another count
    EXPECT_TRUE(isSilent());
    analyser.Analyse(loud.data(), 256, kRate + 1);  // another rate: this is a first block again
    EXPECT_TRUE(isSilent());
    SetAnalysisFrameRate(25);
    analyser.Analyse(loud.data(), 256, kRate + 1);  // another frame rate
    EXPECT_TRUE(isSilent());
    analyser.Analyse(loud.data(), 256, kRate + 1);
    EXPECT_FALSE(isSilent());
    SetAnalysisFrameRate(kDefaultFrameRate);
}

}  // namespace
}  // namespace tdkviz
