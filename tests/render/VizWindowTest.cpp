#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "src/render/VizWindow.h"
#include "tests/render/WindowTools.h"

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
    // Presents a frame in which every pixel differs from its neighbours; coordinates from the top.
    static uint32_t ColorAt(int x, int y) { return static_cast<uint32_t>(0x010101 + (x << 12) + y) & 0xFFFFFF; }
    void PresentPattern() {
        uint32_t* pixels = Front();
        ASSERT_NE(pixels, nullptr);
        const int width = window_.GetFrameWidth(), height = window_.GetFrameHeight();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) pixels[(height - 1 - y) * width + x] = ColorAt(x, y);
        }
        window_.Present(true);
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

TEST_F(VizWindowTest, SizesOfWindowAndFrames) {
    EXPECT_EQ(window_.GetFrameWidth(), 1);
    EXPECT_EQ(window_.GetFrameHeight(), 1);
    for (const SizeCase& c : kSizeCases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        EXPECT_EQ(window_.Resize(c.width, c.height), S_OK);
        RECT client;
        GetClientRect(Handle(), &client);
        EXPECT_EQ(client.right, c.displayWidth);
        EXPECT_EQ(client.bottom, c.displayHeight);
        EXPECT_EQ(window_.GetFrameWidth(), c.frameWidth);
        EXPECT_EQ(window_.GetFrameHeight(), c.frameHeight);
        EXPECT_EQ(window_.GetFramePitch(), -4 * c.frameWidth);
        EXPECT_NE(window_.GetFrontPixels(), window_.GetBackPixels());
        window_.ReleaseFront();
        window_.ReleaseBack();
    }
}

TEST_F(VizWindowTest, ShowsFramesTheRightWayUpAtEverySize) {
    for (const SizeCase& c : kSizeCases) {
        Show(c.width, c.height);
        PresentPattern();
        const Picture picture(Handle());
        ASSERT_EQ(picture.width, c.displayWidth);
        ASSERT_EQ(picture.height, c.displayHeight);
        int wrong = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const int frameX = x * c.frameWidth / c.displayWidth, frameY = y * c.frameHeight / c.displayHeight;
                wrong += (picture.At(x, y) & 0xFFFFFF) != ColorAt(frameX, frameY);
            }
        }
        EXPECT_EQ(wrong, 0) << c.width << "x" << c.height;
    }
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

