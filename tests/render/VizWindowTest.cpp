#include <algorithm>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "src/render/VizWindow.h"
#include "src/support/DLLAccessPath.h"
#include "tests/render/WindowTools.h"
#include "tests/support/TestObjects.h"

namespace tdkviz::test {
namespace {

class VizWindowTest : public testing::Test {
protected:
    ParentWindow parent_;
    CVizWindow window_{nullptr, parent_.Handle()};

    HWND Handle() const { return window_.GetWindowHandle(); }
    void Show(int32_t width, int32_t height) {
        window_.SetShown(true);
        window_.Resize(width, height);
        ShowWindow(Handle(), SW_SHOW);
        ServeMessages();
    }
    uint32_t* Front() {
        auto* pixels = static_cast<uint32_t*>(window_.GetFrontPixels());
        window_.ReleaseFront();
        return pixels;
    }
    void PresentPattern() {
        uint32_t* pixels = Front();
        ASSERT_NE(pixels, nullptr);
        const int width = window_.GetFrameWidth(), height = window_.GetFrameHeight();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) pixels[(height - 1 - y) * width + x] = ColorAt(x, y);
        }
        window_.Present(true);
    }
    // How far a colour of the pattern's is off, in a window that shows each pixel of the frame once or twice.
    int LargestError(const Picture& picture) const {
        int largest = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const uint32_t expected =
                    ColorAt(x * window_.GetFrameWidth() / picture.width, y * window_.GetFrameHeight() / picture.height);
                for (const int shift : {0, 8, 16})
                    largest = std::max(largest, std::abs(static_cast<int>(picture.At(x, y) >> shift & 0xFF) -
                                                         static_cast<int>(expected >> shift & 0xFF)));
            }
        }
        return largest;
    }
    void PresentColor(uint32_t color) {
        uint32_t* pixels = Front();
        ASSERT_NE(pixels, nullptr);
        std::fill_n(pixels, static_cast<size_t>(window_.GetFrameWidth() * window_.GetFrameHeight()), color);
        window_.Present(true);
    }
    // Paints over the window behind the object's back.
    void Scribble() {
        const HDC context = GetDC(Handle());
        const RECT all = {0, 0, kDisplayWidth, kDisplayHeight};
        FillRect(context, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        ReleaseDC(Handle(), context);
    }
    void ExpectColor(uint32_t color) {
        const Picture picture(Handle());
        ASSERT_GT(picture.width, 0);
        const int other = picture.FirstOtherThan(color);
        EXPECT_EQ(other, -1) << "at " << other % picture.width << ", " << other / picture.width << " of "
                             << picture.width << " x " << picture.height;
    }
};

struct SizeCase {
    int32_t width, height, displayWidth, displayHeight, frameWidth, frameHeight;
};
constexpr SizeCase kSizeCases[] = {
    {320, 240, 320, 240, 320, 240},    // exactly at the limit
    {321, 240, 324, 240, 162, 120},    // rounded up first
    {1280, 960, 1280, 960, 640, 480},  // halved once only
    {200, 150, 200, 152, 200, 152},   {1, 1, 4, 4, 4, 4},          {1280, 720, 1280, 720, 640, 360},
    {1000, 76, 1000, 76, 1000, 76},   {4, 1000, 4, 1000, 4, 1000},
};

TEST_F(VizWindowTest, SizesOfWindowAndFramesAndTheRightWayUp) {
    EXPECT_EQ(window_.GetFrameWidth(), 1);
    EXPECT_EQ(window_.GetFrameHeight(), 1);
    for (const SizeCase& c : kSizeCases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        Show(c.width, c.height);
        EXPECT_EQ(window_.GetFrameWidth(), c.frameWidth);
        EXPECT_EQ(window_.GetFrameHeight(), c.frameHeight);
        EXPECT_EQ(window_.GetFramePitch(), -4 * c.frameWidth);
        void* const front = Front();
        void* const back = window_.GetBackPixels();
        window_.ReleaseBack();
        EXPECT_NE(front, back);
        window_.SwapBuffers();
        EXPECT_EQ(Front(), back);
        PresentPattern();
        const Picture picture(Handle());
        ASSERT_EQ(picture.width, c.displayWidth);
        ASSERT_EQ(picture.height, c.displayHeight);
        EXPECT_EQ(LargestError(picture), 0);
    }
}

