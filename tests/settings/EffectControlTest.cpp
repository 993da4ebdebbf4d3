// The effect control: its arithmetic, its messages and its pixels, beside models of their own.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "src/settings/VizEffectControl.h"
#include "tests/staged/NothingLeft.h"
#include "tests/support/Picture.h"

namespace tdkviz::test {
namespace {

constexpr DWORD kPicture = 0x204080;  // what the parent draws
constexpr int kNeverSet = INT32_MIN;

// The parent of the controls: notes what it is told, and draws.
struct Parent {
    Parent() {
        TdkpUseMemoryDisplay(1400, 900, 32);
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = Procedure;
        windowClass.lpszClassName = "EffectControlTestParent";
        RegisterClassA(&windowClass);
        window = CreateWindowExA(0, windowClass.lpszClassName, "", WS_POPUP | WS_VISIBLE, 0, 0, 800, 600, nullptr,
                                 nullptr, nullptr, nullptr);
        current = this;
    }
    ~Parent() {
        if (window) DestroyWindow(window);
        UnregisterClassA("EffectControlTestParent", nullptr);
    }
    // How often it was told of a value since the last question.
    int TakeChanges() {
        ServeMessages();
        return std::exchange(changes, 0);
    }

    HWND window = nullptr;
    int changes = 0, pictures = 0;
    static inline Parent* current = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == kMessageValueChanged) {
            ++current->changes;
        } else if (message == kMessageDrawPicture) {
            ++current->pictures;
            const auto picture = reinterpret_cast<HDC>(wParam);
            const auto& control = *reinterpret_cast<VizEffectControl*>(lParam);
            EXPECT_EQ(GetCurrentObject(picture, OBJ_BITMAP), control.Picture->Bitmap);
            EXPECT_EQ(GetPixel(picture, 5, 5), RGB(0, 0, 0)) << "filled black";
            const RECT left = {0, 0, 30, 1000};
            const HBRUSH brush = CreateSolidBrush(RGB(0x20, 0x40, 0x80));
            FillRect(picture, &left, brush);
            DeleteObject(brush);
        }
        return DefWindowProcA(window, message, wParam, lParam);
    }
};

struct Layout {
    int width, height;  // of the client area
    uint32_t axes;
    int minX, maxX, minY, maxY;
    uint32_t snapX, snapY;
};
constexpr Layout kFade = {91, 89, 1, 0, 128, 0, 100, 0, 0};
constexpr Layout kRotate = {91, 89, 1, -20, 20, 0, 100, 7, 0};
constexpr Layout kZoom = {91, 89, 3, -20, 20, -20, 20, 7, 7};
constexpr Layout kBlur = {91, 89, 1, 1, 10, 0, 100, 0, 0};
constexpr Layout kRoomy = {300, 200, 3, -20, 20, 0, 30, 1, 0};  // a mark for each value
constexpr Layout kOdd = {64, 47, 2, 0, 9, -7, 93, 0, 1};
constexpr Layout kWide = {91, 89, 3, -60, 63, 0, 300, 7, 7};
constexpr Layout kLastMark = {91, 89, 3, 0, 21, 0, 21, 0, 0};  // room for marks across, dots upwards

class EffectControlTest : public testing::Test {
protected:
    VizEffectControl& Make(const Layout& layout) {
        control_.reset();
        ServeMessages();
        // The client area is smaller than the window by a frame that is the system's affair.
        control_ = std::make_unique<VizEffectControl>();
        EXPECT_TRUE(control_->Create(3, parent_.window, 10, 20, 100, 100));
        const RECT client = Client();
        control_ = std::make_unique<VizEffectControl>();
        EXPECT_TRUE(control_->Create(3, parent_.window, 10, 20, layout.width + 100 - client.right,
                                     layout.height + 100 - client.bottom));
        EXPECT_EQ(Client().right, layout.width);
        EXPECT_EQ(Client().bottom, layout.height);
        control_->Axes = layout.axes;
        control_->SnapX = layout.snapX;
        control_->SnapY = layout.snapY;
        control_->SetRanges(layout.minX, layout.maxX, layout.minY, layout.maxY);
        return *control_;
    }
    RECT Client() const {
        RECT client = {};
        GetClientRect(control_->Window, &client);
        return client;
    }
    void Mouse(UINT message, int x, int y) { TdkpFeedMouse(control_->Window, message, MK_LBUTTON, x, y); }

