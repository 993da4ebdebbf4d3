// The DirectDraw output window: which frames it gives, what it asks of DirectDraw, and that it ends in a GDI
// picture whatever fails.
#include <objbase.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "src/render/DDVizWindow.h"
#include "src/support/DLLAccessPath.h"
#include "tests/render/WindowTools.h"
#include "tests/staged/NothingLeft.h"

#include <ddraw.h>

namespace tdkviz::test {
namespace {

// Since the last question.
uint32_t CallsMade() {
    return TdkpFailDirectDraw(0, S_OK);
}

class DDVizWindowTest : public testing::Test {
protected:
    explicit DDVizWindowTest(int depth = 32) : parent_(depth) {}

    ParentWindow parent_;
    std::unique_ptr<CDDVizWindow> window_ = std::make_unique<CDDVizWindow>(nullptr, parent_.Handle());

    HWND Handle() const { return window_->GetWindowHandle(); }
    void Show(int32_t width, int32_t height) {
        window_->SetShown(true);
        window_->Resize(width, height);
        ShowWindow(Handle(), SW_SHOW);
        ServeMessages();
    }
    template <typename Color>
    void Paint(void* pixels, Color color) {
        const int height = window_->GetFrameHeight(), stride = window_->GetFrameStride();
        for (int y = 0; y < height; ++y) {
            uint32_t* row = static_cast<uint32_t*>(pixels) + (height - 1 - y) * stride;
            for (int x = 0; x < window_->GetFrameWidth(); ++x) row[x] = color(x, y);
        }
    }
    // A whole frame as a view makes it: both buffers, a swap, one colour. False if there was none to be had.
    bool DrawFrame(uint32_t color) {
        window_->BeginFrame();
        bool drawn = false;
        if (window_->GetFrontPixels()) {
            void* back = window_->GetBackPixels();
            void* front = window_->GetFrontPixels();
            EXPECT_NE(front, back);
            if (back) std::memset(back, 0x55, static_cast<size_t>(window_->GetFrameStride()) * 4);
            window_->ReleaseBack();
            window_->ReleaseFront();
            window_->SwapBuffers();
            if (void* pixels = window_->GetFrontPixels()) {
                Paint(pixels, [color](int, int) { return color; });
                window_->ReleaseFront();
                window_->Present(true);
                drawn = true;
            }
        }
        window_->EndFrame();
        ServeMessages();
        return drawn;
    }
    void ExpectColor(uint32_t color) { EXPECT_EQ(Picture(Handle()).FirstOtherThan(color), -1); }
    bool UsesDirectDraw() const { return Counts().directDraw > 0; }
    bool IsUnlockedForOthers() {
        bool unlocked = false;
        std::thread([&] { unlocked = window_->IsUnlocked(); }).join();
        return unlocked;
    }
};

TEST_F(DDVizWindowTest, SizesOfFramesAndTheRightWayUp) {
    const struct {
        int32_t width, height, frameWidth, frameHeight;
    } cases[] = {{640, 480, 480, 360}, {400, 300, 400, 300}, {300, 500, 300, 360}, {37, 21, 37, 21}, {481, 2, 480, 2}};
    for (const DWORD padding : {0u, 20u}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height) + "+" + std::to_string(padding));
            TdkpPadDirectDrawRows(padding);
            Show(c.width, c.height);
            EXPECT_EQ(window_->GetFrameWidth(), c.frameWidth);
            EXPECT_EQ(window_->GetFrameHeight(), c.frameHeight);
            Paint(window_->GetFrontPixels(), ColorAt);
            EXPECT_EQ(window_->GetFramePitch(), -4 * c.frameWidth - static_cast<int32_t>(padding));
            EXPECT_EQ(window_->GetFrameStride(), c.frameWidth + static_cast<int32_t>(padding) / 4);
            window_->ReleaseFront();
            window_->Present(true);
            const Picture picture(Handle());
            ASSERT_EQ(picture.width, c.width);
            ASSERT_EQ(picture.height, c.height);
            int wrong = 0;
            for (int y = 0; y < picture.height; ++y) {
                for (int x = 0; x < picture.width; ++x) {
                    wrong += picture.At(x, y) != ColorAt(x * c.frameWidth / c.width, y * c.frameHeight / c.height);
                }
            }
            EXPECT_EQ(wrong, 0);
        }
    }
    // Rows that don't begin on a whole pixel are none for effects.
    TdkpPadDirectDrawRows(2);
    Show(200, 100);
    EXPECT_FALSE(UsesDirectDraw());
    EXPECT_TRUE(DrawFrame(0x00ABCDEF));
    ExpectColor(0x00ABCDEF);
    TdkpPadDirectDrawRows(0);
}