// The depth changes under a window, and comes to it with its next size.
TEST_F(VizWindowTest, EachRebuildTakesTheDepthOfThatTime) {
    for (const char* codecs : {STAGE_DIR "/Codecs", "/nowhere"}) {
        window_.Destroy();
        GetDLLAccessPath()->SetPath(DLLKind::Codecs, codecs);
        ASSERT_TRUE(window_.Create(1, 1));
        for (const int depth : {32, 16, 15, 8, 32, 15, 32}) {
            EXPECT_TRUE(TdkpChangeDisplayDepth(depth));
            PresentPattern();  // the surface is still the one of before
            for (const SizeCase& c : {kSizeCases[0], kSizeCases[2], kSizeCases[3]}) {
                SCOPED_TRACE(codecs + (" " + std::to_string(depth)) + ", width " + std::to_string(c.width));
                Show(c.width, c.height);
                EXPECT_EQ(GetDisplayFormat(), depth == 32   ? FormatRGB32
                                              : depth == 16 ? FormatRGB565
                                              : depth == 15 ? FormatRGB555
                                                            : FormatRGB8);
                PresentPattern();
                // Two bytes a pixel keep five bits of a colour. A palette has the corners of a cube of six levels, none
                // of which is farther than half the diagonal of a step of 51.
                const Picture picture(Handle());
                EXPECT_EQ(picture.width, c.displayWidth);
                EXPECT_LE(LargestError(picture), depth == 8 ? 45 : 7);
                EXPECT_EQ(LargestError(picture) == 0, depth == 32);
            }
        }
    }
    EXPECT_FALSE(TdkpChangeDisplayDepth(12));
}

TEST_F(VizWindowTest, NothingStaysFromBeforeAResize) {
    const SizeCase steps[] = {kSizeCases[3], kSizeCases[5], kSizeCases[3], kSizeCases[0], kSizeCases[1]};
    for (const SizeCase& c : steps) {
        Show(c.width, c.height);
        ExpectColor(0);
        PresentColor(0x00FF8040);
        ExpectColor(0x00FF8040);
    }
    // The size that stands already: the picture stays.
    window_.Resize(324, 240);
    ExpectColor(0x00FF8040);
}

TEST_F(VizWindowTest, OddSizesAreServedSafely) {
    for (const int32_t size : {0, -1, INT32_MIN, INT32_MAX, 65535, 65536}) {
        EXPECT_EQ(window_.Resize(size, 8), S_OK) << size;
        EXPECT_EQ(window_.Resize(8, size), S_OK) << size;
        window_.Present(true);
    }
    Show(64, 64);
    PresentPattern();
}

// A plug-in that serves messages while it paints keeps its pixels.
TEST_F(VizWindowTest, MessagesWithinAFrameWaitForItsEnd) {
    Show(100, 100);
    auto* pixels = static_cast<uint32_t*>(window_.GetFrontPixels());
    SendMessageA(Handle(), kMessageResize, MAKEWPARAM(640, 480), 0);
    window_.SetDrawsFrames(false);
    SendMessageA(Handle(), WM_CLOSE, 0, 0);
    ServeMessages();
    EXPECT_EQ(window_.GetFrameWidth(), 100);
    EXPECT_EQ(window_.GetFrontPixels(), pixels);
    std::fill_n(pixels, 100 * 100, 0x00ABCDEFu);
    window_.ReleaseFront();
    window_.Present(true);
    ServeMessages();
    EXPECT_EQ(Handle(), nullptr);
    EXPECT_EQ(window_.GetFrontPixels(), nullptr);
}

