// The previews byte for byte beside a model that goes straight by the formulas.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "src/settings/SettingsPreview.h"
#include "tests/platform/gdiSupport.h"
#include "tests/render/EffectModel.h"

namespace tdkviz::test {
namespace {

void ModelRectangle(ModelFrame& frame) {
    const int left = frame.width / 3, right = 2 * frame.width / 3 - 1;
    const int top = frame.height / 3, bottom = 2 * frame.height / 3 - 1;
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            if (x != left && x != right && y != top && y != bottom) continue;
            // The picture is stored bottom-up; pure red is the third byte of its pixels.
            const int at = ((frame.height - 1 - y) * frame.width + x) * 4;
            const uint8_t red[4] = {0, 0, 255, 0};
            std::memcpy(frame.bytes.data() + at, red, 4);
        }
    }
}

ModelFrame ModelPreview(int width, int height, uint32_t id, int x, int y) {
    VizEffectParams p;
    p.BytesPerPixel = 4;
    if (id == 0) p.Fade = p.Slide = true, p.FadeTime = x == 128 ? 256 : x, p.SlideX = p.SlideY = 3;
    if (id == 1 && x != 0) {
        p.Fade = p.Zoom = p.Rotate = p.Blur = true;
        p.FadeTime = 40, p.ZoomX = p.ZoomY = 6, p.RotateSpeed = 3 * x, p.BlurAmount = 1;
    }
    if (id == 2) p.Fade = p.Zoom = true, p.FadeTime = 40, p.ZoomX = 3 * x, p.ZoomY = 3 * y;
    if (id == 3) p.Fade = p.Slide = true, p.FadeTime = 80, p.SlideX = -x, p.SlideY = -y;
    if (id == 4) p.Fade = p.Slide = p.Blur = true, p.FadeTime = 50, p.SlideX = p.SlideY = 3, p.BlurAmount = x;
    ModelFrame frame{width, height, 4, {}};
    frame.bytes.resize(static_cast<size_t>(width * height) * 4);
    for (uint32_t n = 1; n <= 6; ++n) {
        ModelRectangle(frame);
        if (auto next = EffectModel(frame, p, 255, n).Run()) frame.bytes = std::move(*next);
    }
    ModelRectangle(frame);
    return frame;
}

TEST(SettingsPreview, IsWhatTheModelGives) {
    constexpr struct {
        int minX, maxX, minY, maxY;
    } kRanges[] = {{0, 128, -1, -1}, {-20, 20, -1, -1}, {-20, 20, -20, 20}, {-20, 20, -20, 20}, {1, 10, -1, -1}};
    constexpr int kPairs = 50;
    std::mt19937 random(42);
    VizEffectEngine engine;
    for (uint32_t id = 0; id < 5; ++id) {
        const auto& range = kRanges[id];
        const auto pick = [&](int low, int high) {
            return low + static_cast<int>(random() % unsigned(high - low + 1));
        };
        for (int pair = 0; pair < kPairs; ++pair) {
            // The four corners and the middle, then random pairs.
            const int x = pair < 4    ? (pair & 1 ? range.maxX : range.minX)
                          : pair == 4 ? 0
                                      : pick(range.minX, range.maxX);
            const int y = pair < 4    ? (pair & 2 ? range.maxY : range.minY)
                          : pair == 4 ? 0
                                      : pick(range.minY, range.maxY);
            const int width = pair % 2 ? 92 : 61 + pair, height = pair % 2 ? 93 : 57;
            const gditest::Surface section(gditest::k32, width, height);
            engine.FrameCounter = random();
            DrawPreview(section.dc, engine, id, x, y);
            GdiFlush();
            const ModelFrame model = ModelPreview(width, height, id, x, y);
            ASSERT_EQ(std::memcmp(section.Bits(), model.bytes.data(), model.bytes.size()), 0)
                << "control " << id << " at " << x << ", " << y << ", " << width << " x " << height;
            EXPECT_EQ(engine.FrameCounter, 6u);
        }
    }
}

TEST(SettingsPreview, LeavesWhatIsNoPictureAlone) {
    VizEffectEngine engine;
    engine.FrameCounter = 9;
    DrawPreview(nullptr, engine, 0, 1, 1);
    const HDC empty = CreateCompatibleDC(nullptr);
    DrawPreview(empty, engine, 0, 1, 1);
    DeleteDC(empty);
    EXPECT_EQ(engine.FrameCounter, 9u);
}

}  // namespace
}  // namespace tdkviz::test
