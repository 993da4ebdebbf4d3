// The DirectDraw output window inside a foreign window of an X screen.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "src/render/DDVizWindow.h"
#include "src/support/DLLAccessPath.h"
#include "tests/support/Messages.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace {

class DirectDrawX11Test : public testing::TestWithParam<int> {};

HWND HandleOf(xcb_window_t window) {
    return reinterpret_cast<HWND>(static_cast<uintptr_t>(window));
}

// Red above, blue below.
void DrawFrame(tdkviz::CDDVizWindow& window) {
    auto* pixels = static_cast<uint32_t*>(window.GetFrontPixels());
    ASSERT_NE(pixels, nullptr);
    const int height = window.GetFrameHeight();
    for (int row = 0; row < height; ++row) {
        for (int x = 0; x < window.GetFrameWidth(); ++x) {
            pixels[row * window.GetFrameStride() + x] = row < height / 2 ? 0x0000FF : 0xFF0000;
        }
    }
    window.ReleaseFront();
    window.Present(true);
}

// At depth 24 the plug-in paints into surfaces; at 16 its frames are converted.
TEST_P(DirectDrawX11Test, ShowsFramesWhereverTheHostMovesItsWindow) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    const bool needsConverter = GetParam() != 24;
    if (needsConverter && !std::filesystem::exists(STAGE_DIR "/Codecs/qzcolor.so")) GTEST_SKIP() << "no converter";
    const XServer server(GetParam());
    ASSERT_TRUE(server.Running());
    server.Use();
    ForeignClient host(server.Name());
    const xcb_window_t parent = host.MakeWindow(100, 50, 700, 500);
    tdkviz::GetDLLAccessPath()->SetPath(tdkviz::DLLKind::Codecs, STAGE_DIR "/Codecs");
    {
        tdkviz::CDDVizWindow window(nullptr, HandleOf(parent));
        window.Resize(600, 400);
        ShowWindow(window.GetWindowHandle(), SW_SHOW);
        tdkviz::test::ServeMessages();
        EXPECT_STREQ(TdkpDisplayName(), "x11");
        EXPECT_EQ(window.GetFrameWidth(), 480);
        for (const POINT place : {POINT{100, 50}, {20, 30}}) {
            host.Move(parent, place.x, place.y);
            window.Blank();
            host.WaitForColor(place.x, place.y, {0, 0, 0}, 0);
            DrawFrame(window);
            const struct {
                int x, y;
                ScreenColor color;
            } samples[] = {{0, 0, {255, 0, 0}},     {599, 199, {255, 0, 0}},     {0, 200, {0, 0, 255}},
                           {599, 399, {0, 0, 255}}, {600, 399, {255, 255, 255}}, {599, 400, {255, 255, 255}}};
            for (const auto& sample : samples) {
                const ScreenColor seen = host.WaitForColor(place.x + sample.x, place.y + sample.y, sample.color, 0);
                EXPECT_EQ(seen.DistanceTo(sample.color), 0) << sample.x << ", " << sample.y;
            }
        }
        TdkpCounts counts = {};
        TdkpCount(&counts);
        EXPECT_GT(counts.directDraw, 0);
    }
    host.Destroy(parent);
    unsetenv("DISPLAY");
}

INSTANTIATE_TEST_SUITE_P(Depths, DirectDrawX11Test, testing::Values(24, 16),
                         [](const auto& one) { return "Depth" + std::to_string(one.param); });

}  // namespace