TEST_F(VizWindowTest, WindowModeHoldsNoSurfaces) {
    Show(320, 240);
    const TdkpCounts with = Counts();
    window_.SetDrawsFrames(false);
    window_.Present(true);
    ServeMessages();
    EXPECT_EQ(window_.GetFrontPixels(), nullptr);
    EXPECT_EQ(window_.GetBackPixels(), nullptr);
    EXPECT_LT(Counts().gdiObjects, with.gdiObjects);
    // A size is only kept until frames come back.
    window_.Resize(401, 300);
    EXPECT_EQ(window_.GetFrontPixels(), nullptr);
    window_.SetDrawsFrames(true);
    ServeMessages();
    EXPECT_EQ(window_.GetFrameWidth(), 202);
    EXPECT_EQ(Counts().gdiObjects, with.gdiObjects);
    EXPECT_EQ(Counts().handles, with.handles);
    PresentColor(0x00446688);
    ExpectColor(0x00446688);
    // There and back before the window looks: nothing changes.
    window_.SetDrawsFrames(false);
    window_.SetDrawsFrames(true);
    ServeMessages();
    EXPECT_NE(Front(), nullptr);
}

TEST_F(VizWindowTest, TheEndOfPlayingWipesThePicture) {
    Show(640, 480);
    PresentColor(0x00998877);
    EXPECT_FALSE(window_.SetPlaying(false)) << "was off already: nothing is wiped";
    ExpectColor(0x00998877);
    EXPECT_FALSE(window_.SetPlaying(true));
    EXPECT_TRUE(window_.SetPlaying(false));
    ExpectColor(0);
    EXPECT_EQ(*Front(), 0u);
    EXPECT_EQ(*static_cast<uint32_t*>(window_.GetBackPixels()), 0u);
    window_.ReleaseBack();
    // In the middle of a frame: the window at once, and the frame doesn't come through.
    window_.SetPlaying(true);
    PresentColor(0x00445566);
    auto* pixels = static_cast<uint32_t*>(window_.GetFrontPixels());
    window_.SetPlaying(false);
    ExpectColor(0);
    std::fill_n(pixels, 320 * 240, 0x00FFFFFFu);
    window_.ReleaseFront();
    window_.Present(true);
    ExpectColor(0);
    PresentColor(0x00112233);
    ExpectColor(0x00112233);
}

TEST_F(VizWindowTest, PaintsByItselfOnlyWhileNotPlaying) {
    Show(320, 240);
    PresentColor(0x00336699);
    Scribble();
    InvalidateRect(Handle(), nullptr, FALSE);
    ServeMessages();
    ExpectColor(0x00336699);
    window_.SetPlaying(true);
    Scribble();
    InvalidateRect(Handle(), nullptr, FALSE);
    ServeMessages();
    ExpectColor(0x00FFFFFF);
    window_.Present(false);
    ExpectColor(0x00336699);
    window_.Blank();
    ExpectColor(0);
}

TEST_F(VizWindowTest, AReceiverMayTakeOthersAway) {
    struct Receiver : StackObject<IMPAClickReceiver> {
        HRESULT ViewClicked(uint32_t, uint32_t, uint32_t) override {
            ++clicks;
            return window->RemoveClickReceiver(toRemove);
        }
        CVizWindow* window = nullptr;
        IUnknown* toRemove = nullptr;
        int clicks = 0;
    } receivers[3];
    // Each takes the next one away, so whatever the order, none is called after it was removed.
    for (size_t i = 0; i < 3; ++i) {
        receivers[i].window = &window_;
        receivers[i].toRemove = &receivers[(i + 1) % 3];
        EXPECT_EQ(window_.AddClickReceiver(&receivers[i]), S_OK);
        EXPECT_EQ(window_.AddClickReceiver(&receivers[i]), S_OK) << "the same one";
    }
    SendMessageA(Handle(), WM_LBUTTONUP, 0, 0);
    const int calls = receivers[0].clicks + receivers[1].clicks + receivers[2].clicks;
    EXPECT_TRUE(calls == 1 || calls == 2) << calls;
    for (const Receiver& receiver : receivers) EXPECT_EQ(receiver.References, 0u);
}