TEST_F(VizWindowTest, SwapExchangesTheFrames) {
    Show(40, 40);
    void* const front = window_.GetFrontPixels();
    void* const back = window_.GetBackPixels();
    window_.ReleaseBack();
    window_.ReleaseFront();
    window_.SwapBuffers();
    EXPECT_EQ(Front(), back);
    EXPECT_EQ(window_.GetBackPixels(), front);
    window_.ReleaseBack();
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

TEST_F(VizWindowTest, ResizeByMessage) {
    Show(100, 100);
    PostMessageA(Handle(), kMessageResize, MAKEWPARAM(641, 400), 0);
    EXPECT_EQ(window_.GetFrameWidth(), 100);
    ServeMessages();
    EXPECT_EQ(window_.GetFrameWidth(), 322);
    EXPECT_EQ(window_.GetFrameHeight(), 200);
}

TEST_F(VizWindowTest, ResizeOnAnotherThreadIsDoneWhenItReturns) {
    std::atomic<bool> done = false;
    int32_t width = 0;
    std::thread host([&] {
        window_.Resize(640, 480);
        width = window_.GetFrameWidth();
        done = true;
    });
    while (!done) {
        ServeMessages();
        PresentColor(0x123456);
    }
    host.join();
    EXPECT_EQ(width, 320);
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

// A host that does everything at once while frames are made; the thread sanitizer watches.
TEST_F(VizWindowTest, HostAndFramesTogether) {
    Show(320, 240);
    std::atomic<bool> done = false;
    std::thread host([&] {
        for (int32_t i = 0; i < 60; ++i) {
            window_.SetPlaying(true);
            window_.Resize(200 + 40 * (i % 20), 150 + 10 * (i % 7));
            window_.SetPlaying(false);
            if (i % 5 == 0) window_.SetDrawsFrames(false);
            PostMessageA(Handle(), kMessageResize, MAKEWPARAM(300 + i, 240), 0);
            if (i % 5 == 0) window_.SetDrawsFrames(true);
        }
        window_.SetPlaying(true);
        window_.SetPlaying(false);
        done = true;
    });
    while (!done) {
        ServeMessages();
        auto* pixels = static_cast<uint32_t*>(window_.GetFrontPixels());
        if (!pixels) continue;
        std::fill_n(pixels, static_cast<size_t>(window_.GetFrameWidth() * window_.GetFrameHeight()), 0x00DDDDDDu);
        window_.ReleaseFront();
        window_.Present(true);
    }
    host.join();
    ServeMessages();
    EXPECT_EQ(window_.GetFrameWidth() * 2, 360);
    window_.Present(false);
}

struct CallLog : IVizClickReceiver, IVizRightClickReceiver, PluginUnloader {
    std::string text;
    void OnLeftClick(uint32_t x, uint32_t y, uint32_t flags) override { Add("L", x, y, flags); }
    void OnRightClick(uint32_t x, uint32_t y) override { Add("R", x, y, 0); }
    void UnloadPlugin(CVizPlugin* plugin) override {
        Add("U", static_cast<uint32_t>(reinterpret_cast<uintptr_t>(plugin)), 0, 0);
    }
    void Add(const char* who, uint32_t x, uint32_t y, uint32_t flags) {
        text += std::string(who) + std::to_string(x) + "," + std::to_string(y) + "," + std::to_string(flags) + " ";
    }
    std::string Take() { return std::exchange(text, {}); }
};

struct Receiver : IMPAClickReceiver {
    CallLog* log = nullptr;
    const char* name = "";
    ULONG count = 1;
    CVizWindow* window = nullptr;
    IUnknown* toRemove = nullptr;

    HRESULT STDMETHODCALLTYPE QueryInterface(const GUID&, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count; }
    ULONG STDMETHODCALLTYPE Release() override { return --count; }
    HRESULT ViewClicked(uint32_t x, uint32_t y, uint32_t flags) override {
        log->Add(name, x, y, flags);
        if (toRemove) window->RemoveClickReceiver(toRemove);
        return S_OK;
    }
};

TEST_F(VizWindowTest, ClicksReachTheViewThenTheReceivers) {
    Show(320, 240);
    CallLog log;
    Receiver one, right;
    one.log = right.log = &log;
    one.name = "a";
    right.name = "b";
    const auto click = [this](UINT message) { SendMessageA(Handle(), message, MK_SHIFT, MAKELPARAM(7, 0xFFF0)); };
    click(WM_LBUTTONUP);
    EXPECT_EQ(log.Take(), "");
    window_.SetClickTarget(&log);
    window_.SetRightClickTarget(&log);
    EXPECT_EQ(window_.RemoveClickReceiver(&one), E_FAIL);
    EXPECT_EQ(window_.AddClickReceiver(&one), S_OK);
    EXPECT_EQ(window_.AddClickReceiver(&one), S_OK);
    EXPECT_EQ(window_.AddRightClickReceiver(&right), S_OK);
    EXPECT_EQ(window_.RemoveRightClickReceiver(&one), E_FAIL);
    click(WM_LBUTTONUP);
    EXPECT_EQ(log.Take(), "L7,65520,4 a7,65520,4 ");
    click(WM_RBUTTONUP);
    EXPECT_EQ(log.Take(), "R7,65520,0 b7,65520,4 ");
    EXPECT_EQ(window_.RemoveClickReceiver(&one), S_OK);
    EXPECT_EQ(window_.RemoveRightClickReceiver(&right), S_OK);
    window_.SetRightClickTarget(nullptr);
    click(WM_LBUTTONUP);
    click(WM_RBUTTONUP);
    EXPECT_EQ(log.Take(), "L7,65520,4 ");
    EXPECT_EQ(one.count, 1u);
    EXPECT_EQ(right.count, 1u);
}

TEST_F(VizWindowTest, AReceiverMayTakeOthersAway) {
    CallLog log;
    Receiver receivers[3];
    for (Receiver& receiver : receivers) {
        receiver.log = &log;
        receiver.name = "r";
        receiver.window = &window_;
        window_.AddClickReceiver(&receiver);
    }
    // Each takes the next one away, so whatever the order, none is called after it was removed.
    for (size_t i = 0; i < 3; ++i) receivers[i].toRemove = &receivers[(i + 1) % 3];
    SendMessageA(Handle(), WM_LBUTTONUP, 0, 0);
    const size_t calls = log.Take().size() / std::string("r0,0,0 ").size();
    EXPECT_GE(calls, 1u);
    EXPECT_LE(calls, 2u);
    for (const Receiver& receiver : receivers) EXPECT_EQ(receiver.count, 1u);
}

TEST_F(VizWindowTest, UnloadsByMessage) {
    CallLog log;
    SendMessageA(Handle(), kMessageUnload, 77, 0);
    window_.SetPluginUnloader(&log);
    SendMessageA(Handle(), kMessageUnload, 0, 0);
    SendMessageA(Handle(), kMessageUnload, 77, 0);
    EXPECT_EQ(log.Take(), "U77,0,0 ");
}

TEST_F(VizWindowTest, CloseLeavesAnObjectThatDoesNothing) {
    Show(320, 240);
    SendMessageA(Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(Handle(), nullptr);
    EXPECT_EQ(window_.GetFrontPixels(), nullptr);
    window_.Present(true);
    window_.Blank();
    window_.SetPlaying(true);
    window_.SetPlaying(false);
    window_.SetDrawsFrames(false);
    EXPECT_EQ(window_.Resize(100, 100), S_OK);
    window_.Destroy();
}

// Reaches what only a converter or a failure would bring about.
class ProbeWindow : public CVizWindow {
public:
    using CVizWindow::CVizWindow;
    void UseConverter(ColorConverterFunction function) {
        NeedsConversion = true;
        ConvertFrame = function;
    }
    void LoseFrontBuffer() {
        RawBuffer0.Free();
        FrontPixels = nullptr;
    }
    void SetRebuilding(bool rebuilding) { Rebuilding = rebuilding; }
};

int32_t g_converted[14];
int32_t FillWithConverter(void* to, int32_t toWidth, int32_t toHeight, int32_t toPitch, int32_t toX, int32_t toY,
                          int32_t toRectWidth, int32_t toRectHeight, const void* from, int32_t fromWidth,
                          int32_t fromHeight, int32_t fromPitch, int32_t fromX, int32_t fromY, int32_t fromRectWidth,
                          int32_t fromRectHeight) {
    const int32_t values[] = {toWidth,   toHeight,   toPitch,   toX,   toY,   toRectWidth,   toRectHeight,
                              fromWidth, fromHeight, fromPitch, fromX, fromY, fromRectWidth, fromRectHeight};
    std::copy(std::begin(values), std::end(values), g_converted);
    std::fill_n(static_cast<uint32_t*>(to), static_cast<size_t>(toWidth * toHeight),
                *static_cast<const uint32_t*>(from));
    return 0;
}

TEST(VizWindowProbeTest, TheConverterFillsTheWholeSurface) {
    const ParentWindow parent;
    ProbeWindow window(nullptr, parent.Handle());
    window.Resize(640, 480);
    ShowWindow(window.GetWindowHandle(), SW_SHOW);
    window.UseConverter(FillWithConverter);
    *static_cast<uint32_t*>(window.GetFrontPixels()) = 0x00123456;
    window.ReleaseFront();
    window.Present(true);
    const int32_t expected[] = {640, 480, -2560, 0, 0, 640, 480, 320, 240, -1280, 0, 0, 320, 240};
    for (size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(g_converted[i], expected[i]) << i;
    EXPECT_EQ(Picture(window.GetWindowHandle()).FirstOtherThan(0x00123456), -1);
}

TEST(VizWindowProbeTest, RefusesFramesThatAreNotThere) {
    const ParentWindow parent;
    ProbeWindow window(nullptr, parent.Handle());
    window.Resize(320, 240);
    window.SetRebuilding(true);
    EXPECT_EQ(window.GetFrontPixels(), nullptr);
    EXPECT_EQ(window.GetBackPixels(), nullptr);
    window.Present(true);
    window.SetRebuilding(false);
    window.LoseFrontBuffer();
    EXPECT_EQ(window.GetFrontPixels(), nullptr);
    EXPECT_NE(window.GetBackPixels(), nullptr);
    window.ReleaseBack();
    window.Present(true);
    window.SetPlaying(true);
    window.SetPlaying(false);
}

TEST(VizWindowLifeTest, LeavesNothingBehind) {
    const ParentWindow parent;
    ServeMessages();
    const TdkpCounts before = Counts();
    for (int round = 0; round < 3; ++round) {
        CVizWindow first(nullptr, parent.Handle());
        CVizWindow second(nullptr, parent.Handle());
        for (const SizeCase& c : kSizeCases) first.Resize(c.width, c.height);
        first.SetDrawsFrames(false);
        ServeMessages();
        WNDCLASSA info;
        EXPECT_TRUE(GetClassInfoA(nullptr, "TDVisualizationClass", &info));
        EXPECT_EQ(info.style, 12320u);
        EXPECT_EQ(info.cbWndExtra, static_cast<int>(sizeof(void*)));
    }
    WNDCLASSA info;
    EXPECT_FALSE(GetClassInfoA(nullptr, "TDVisualizationClass", &info));
    const TdkpCounts after = Counts();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects);
}

TEST(VizWindowLifeTest, WithoutAParentThereIsNoWindow) {
    CVizWindow window(nullptr, nullptr);
    EXPECT_EQ(window.GetWindowHandle(), nullptr);
    EXPECT_EQ(window.Resize(320, 240), S_OK);
    EXPECT_EQ(window.GetFrontPixels(), nullptr);
    window.Present(true);
    window.SetDrawsFrames(false);
}

}  // namespace
}  // namespace tdkviz::test