TEST_F(DDVizWindowTest, AsksDirectDrawForNoMoreThanItNeeds) {
    Show(640, 480);
    CallsMade();
    Show(800, 600);
    EXPECT_EQ(CallsMade(), 1u) << "surfaces and frames stay, only the blit's rectangle changes";
    void* front = window_->GetFrontPixels();
    EXPECT_EQ(window_->GetFrontPixels(), front);
    EXPECT_EQ(CallsMade(), 1u) << "one lock serves all";
    EXPECT_FALSE(IsUnlockedForOthers());
    Paint(front, [](int, int) { return 0x00224466; });
    window_->Present(true);
    window_->Present(false);
    EXPECT_EQ(CallsMade(), 0u) << "locked";
    ExpectColor(0);
    window_->ReleaseFront();
    EXPECT_TRUE(IsUnlockedForOthers());
    CallsMade();
    window_->Present(false);
    EXPECT_EQ(CallsMade(), 1u);
    ExpectColor(0x00224466);
    window_->Blank();
    EXPECT_EQ(CallsMade(), 1u) << "with the blitter";
    ExpectColor(0);
    // The end of playing leaves the picture.
    window_->SetPlaying(true);
    EXPECT_TRUE(DrawFrame(0x00998877));
    window_->SetPlaying(false);
    ExpectColor(0x00998877);
}

TEST_F(DDVizWindowTest, WindowModeGivesUpAllOfDirectDraw) {
    EXPECT_EQ(window_->GetFrontPixels(), nullptr) << "nothing is built before the first size";
    EXPECT_FALSE(UsesDirectDraw());
    Show(320, 240);
    EXPECT_TRUE(UsesDirectDraw());
    window_->SetDrawsFrames(false);
    ServeMessages();
    EXPECT_FALSE(UsesDirectDraw());
    void* none = nullptr;
    EXPECT_EQ(CoCreateInstance({}, nullptr, CLSCTX_ALL, {}, &none), CO_E_NOTINITIALIZED);
    CallsMade();
    window_->Resize(401, 300);
    EXPECT_EQ(window_->GetFrontPixels(), nullptr);
    EXPECT_EQ(CallsMade(), 0u) << "the plug-in paints by itself";
    window_->SetDrawsFrames(true);
    ServeMessages();
    EXPECT_TRUE(UsesDirectDraw());
    EXPECT_EQ(window_->GetFrameWidth(), 401);
    EXPECT_TRUE(DrawFrame(0x00446688));
    ExpectColor(0x00446688);
    // What comes inside a frame waits for its end.
    window_->BeginFrame();
    void* pixels = window_->GetFrontPixels();
    SendMessageA(Handle(), kMessageResize, MAKEWPARAM(64, 48), 0);
    EXPECT_EQ(window_->GetFrontPixels(), pixels);
    window_->ReleaseFront();
    window_->EndFrame();
    EXPECT_EQ(window_->GetFrameWidth(), 64);
    window_->Destroy();
    EXPECT_FALSE(UsesDirectDraw());
    EXPECT_EQ(window_->Resize(100, 100), S_FALSE);
    window_->Present(true);
    window_->Blank();
    EXPECT_EQ(window_->GetFrontPixels(), nullptr);
}

TEST_F(DDVizWindowTest, FallsBackInTheMiddleOfAFrame) {
    Show(640, 480);
    EXPECT_TRUE(DrawFrame(0x00112233));
    window_->BeginFrame();
    ASSERT_TRUE(window_->GetFrontPixels());
    TdkpFailDirectDraw(1, E_FAIL);
    void* back = window_->GetBackPixels();
    void* front = window_->GetFrontPixels();
    ASSERT_TRUE(back && front);
    EXPECT_NE(front, back);
    EXPECT_FALSE(UsesDirectDraw());
    EXPECT_TRUE(IsUnlockedForOthers());
    EXPECT_EQ(window_->GetFrameWidth(), 240) << "half of the frame that was";
    Paint(front, [](int, int) { return 0x00FFFFFF; });
    window_->ReleaseFront();
    window_->Present(true);
    window_->EndFrame();
    ServeMessages();
    EXPECT_EQ(window_->GetFrameWidth(), 320);
    EXPECT_TRUE(DrawFrame(0x00778899));
    ExpectColor(0x00778899);
    // For life.
    window_->SetDrawsFrames(false);
    window_->SetDrawsFrames(true);
    EXPECT_EQ(window_->Resize(100, 100), S_OK);
    EXPECT_FALSE(UsesDirectDraw());
}

