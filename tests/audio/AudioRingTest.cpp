#include "src/audio/AudioRing.h"

#include <limits>

#include <gtest/gtest.h>

namespace tdkviz {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(RingLayout, SizesFollowFromTheFormat) {
    struct {
        KVAAudioFormat Format;
        double Delay;
        uint32_t FrameRate;
        uint32_t BytesPerSecond;
        int32_t RingSize, FrameStep, BlockBytes, SamplesInBlock;
    } const cases[] = {
        {{2, 16, 44100, 4096, 0}, 0.0, 20, 176400, 12288, 8820, 2048, 1024},
        {{2, 16, 44100, 4096, 0}, 1.0, 20, 176400, 184592, 8820, 2048, 1024},
        {{2, 16, 44100, 4096, 0}, 0.01, 20, 176400, 12288, 8820, 2048, 1024},
        {{1, 16, 11025, 1001, 0}, 0.0, 30, 22050, 3004, 736, 1024, 512},
        {{1, 8, 8000, 700, 0}, 0.25, 20, 8000, 3400, 400, 512, 256},
        {{2, 20, 44100, 4096, 0}, 0.0, 20, 176400, 12288, 8820, 2048, 1024},
        {{6, 16, 48000, 4096, 0}, 0.0, 20, 576000, 12288, 28800, 6144, 3072},
        // No blocks and no delay: no ring. Small blocks: a ring of one analysis block.
        {{2, 16, 44100, 0, 0}, 0.0, 20, 176400, 0, 8820, 2048, 1024},
        {{2, 16, 44100, 0, 0}, 0.5, 20, 176400, 88200, 8820, 2048, 1024},
        {{2, 16, 44100, 100, 0}, 0.0, 20, 176400, 2048, 8820, 2048, 1024},
        {{0, 16, 44100, 4096, 0}, 1.0, 20, 0, 12288, 0, 0, 0},
        // Delays that no clock reports.
        {{2, 16, 44100, 4096, 0}, -3.0, 20, 176400, 12288, 8820, 2048, 1024},
        {{2, 16, 44100, 4096, 0}, kNotANumber, 20, 176400, 12288, 8820, 2048, 1024},
        {{2, 16, 44100, 4096, 0}, kInfinity, 20, 176400, 1 << 26, 8820, 2048, 1024},
        {{2, 16, 44100, 4096, 0}, 4294967.295, 20, 176400, 1 << 26, 8820, 2048, 1024},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.Format.Channels << " channels, " << c.Format.BitsPerSample
                                        << " bits, block " << c.Format.BlockSize << ", delay " << c.Delay);
        const RingLayout sizes = LayoutRing(c.Format, c.Delay, c.FrameRate);
        EXPECT_EQ(sizes.BytesPerSecond, c.BytesPerSecond);
        EXPECT_EQ(sizes.RingSize, c.RingSize);
        EXPECT_EQ(sizes.FrameStep, c.FrameStep);
        EXPECT_EQ(sizes.BlockBytes, c.BlockBytes);
        EXPECT_EQ(sizes.SamplesInBlock, c.SamplesInBlock);
    }
}

TEST(RingLayout, WidthsThatCanBeRead) {
    for (int bits = 0; bits <= 64; ++bits) {
        EXPECT_EQ(IsUsable({2, static_cast<uint16_t>(bits), 44100, 4096, 0}), bits >= 8 && bits <= 23) << bits;
    }
}

}  // namespace
}  // namespace tdkviz
