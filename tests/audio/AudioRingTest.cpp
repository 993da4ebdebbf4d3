#include "src/audio/AudioRing.h"

#include <limits>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "tests/audio/FakeHost.h"

namespace tdkviz::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

struct LayoutCase {
    KVAAudioFormat Format;
    double Delay;
    uint32_t FrameRate;
    uint32_t BytesPerSecond;
    int32_t RingSize, FrameStep, BlockBytes, SamplesInBlock;
};

TEST(RingLayout, SizesFollowFromTheFormat) {
    const LayoutCase cases[] = {
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
    for (const LayoutCase& c : cases) {
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

// What the ring must give, from the whole stream: place p holds the last byte written with that remainder.
struct Model {
    const RingLayout& Sizes;
    int64_t Written = 0;
    int64_t Read = 0;

    void Place(double delay) {
        const auto lag = static_cast<int64_t>(delay * Sizes.BytesPerSecond + 0.5);
        const int64_t behind = lag > Sizes.RingSize ? Sizes.RingSize : lag;
        Read = (Written + Sizes.RingSize - behind + 3) / 4 * 4 % Sizes.RingSize;
    }
    int At(int64_t place) const {
        const int64_t back = (Written - 1 - place % Sizes.RingSize) % Sizes.RingSize;
        const int64_t source = Written - 1 - (back < 0 ? back + Sizes.RingSize : back);
        if (source < 0) return Sizes.BytesPerSample == 1 ? 0x80 : 0;
        return StreamByte(source);
    }
};

TEST(AudioRing, HoldsTheEndOfTheStreamAtEverySize) {
    std::mt19937 random(11);
    const auto upTo = [&](uint32_t limit) { return static_cast<uint32_t>(random() % (limit + 1)); };
    for (int round = 0; round < 300; ++round) {
        const KVAAudioFormat format{static_cast<uint16_t>(upTo(7)), static_cast<uint16_t>(upTo(1) ? 8 : 16),
                                    8000 + upTo(4000), static_cast<uint16_t>(upTo(900)), 0};
        const RingLayout sizes = LayoutRing(format, upTo(3) ? upTo(100) / 1000.0 : 0.0, 10 + upTo(20));
        AudioRing ring(sizes);
        if (ring.IsEmpty()) {
            ring.Write(StreamBytes(0, 9).data(), 9);
            EXPECT_EQ(ring.CutBlock(), nullptr);
            continue;
        }
        ASSERT_GE(sizes.RingSize, sizes.BlockBytes);
        ASSERT_EQ(sizes.RingSize % 4, 0);
        Model model{sizes};
        for (int step = 0; step < 12; ++step) {
            const uint32_t kinds[] = {0,
                                      upTo(40),
                                      upTo(sizes.RingSize),
                                      sizes.RingSize - static_cast<uint32_t>(model.Written % sizes.RingSize),
                                      static_cast<uint32_t>(sizes.RingSize),
                                      upTo(4 * sizes.RingSize)};
            const uint32_t size = kinds[upTo(5)];
            ring.Write(StreamBytes(model.Written, size).data(), size);
            model.Written += size;
            const double delay = upTo(1) ? 0.0 : upTo(250) / 1000.0;
            ring.PlaceReadPos(delay);
            model.Place(delay);
            for (int frames = upTo(3); frames > 0; --frames) {
                const uint8_t* block = ring.CutBlock();
                const int64_t unit = std::max(sizes.FrameBytes, 1);
                const int64_t start = (model.Read + unit - 1) / unit * unit;
                for (int i = 0; i < sizes.BlockBytes; ++i)
                    ASSERT_EQ(block[i], model.At(start + i)) << round << " at " << i;
                model.Read = (model.Read + sizes.FrameStep) % sizes.RingSize;
            }
        }
        ring.Silence();
        const uint8_t* block = ring.CutBlock();
        for (int i = 0; i < sizes.BlockBytes; ++i) ASSERT_EQ(block[i], sizes.BytesPerSample == 1 ? 0x80 : 0);
    }
}

}  // namespace
}  // namespace tdkviz::test
