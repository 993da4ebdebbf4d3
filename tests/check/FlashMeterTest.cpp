#include <gtest/gtest.h>

#include "player/check/FlashMeter.h"

namespace tdkplay::check {
namespace {

constexpr int kWidth = 160, kHeight = 120, kRate = 30;

// Two seconds in which the upper part of the picture changes between two greys every so many pictures.
double MostFlashes(double part, uint32_t dark, uint32_t bright, int picturesEach) {
    FlashMeter meter(kRate);
    for (int i = 0; i < 2 * kRate; ++i) {
        std::vector<uint32_t> pixels(kWidth * kHeight);
        const uint32_t grey = (i / picturesEach % 2 == 0 ? dark : bright) * 0x10101;
        std::fill_n(pixels.begin(), static_cast<int>(part * kHeight) * kWidth, grey);
        meter.Add(pixels, kWidth, kHeight);
    }
    return meter.MostFlashes();
}

TEST(FlashMeterTest, CountsPairsOfChanges) {
    EXPECT_EQ(MostFlashes(1, 0, 255, 5), 3);
    EXPECT_EQ(MostFlashes(1, 0, 255, 3), 5);
    EXPECT_EQ(MostFlashes(1, 0, 255, 1), 15);
    EXPECT_GT(MostFlashes(0.3, 0, 255, 3), FlashMeter::kMostFlashes);
}

TEST(FlashMeterTest, LeavesOutWhatIsSmallWeakOrBright) {
    EXPECT_EQ(MostFlashes(0.2, 0, 255, 3), 0) << "less than a quarter of the picture";
    EXPECT_EQ(MostFlashes(1, 0, 80, 3), 0) << "less than a tenth of the luminance";
    EXPECT_EQ(MostFlashes(1, 235, 255, 3), 0) << "never dark";
}

}  // namespace
}  // namespace tdkplay::check