    Parent parent_;
    std::unique_ptr<VizEffectControl> control_;
};

// A value for every place of the mouse, by the formulas as they are told.
int ModelValue(int distance, int span, int min, int max, uint32_t snaps) {
    const int range = max - min;
    int value = ((span / range) / 2 + distance) * range / span + min;
    const int zone = range * 3 / span;
    const int middle = min + range / 2;
    if ((snaps & 1) && std::abs(value - middle) <= zone) value = middle;
    if ((snaps & 2) && std::abs(value - min) <= zone) value = min;
    if ((snaps & 4) && std::abs(value - max) <= zone) value = max;
    return std::min(std::max(value, min), max);
}

TEST_F(EffectControlTest, DragsFollowTheFormulaAtEveryPlace) {
    for (const Layout& layout : {kFade, kRotate, kZoom, kBlur, kRoomy, kWide}) {
        VizEffectControl& control = Make(layout);
        const int spanX = layout.width - 5, spanY = layout.height - 6;
        control.SetValue(1, layout.minX);
        control.SetValue(2, layout.maxY);
        parent_.TakeChanges();
        Mouse(WM_LBUTTONDOWN, 2, layout.height - 4);
        for (int x = -30; x < layout.width + 30; ++x) {
            Mouse(WM_MOUSEMOVE, x, -50);
            ServeMessages();
            ASSERT_EQ(control.ValueX, ModelValue(x - 2, spanX, layout.minX, layout.maxX, layout.snapX)) << x;
            ASSERT_EQ(control.ValueY, layout.maxY);
        }
        Mouse(WM_LBUTTONUP, 0, 0);
        ServeMessages();
        if (layout.axes != 3) continue;
        control.SetValue(1, layout.maxX);
        Mouse(WM_LBUTTONDOWN, 4, 2);
        for (int y = -30; y < layout.height + 30; ++y) {
            Mouse(WM_MOUSEMOVE, 400, y);
            ServeMessages();
            ASSERT_EQ(control.ValueY, ModelValue(layout.height - 4 - y, spanY, layout.minY, layout.maxY, layout.snapY))
                << y;
            ASSERT_EQ(control.ValueX, layout.maxX);
        }
    }
}

TEST_F(EffectControlTest, PressesTakeTheArrowTheyHit) {
    // Arrows at x = 2 + 86 * 20 / 40 = 45 and y = 85 - 83 * 20 / 40 = 44, the inner corner at (2, 85).
    const struct {
        int valueX, valueY, x, y;
        uint32_t axis;
    } presses[] = {
        {0, 0, 45, 85, 1},  {0, 0, 38, 78, 1},  {0, 0, 51, 86, 1}, {0, 0, 52, 85, 0}, {0, 0, 37, 85, 0},
        {0, 0, 45, 77, 0},  {0, 0, 45, 87, 0},  {0, 0, 0, 44, 2},  {0, 0, 8, 37, 2},  {0, 0, 8, 50, 2},
        {0, 0, 9, 44, 0},   {0, 0, 8, 51, 0},   {0, 0, 8, 36, 0},  {0, 0, 60, 40, 0}, {-20, -20, 4, 82, 1},
        {0, -20, 4, 82, 2}, {-20, 0, 4, 82, 1},
    };
    VizEffectControl& control = Make(kZoom);
    for (const auto& press : presses) {
        control.SetValue(1, press.valueX);
        control.SetValue(2, press.valueY);
        Mouse(WM_LBUTTONDOWN, press.x, press.y);
        ServeMessages();
        EXPECT_EQ(control.ValueX, press.valueX) << "a press alone moves nothing";
        EXPECT_EQ(control.DragAxis, press.axis) << press.x << ", " << press.y;
        EXPECT_EQ(GetCapture(), press.axis ? control.Window : nullptr);
        Mouse(WM_LBUTTONUP, press.x, press.y);
        parent_.TakeChanges();
        EXPECT_EQ(control.DragAxis, 0u);
        EXPECT_EQ(GetCapture(), nullptr);
        Mouse(WM_MOUSEMOVE, 70, 20);
        EXPECT_EQ(parent_.TakeChanges(), 0) << "no drag";
    }
    // A press without the end of the one before: the horizontal arrow takes over, the vertical one doesn't.
    control.SetValue(1, 0);
    control.SetValue(2, 0);
    std::vector<uint32_t> taken;
    for (const bool across : {false, true, false}) {
        Mouse(WM_LBUTTONDOWN, across ? 45 : 4, across ? 85 : 44);
        ServeMessages();
        taken.push_back(control.DragAxis);
    }
    EXPECT_EQ(taken, (std::vector<uint32_t>{2, 1, 1}));
}