TEST_F(VizWindowTest, UnloadsByMessage) {
    struct Unloader : PluginUnloader {
        void UnloadPlugin(CVizPlugin* plugin) override { plugins.push_back(reinterpret_cast<uintptr_t>(plugin)); }
        std::vector<uintptr_t> plugins;
    } unloader;
    SendMessageA(Handle(), kMessageUnload, 77, 0);
    window_.SetPluginUnloader(&unloader);
    SendMessageA(Handle(), kMessageUnload, 0, 0);
    SendMessageA(Handle(), kMessageUnload, 77, 0);
    EXPECT_EQ(unloader.plugins, std::vector<uintptr_t>{77});
}

// At once, or behind the frame in which the window went; what is still to be unloaded isn't forgotten.
TEST_F(VizWindowTest, TheWindowMayGoByAnothersHand) {
    struct Unloader : PluginUnloader {
        void UnloadPlugin(CVizPlugin* plugin) override { plugins.push_back(reinterpret_cast<uintptr_t>(plugin)); }
        std::vector<uintptr_t> plugins;
    } unloader;
    window_.SetPluginUnloader(&unloader);
    const auto destroyed = [](HWND window) { DestroyWindow(window); };
    const auto closed = [](HWND window) { SendMessageA(window, WM_CLOSE, 0, 0); };
    for (void (*end)(HWND) : {+destroyed, +closed}) {
        for (const bool inFrame : {false, true}) {
            window_.Destroy();
            const TdkpCounts without = Counts();
            ASSERT_TRUE(window_.Create(1, 1));
            Show(320, 240);
            unloader.plugins.clear();
            auto* pixels = static_cast<uint32_t*>(window_.GetFrontPixels());
            if (!inFrame) window_.ReleaseFront();
            SendMessageA(Handle(), kMessageUnload, 77, 0);
            PostMessageA(Handle(), kMessageUnload, 78, 0);
            end(Handle());
            if (inFrame) {
                EXPECT_EQ(unloader.plugins, std::vector<uintptr_t>{});
                std::fill_n(pixels, 320 * 240, 0x00ABCDEFu);
                window_.ReleaseFront();
                window_.Present(true);
            }
            EXPECT_EQ(unloader.plugins, (std::vector<uintptr_t>{77, 78}));
            EXPECT_EQ(Handle(), nullptr);
            EXPECT_EQ(window_.GetFrontPixels(), nullptr);
            window_.SetDrawsFrames(true);
            EXPECT_EQ(Counts().gdiObjects, without.gdiObjects);
            EXPECT_EQ(Counts().handles, without.handles);
        }
    }
}

TEST_F(VizWindowTest, WithoutAWindowNothingIsDone) {
    Show(320, 240);
    SendMessageA(Handle(), WM_CLOSE, 0, 0);
    CVizWindow orphan(nullptr, nullptr);
    for (CVizWindow* window : {&window_, &orphan}) {
        EXPECT_EQ(window->GetWindowHandle(), nullptr);
        EXPECT_EQ(window->Resize(100, 100), S_OK);
        EXPECT_EQ(window->GetFrontPixels(), nullptr);
        window->Present(true);
        window->Blank();
        window->SetPlaying(true);
        window->SetPlaying(false);
        window->SetDrawsFrames(false);
        window->Destroy();
    }
}

TEST(VizWindowLifeTest, TheClassGoesWithTheLastWindow) {
    const ParentWindow parent;
    WNDCLASSA info;
    {
        const CVizWindow first(nullptr, parent.Handle()), second(nullptr, parent.Handle());
        EXPECT_TRUE(GetClassInfoA(nullptr, "TDVisualizationClass", &info));
        EXPECT_EQ(info.style, 12320u);
        EXPECT_EQ(info.cbWndExtra, static_cast<int>(sizeof(void*)));
    }
    EXPECT_FALSE(GetClassInfoA(nullptr, "TDVisualizationClass", &info));
}

}  // namespace
}  // namespace tdkviz::test
