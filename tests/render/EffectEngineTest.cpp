#include <random>

#include <gtest/gtest.h>

#include <tdkviz/plugin.h>

#include "src/render/EffectRandomizer.h"
#include "src/render/VizEffectEngine.h"
#include "tests/render/EffectModel.h"

namespace tdkviz::test {
namespace {

constexpr uint8_t kUntouched = 0xA5;
constexpr size_t kGuard = 64;

class Source {
public:
    uint32_t Below(uint32_t limit) { return random_() % limit; }
    int32_t Between(int32_t low, int32_t high) {
        return low + static_cast<int32_t>(Below(static_cast<uint32_t>(high - low + 1)));
    }
    bool Flag() { return Below(2) != 0; }
    uint32_t Word() { return random_(); }
    // A value such as a user sets, or now and then one from the ends of the range.
    int32_t Value(int32_t low, int32_t high, bool extremes) {
        constexpr int32_t kExtremes[] = {INT32_MIN,  INT32_MAX, INT32_MIN + 1, 0x00800000, -0x00800000, 0x007FFFFF,
                                         0x01000001, 257,       -257,          1 << 16,    65535,       -65536};
        if (extremes && Below(3) == 0) {
            const uint32_t pick = Below(std::size(kExtremes) + 1);
            return pick < std::size(kExtremes) ? kExtremes[pick] : static_cast<int32_t>(Word());
        }
        return Between(low, high);
    }

private:
    std::mt19937 random_{20240607};
};

ModelFrame MakeFrame(Source& source, int width, int height, int bytesPerPixel) {
    ModelFrame frame{width, height, bytesPerPixel, {}};
    frame.bytes.resize(static_cast<size_t>(width * height * bytesPerPixel));
    for (uint8_t& byte : frame.bytes) byte = static_cast<uint8_t>(source.Flag() ? source.Word() : 0u - source.Below(2));
    return frame;
}

void FillRandom(VizEffectParams& params, Source& source, bool extremes) {
    params.Blur = source.Flag();
    params.BlurAmount = source.Value(-1, 11, extremes);
    params.Zoom = source.Flag();
    params.ZoomX = source.Value(-40, 40, extremes);
    params.ZoomY = source.Flag() ? params.ZoomX.Load() : source.Value(-40, 40, extremes);
    params.Fade = source.Flag();
    params.FadeColor = source.Word();
    params.FadeTime = source.Value(0, 256, extremes);
    params.Slide = source.Flag();
    params.SlideX = source.Value(-5, 5, extremes);
    params.SlideY = source.Value(-5, 5, extremes);
    params.Rotate = source.Flag();
    params.RotateSpeed = source.Value(-40, 40, extremes);
    params.AutoEdge = source.Flag();
    params.ClampEdge = source.Flag();
}

// Runs the engine and the model on one record and compares result, picture, counter and what lies around. False if
// there was nothing to do.
bool Compare(const ModelFrame& frame, VizEffectParams& params, uint32_t mask, uint32_t counter) {
    SCOPED_TRACE(testing::Message() << frame.width << "x" << frame.height << "x" << frame.bytesPerPixel << " mask "
                                    << mask << " frame " << counter << " blur " << params.BlurAmount << " zoom "
                                    << params.ZoomX << "," << params.ZoomY << " rotate " << params.RotateSpeed
                                    << " fade " << params.FadeTime << " clamp " << params.ClampEdge);
    params.BytesPerPixel = frame.bytesPerPixel;
    // Rows of the source may have something behind them, those of the result never.
    const int stride = frame.width + static_cast<int>(counter % 3);
    const auto row = static_cast<size_t>(frame.width * frame.bytesPerPixel);
    const auto pitch = static_cast<size_t>(stride * frame.bytesPerPixel);
    std::vector<uint8_t> source(pitch * static_cast<size_t>(frame.height), kUntouched);
    for (size_t y = 0; y < static_cast<size_t>(frame.height); ++y)
        std::copy_n(frame.bytes.data() + y * row, row, source.data() + y * pitch);
    VizEffectEngine engine;
    engine.FrameCounter = counter;
    std::vector<uint8_t> out(frame.bytes.size() + 2 * kGuard, kUntouched);
    const bool ran =
        engine.ApplyEffects(source.data(), out.data() + kGuard, frame.width, frame.height, stride, params, mask);
    EXPECT_EQ(engine.FrameCounter, counter + 1);
    const auto expected = EffectModel(frame, params, mask, counter + 1).Run();
    EXPECT_EQ(ran, expected.has_value());
    if (ran != expected.has_value()) return ran;
    std::vector<uint8_t> whole(out.size(), kUntouched);
    if (ran) std::copy(expected->begin(), expected->end(), whole.begin() + kGuard);
    const auto differs = std::mismatch(whole.begin(), whole.end(), out.begin());
    EXPECT_TRUE(differs.first == whole.end())
        << "byte " << (differs.first - whole.begin()) - static_cast<ptrdiff_t>(kGuard) << " is " << int{*differs.second}
        << ", expected " << int{*differs.first};
    return ran;
}

void CompareMany(int runs, int bytesPerPixel, bool extremes) {
    Source source;
    int refused = 0;
    for (int run = 0; run < runs && !testing::Test::HasFailure(); ++run) {
        const ModelFrame frame = MakeFrame(source, source.Between(3, 70), source.Between(3, 50), bytesPerPixel);
        VizEffectParams params;
        FillRandom(params, source, extremes);
        const uint32_t mask = source.Flag() ? kEffectsAll : source.Word();
        refused += !Compare(frame, params, mask, source.Below(4) ? source.Below(1000) : 0xFFFFFFFF - source.Below(3));
    }
    EXPECT_GT(refused, runs / 100) << "records with nothing to do hardly came";
}

TEST(EffectEngineTest, BothPathsMatchTheFormulas) {
    for (const bool extremes : {false, true}) CompareMany(3000, 4, extremes);
    for (const int bytes : {1, 2, 3}) CompareMany(500, bytes, bytes == 2);
}
TEST(EffectEngineTest, RefusesPixelsWithoutBytes) {
    for (const int bytes : {0, -4}) {
        const std::vector<uint8_t> source(16 * 16 * 4, 9), untouched(source.size(), kUntouched);
        std::vector<uint8_t> out = untouched;
        VizEffectParams params;
        SetDefaultEffects(params);
        params.BytesPerPixel = bytes;
        VizEffectEngine engine;
        EXPECT_FALSE(engine.ApplyEffects(source.data(), out.data(), 16, 16, 16, params, kEffectsAll));
        EXPECT_EQ(engine.FrameCounter, 1u);
        EXPECT_EQ(out, untouched);
    }
}

// Nothing outside of frame or stride is read or written, down to one pixel. The sanitizers watch.
TEST(EffectEngineTest, FramesWithoutInnerPixels) {
    Source source;
    for (const int bytes : {1, 3, 4}) {
        for (int width = 1; width <= 4; ++width) {
            for (int height = 1; height <= 4; ++height) {
                if (width >= 3 && height >= 3) continue;
                for (int kernel = 0; kernel <= 10; ++kernel) {
                    const ModelFrame frame = MakeFrame(source, width, height, bytes);
                    VizEffectParams params;
                    FillRandom(params, source, true);
                    params.Zoom = params.Fade = true;
                    params.FadeTime = 3;
                    params.BlurAmount = kernel;
                    params.BytesPerPixel = bytes;
                    params.AutoEdge = false;
                    params.ClampEdge = false;
                    Compare(frame, params, kEffectsAll, source.Below(50));
                    params.ClampEdge = true;
                    std::vector<uint8_t> out(frame.bytes.size());
                    VizEffectEngine engine;
                    EXPECT_TRUE(
                        engine.ApplyEffects(frame.bytes.data(), out.data(), width, height, width, params, kEffectsAll));
                }
            }
        }
    }
}

TEST(EffectRandomizerTest, DocumentedSeedsAndWrap) {
    struct Row {
        uint32_t seed;
        int32_t blur, zoomX, zoomY, fade, rotate;
    };
    // The last three tell the curves' periods, and that the sum of seed and phase wraps.
    const Row rows[] = {{0, 4, 17, 18, 4, 11},         {1000, 8, 3, -1, 6, 4},         {5000, 4, 8, -8, 6, 0},
                        {3000000000, 3, 16, 8, 3, 12}, {4000000000, 6, -4, -7, 8, -3}, {0xFFFFFFFF, 4, 17, 18, 4, 11}};
    for (const Row& row : rows) {
        VizEffectParams params;
        SetDefaultEffects(params);
        params.BytesPerPixel = 3;
        params.AutoEdge = false;
        params.ClampEdge = true;
        RandomizeEffects(params, row.seed);
        EXPECT_EQ(params.BlurAmount, row.blur) << row.seed;
        EXPECT_EQ(params.ZoomX, row.zoomX) << row.seed;
        EXPECT_EQ(params.ZoomY, row.zoomY) << row.seed;
        EXPECT_EQ(params.FadeTime, row.fade) << row.seed;
        EXPECT_EQ(params.RotateSpeed, row.rotate) << row.seed;
        EXPECT_TRUE(params.Blur && params.Zoom && params.Fade && params.Slide && params.Rotate);
        EXPECT_TRUE(params.BytesPerPixel == 3 && !params.AutoEdge && params.ClampEdge) << "left as they were";
    }
}

}  // namespace
}  // namespace tdkviz::test