TEST_F(DDVizWindowTest, TheWindowMayGoInTheMiddleOfAFrame) {
    Show(640, 480);
    window_->BeginFrame();
    void* const front = window_->GetFrontPixels();
    DestroyWindow(Handle());
    EXPECT_EQ(window_->GetFrontPixels(), front);
    Paint(front, [](int, int) { return 0x00FFFFFF; });
    window_->ReleaseFront();
    CallsMade();
    window_->Present(true);
    EXPECT_EQ(CallsMade(), 0u) << "there is no place for the picture";
    window_->EndFrame();
    EXPECT_FALSE(UsesDirectDraw());
    EXPECT_FALSE(DrawFrame(0x00ABCDEF));
}

// Asked for while the window falls back: what was posted waits in the queue, what was sent waits for the frame's end.
TEST_F(DDVizWindowTest, TheNewestSizeIsTheOneThatStays) {
    for (const auto ask : {+[](HWND window, UINT message, WPARAM size) { PostMessageA(window, message, size, 0); },
                           +[](HWND window, UINT message, WPARAM size) { SendMessageA(window, message, size, 0); }}) {
        window_ = std::make_unique<CDDVizWindow>(nullptr, parent_.Handle());
        Show(640, 480);
        window_->BeginFrame();
        ask(Handle(), kMessageResize, MAKEWPARAM(300, 200));
        TdkpFailDirectDraw(1, E_FAIL);
        EXPECT_TRUE(window_->GetFrontPixels());
        window_->EndFrame();
        ServeMessages();
        EXPECT_FALSE(UsesDirectDraw());
        const Picture picture(Handle());
        EXPECT_EQ(picture.width, 300);
        EXPECT_EQ(picture.height, 200);
        EXPECT_EQ(window_->GetFrameWidth(), 300);
    }
}

// Even those that have just been made. Nothing is out of use for good, so nothing falls back.
TEST_F(DDVizWindowTest, SurfacesThatAreLostAllTheTimeEndNothing) {
    Show(320, 240);
    std::atomic<bool> done = false;
    std::thread loser([&] {
        while (!done) TdkpLoseDirectDrawSurfaces();
    });
    for (int32_t i = 0; i < 200; ++i) {
        window_->Resize(300 + i % 2, 240);
        DrawFrame(0x00111111);
    }
    done = true;
    loser.join();
    EXPECT_TRUE(UsesDirectDraw());
    EXPECT_TRUE(DrawFrame(0x00445566));
    ExpectColor(0x00445566);
    EXPECT_TRUE(IsUnlockedForOthers());
}

TEST_F(DDVizWindowTest, WhicheverCallFailsThereIsAPictureAndNothingIsLeft) {
    int fallBacks = 0;
    for (const HRESULT failure : {static_cast<HRESULT>(E_FAIL), static_cast<HRESULT>(DDERR_SURFACELOST)}) {
        // The first time none does, which tells how many there are.
        uint32_t calls = 0;
        for (uint32_t failing = 0; failing <= calls; ++failing) {
            SCOPED_TRACE(failing);
            window_.reset();
            ASSERT_FALSE(UsesDirectDraw());
            const NothingLeft nothingLeft;
            window_ = std::make_unique<CDDVizWindow>(nullptr, parent_.Handle());
            TdkpFailDirectDraw(failing, failure);
            window_->SetShown(true);
            window_->Resize(200, 150);
            ShowWindow(Handle(), SW_SHOW);
            for (const uint32_t color : {0x00111111u, 0x00222222u, 0x00333333u}) DrawFrame(color);
            window_->Resize(100, 80);
            DrawFrame(0x00444444);
            window_->Blank();
            calls = std::max(calls, CallsMade());
            EXPECT_TRUE(DrawFrame(0x00ABCDEF));
            ExpectColor(0x00ABCDEF);
            EXPECT_TRUE(IsUnlockedForOthers());
            fallBacks += !UsesDirectDraw();
            window_.reset();
        }
        EXPECT_GT(calls, 40u);
    }
    EXPECT_GT(fallBacks, 20);
}