// The picture as the formulas have it, pixel by pixel.
class Model {
public:
    Model(const Layout& layout, int valueX, int valueY, uint32_t drag, bool focus = false) : layout_(layout) {
        for (int y = 0; y < layout.height; ++y) {
            for (int x = 0; x < layout.width; ++x) pixels_.push_back(x < 30 ? kPicture : 0);
        }
        const int l = 2, t = 2, r = layout.width - 3, b = layout.height - 4;
        if (layout.axes & 1) {
            Box(l, b, r, b);
            Box(r, b - 4, r, b);
            Box(l, b - 3, l, b);  // the last pixel of a line is not drawn
            const int range = layout.maxX - layout.minX, span = r - l, c = layout.width / 2;
            if (range > span / 4) {
                for (int i = 0; i < c - 2; i += 3) Dot(c + i, b - 2), Dot(c - i, b - 2);
                if (layout.snapX & 1) Box(c, b - 3, c, b);
            } else {
                for (int v = 0; v <= range; ++v) Box(l + span * v / range, b - 3, l + span * v / range, b);
            }
        }
        if (layout.axes & 2) {
            Box(l, t, l, b);
            Box(l, t, l + 4, t);
            Box(l, b, l + 3, b);
            const int range = layout.maxY - layout.minY, span = b - t, c = layout.height / 2;
            if (range > span / 4) {
                for (int i = 0; i < c - 2; i += 3) Dot(l + 2, c + i), Dot(l + 2, c - i);
                if (layout.snapY & 1) Box(l, c, l + 3, c);
            } else {
                for (int v = 0; v <= range; ++v) Box(l, b - span * v / range, l + 3, b - span * v / range);
            }
        }
        for (int y = 0; focus && y < layout.height; ++y) {
            for (int x = y % 2; x < layout.width; x += 2) {
                if (x == 0 || y == 0 || x == layout.width - 1 || y == layout.height - 1) Dot(x, y);
            }
        }
        const int px = l + (r - l) * (valueX - layout.minX) / (layout.maxX - layout.minX);
        color_ = drag & 1 ? 0xFFFF00 : 0x00FF00;
        for (int k = 0; k < 5 && (layout.axes & 1); ++k) Box(px - k, b - 2 - k, px + k, b - 2 - k);
        if (valueY == kNeverSet) return;
        const int py = b - (b - t) * (valueY - layout.minY) / (layout.maxY - layout.minY);
        color_ = drag & 2 ? 0xFFFF00 : 0x00FF00;
        for (int k = 0; k < 5; ++k) Box(l + 2 + k, py - k, l + 2 + k, py + k);
    }
    void Expect(HWND window) const {
        const Picture picture(window);
        ASSERT_EQ(picture.width, layout_.width);
        ASSERT_EQ(picture.height, layout_.height);
        for (int y = 0; y < layout_.height; ++y) {
            for (int x = 0; x < layout_.width; ++x) {
                ASSERT_EQ(picture.At(x, y), pixels_[static_cast<size_t>(y * layout_.width + x)]) << x << ", " << y;
            }
        }
    }

private:
    void Dot(int x, int y) {
        if (x < 0 || x >= layout_.width || y < 0 || y >= layout_.height) return;
        pixels_[static_cast<size_t>(y * layout_.width + x)] = color_;
    }
    void Box(int left, int top, int right, int bottom) {
        for (int y = top; y <= bottom; ++y) {
            for (int x = left; x <= right; ++x) Dot(x, y);
        }
    }
    const Layout layout_;
    std::vector<DWORD> pixels_;
    DWORD color_ = 0xFFFF00;
};

TEST_F(EffectControlTest, LooksAsDescribedToThePixel) {
    const struct {
        const Layout& layout;
        int x, y;
    } cases[] = {{kFade, 0, kNeverSet}, {kFade, 128, kNeverSet}, {kRotate, -20, kNeverSet}, {kRotate, 7, kNeverSet},
                 {kZoom, 0, 0},         {kZoom, 20, -20},        {kZoom, 13, kNeverSet},    {kZoom, -1, -1},
                 {kBlur, 4, kNeverSet}, {kRoomy, -3, 30},        {kRoomy, 11, 12},          {kOdd, 3, 50},
                 {kLastMark, 0, 21}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.layout.width << " wide, " << c.x << ", " << c.y);
        VizEffectControl& control = Make(c.layout);
        control.SetValue(1, c.x);
        if (c.y != kNeverSet) control.SetValue(2, c.y);
        ServeMessages();
        Model(c.layout, c.x, c.y, 0).Expect(control.Window);
    }
    // The dragged arrow is yellow, whoever has the focus.
    VizEffectControl& control = Make(kZoom);
    control.SetValue(1, 6);
    control.SetValue(2, -20);
    for (const HWND focused : {control.Window, parent_.window}) {
        SetFocus(focused);
        for (const uint32_t axis : {0u, 1u, 2u}) {
            control.DragAxis = axis;
            if (axis != 0) InvalidateRect(control.Window, nullptr, FALSE);
            ServeMessages();
            Model(kZoom, 6, -20, axis, focused == control.Window).Expect(control.Window);
        }
        control.DragAxis = 0;
    }
}

TEST_F(EffectControlTest, ADragEndsWithItsCapture) {
    VizEffectControl& control = Make(kZoom);
    control.SetValue(1, 0);
    control.SetValue(2, 0);
    for (const bool toAnother : {true, false}) {
        Mouse(WM_LBUTTONDOWN, 45, 85);
        ServeMessages();
        ASSERT_EQ(control.DragAxis, 1u);
        if (toAnother) {
            SetCapture(parent_.window);
        } else {
            SendMessageA(control.Window, WM_CANCELMODE, 0, 0);
        }
        EXPECT_EQ(GetCapture(), toAnother ? parent_.window : nullptr);
        parent_.TakeChanges();
        Mouse(WM_MOUSEMOVE, 70, 20);
        EXPECT_EQ(parent_.TakeChanges(), 0);
        Model(kZoom, 0, 0, 0).Expect(control.Window);
        SendMessageA(control.Window, WM_CANCELMODE, 0, 0);
        EXPECT_EQ(GetCapture(), toAnother ? parent_.window : nullptr) << "no drag of its own to cancel";
        ReleaseCapture();
    }
}

TEST_F(EffectControlTest, ParentDrawsOnlyForNewValues) {
    VizEffectControl& control = Make(kZoom);
    ServeMessages();
    EXPECT_EQ(parent_.pictures, 0) << "no value has been set";
    control.SetValue(1, 3);
    control.SetValue(2, 3);
    ServeMessages();
    EXPECT_EQ(parent_.pictures, 1);
    InvalidateRect(control.Window, nullptr, TRUE);
    ServeMessages();
    EXPECT_EQ(parent_.pictures, 1);
    Model(kZoom, 3, 3, 0).Expect(control.Window);
}

TEST(EffectControlLife, LeavesNothingInEitherOrder) {
    Parent warm;
    DestroyWindow(std::exchange(warm.window, nullptr));
    const NothingLeft nothingLeft;
    for (const bool parentFirst : {false, true}) {
        Parent parent;
        VizEffectControl control;
        ASSERT_TRUE(control.Create(1, parent.window, 0, 0, 90, 80));
        control.SetValue(1, 50);
        ServeMessages();
        if (parentFirst) DestroyWindow(std::exchange(parent.window, nullptr));
        control.SetValue(1, 60);
        control.Destroy();
        control.Destroy();
        EXPECT_EQ(control.Window, nullptr);
    }
    VizEffectControl tiny;
    EXPECT_FALSE(tiny.Create(1, reinterpret_cast<HWND>(uintptr_t{77}), 0, 0, 90, 80)) << "no such parent";
    tiny.SetValue(1, 3);
}

}  // namespace
}  // namespace tdkviz::test