// A host that does everything at once while frames are made; the thread sanitizer watches.
TEST_F(DDVizWindowTest, HostAndFramesTogether) {
    Show(320, 240);
    std::atomic<bool> done = false;
    std::thread host([&] {
        for (int32_t i = 0; i < 60; ++i) {
            window_->SetPlaying(true);
            window_->Resize(200 + 40 * (i % 20), 150 + 10 * (i % 7));
            EXPECT_TRUE(i != 0 || window_->GetFrameWidth() == 200) << "it is done when it returns";
            window_->SetPlaying(false);
            if (i % 5 == 0) window_->SetDrawsFrames(false);
            PostMessageA(Handle(), kMessageResize, MAKEWPARAM(300 + i, 240), 0);
            if (i % 5 == 0) window_->SetDrawsFrames(true);
            // The rest is the plain window's.
            if (i == 40) TdkpFailDirectDraw(1, E_FAIL);
        }
        done = true;
    });
    while (!done) DrawFrame(0x00DDDDDD);
    host.join();
    ServeMessages();
    EXPECT_TRUE(DrawFrame(0x00123456));
    EXPECT_TRUE(IsUnlockedForOthers());
}

constexpr char kConverter[] = STAGE_DIR "/Codecs/qzcolor.so";

// On a screen of 16 bits, with the staged converter and without.
struct CodecsFolder {
    explicit CodecsFolder(const char* folder) { GetDLLAccessPath()->SetPath(DLLKind::Codecs, folder); }
    ~CodecsFolder() { GetDLLAccessPath()->SetPath(DLLKind::Codecs, "/nowhere"); }
};

class DDVizWindowConversionTest : public DDVizWindowTest, public testing::WithParamInterface<bool> {
protected:
    DDVizWindowConversionTest() : DDVizWindowTest(16) {
        const CodecsFolder folder(GetParam() ? STAGE_DIR "/Codecs" : "/nowhere");
        window_ = std::make_unique<CDDVizWindow>(nullptr, parent_.Handle());
    }
};

TEST_P(DDVizWindowConversionTest, ConvertsOrLeavesItToGDI) {
    constexpr uint32_t kTop = 0x00FF0000, kBottom = 0x000000FF;
    if (GetParam() && !std::filesystem::exists(kConverter)) GTEST_SKIP() << "there is no converter here";
    Show(320, 240);
    EXPECT_EQ(UsesDirectDraw(), GetParam());
    EXPECT_EQ(window_->GetFramePitch(), -4 * 320);
    EXPECT_TRUE(DrawFrame(0x0000FF00));
    ExpectColor(0x0000FF00);
    const auto expectHalves = [&] {
        Paint(window_->GetFrontPixels(), [](int, int y) { return y < 120 ? kTop : kBottom; });
        window_->ReleaseFront();
        window_->Present(true);
        const Picture picture(Handle());
        EXPECT_EQ(picture.At(0, 0), kTop);
        EXPECT_EQ(picture.At(319, 119), kTop);
        EXPECT_EQ(picture.At(0, 120), kBottom);
        EXPECT_EQ(picture.At(319, 239), kBottom);
    };
    expectHalves();
    if (!GetParam()) return;
    Show(640, 480);
    EXPECT_EQ(window_->GetFrameWidth(), 480);
    TdkpLoseDirectDrawSurfaces();
    DrawFrame(0x00FFFFFF);
    EXPECT_TRUE(DrawFrame(0x000000FF));
    ExpectColor(0x000000FF);
    TdkpFailDirectDraw(1, E_FAIL);
    DrawFrame(0x00FFFFFF);
    EXPECT_FALSE(UsesDirectDraw());
    EXPECT_TRUE(IsUnlockedForOthers());
    Show(320, 240);
    expectHalves();
}

INSTANTIATE_TEST_SUITE_P(Converter, DDVizWindowConversionTest, testing::Bool(),
                         [](const auto& one) { return one.param ? "Staged" : "None"; });

}  // namespace
}  // namespace tdkviz::test
