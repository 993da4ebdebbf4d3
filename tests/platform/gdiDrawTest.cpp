// Lines, shapes and pixels.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "tests/platform/gdiSupport.h"

namespace {

using namespace gditest;

// What is drawn, as rows of characters: '.' for black, 'p' for the pen's colour, 'b' for the brush's, 'g' for the
// background colour.
class Canvas : public Surface {
public:
    explicit Canvas(int columns, int rows, int style = PS_SOLID, int penWidth = 1, const Form& pixelForm = k32)
        : Surface(pixelForm, columns, rows),
          pen_(CreatePen(style, penWidth, RGB(255, 0, 0))),
          brush_(CreateSolidBrush(RGB(0, 255, 0))) {
        SelectObject(dc, pen_);
        SelectObject(dc, brush_);
        SetBkColor(dc, RGB(0, 0, 255));
    }
    ~Canvas() {
        SelectObject(dc, GetStockObject(BLACK_PEN));
        SelectObject(dc, GetStockObject(WHITE_BRUSH));
        DeleteObject(pen_);
        DeleteObject(brush_);
    }

    std::vector<std::string> Rows() const {
        std::vector<std::string> rows;
        for (int y = 0; y < height; ++y) {
            std::string row;
            for (int x = 0; x < width; ++x) row += NameOf(Color(x, y));
            rows.push_back(row);
        }
        return rows;
    }

private:
    static char NameOf(uint32_t color) {
        static const std::map<uint32_t, char> names = {{0, '.'}, {0xFF0000, 'p'}, {0x00FF00, 'b'}, {0x0000FF, 'g'}};
        return names.contains(color) ? names.at(color) : '?';
    }

    const HPEN pen_;
    const HBRUSH brush_;
};

using Rows = std::vector<std::string>;

TEST(Line, IsTheNearestPixelOfEachStepWithoutTheLast) {
    for (int x = -9; x <= 9; ++x) {
        for (int y = -9; y <= 9; ++y) {
            Canvas canvas(21, 21);
            MoveToEx(canvas.dc, 10, 10, nullptr);
            LineTo(canvas.dc, 10 + x, 10 + y);
            Rows expected(21, std::string(21, '.'));
            const int steps = std::max(std::abs(x), std::abs(y));
            for (int i = 0; i < steps; ++i) {
                // Halves go up and to the left, whatever the direction.
                const auto place = [&](int total) {
                    const double exact = 10 + static_cast<double>(total) * i / steps;
                    const int low = static_cast<int>(exact);
                    return exact - low > 0.5 ? low + 1 : low;
                };
                expected[static_cast<size_t>(place(y))][static_cast<size_t>(place(x))] = 'p';
            }
            EXPECT_EQ(expected, canvas.Rows()) << x << " " << y;
        }
    }
}

TEST(Line, FarEndsAreClippedNotDrawnAndDirectionIsKept) {
    Canvas canvas(20, 10);
    MoveToEx(canvas.dc, -1000000, -500000, nullptr);
    LineTo(canvas.dc, 1000000, 500000);
    for (int x = 0; x < 20; ++x) {
        for (int y = 0; y < 10; ++y) EXPECT_EQ(x / 2 == y ? 0xFF0000u : 0u, canvas.Color(x, y)) << x << " " << y;
    }
    POINT former;
    MoveToEx(canvas.dc, 0, 0, &former);
    EXPECT_EQ(1000000, former.x);
    EXPECT_EQ(500000, former.y);
    MoveToEx(canvas.dc, static_cast<int>(0x80000000), 3, nullptr);
    LineTo(canvas.dc, 0x7FFFFFFF, 3);
    EXPECT_EQ(std::string(20, 'p'), canvas.Rows()[3]);
}

TEST(Shape, RectangleHasNoRightAndBottomEdge) {
    struct Case {
        int style, left, top, right, bottom;
        Rows rows;
    };
    const Case cases[] = {
        {PS_SOLID, 1, 0, 5, 4, {".pppp.", ".pbbp.", ".pbbp.", ".pppp."}},
        {PS_SOLID, 5, 4, 1, 0, {".pppp.", ".pbbp.", ".pbbp.", ".pppp."}},
        {PS_NULL, 1, 0, 5, 4, {".bbb..", ".bbb..", ".bbb..", "......"}},
        {PS_SOLID, 2, 1, 3, 4, {"......", "..p...", "..p...", "..p..."}},
        {PS_SOLID, 2, 1, 3, 2, {"......", "..p...", "......", "......"}},
        {PS_SOLID, 2, 1, 2, 4, {"......", "......", "......", "......"}},
        {PS_SOLID, -5, -5, 3, 2, {"bbp...", "ppp...", "......", "......"}},
    };
    for (const Case& one : cases) {
        Canvas canvas(6, 4, one.style);
        EXPECT_TRUE(Rectangle(canvas.dc, one.left, one.top, one.right, one.bottom));
        EXPECT_EQ(one.rows, canvas.Rows()) << one.left << " " << one.right;
    }
    Canvas hollow(6, 4);
    SelectObject(hollow.dc, GetStockObject(HOLLOW_BRUSH));
    Rectangle(hollow.dc, 1, 0, 5, 4);
    EXPECT_EQ((Rows{".pppp.", ".p..p.", ".p..p.", ".pppp."}), hollow.Rows());
}

TEST(Shape, FillRectAndFrameRectEndBeforeTheirEdges) {
    Canvas canvas(6, 4);
    const RECT rect = {1, 1, 5, 4};
    const HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    EXPECT_TRUE(FillRect(canvas.dc, &rect, red));
    EXPECT_EQ((Rows{"......", ".pppp.", ".pppp.", ".pppp."}), canvas.Rows());
    const HBRUSH green = CreateSolidBrush(RGB(0, 255, 0));
    EXPECT_TRUE(FrameRect(canvas.dc, &rect, green));
    EXPECT_EQ((Rows{"......", ".bbbb.", ".bppb.", ".bbbb."}), canvas.Rows());
    const RECT empty = {3, 0, 3, 4};
    FillRect(canvas.dc, &empty, green);
    EXPECT_EQ("......", canvas.Rows()[0]);
    EXPECT_FALSE(FillRect(canvas.dc, &rect, nullptr));
    DeleteObject(red);
    DeleteObject(green);
}

TEST(Pixel, IsGivenBackAsItCouldBeStored) {
    for (const Form& form : kForms) {
        Canvas canvas(3, 2, PS_SOLID, 1, form);
        const uint32_t stored = canvas.ColorOf(canvas.RawOf(0x11AAFE));
        const COLORREF expected = RGB(stored >> 16 & 0xFF, stored >> 8 & 0xFF, stored & 0xFF);
        EXPECT_EQ(expected, SetPixel(canvas.dc, 2, 1, RGB(0x11, 0xAA, 0xFE))) << form;
        EXPECT_EQ(expected, GetPixel(canvas.dc, 2, 1)) << form;
        EXPECT_EQ(stored, canvas.Color(2, 1)) << form;
        for (const POINT outside : {POINT{3, 0}, POINT{0, 2}, POINT{-1, 0}, POINT{0, -1}}) {
            EXPECT_EQ(CLR_INVALID, SetPixel(canvas.dc, outside.x, outside.y, 1));
            EXPECT_EQ(CLR_INVALID, GetPixel(canvas.dc, outside.x, outside.y));
        }
    }
}

TEST(Clip, NothingIsDrawnOutside) {
    Canvas canvas(6, 4);
    EXPECT_EQ(SIMPLEREGION, IntersectClipRect(canvas.dc, 2, 1, 5, 3));
    Rectangle(canvas.dc, 1, 0, 6, 4);
    MoveToEx(canvas.dc, 0, 1, nullptr);
    LineTo(canvas.dc, 6, 1);
    PatBlt(canvas.dc, 4, 0, 1, 4, BLACKNESS);
    EXPECT_EQ((Rows{"......", "..pp..", "..bb..", "......"}), canvas.Rows());
    EXPECT_EQ(NULLREGION, IntersectClipRect(canvas.dc, 0, 0, 1, 1));
    SelectClipRgn(canvas.dc, nullptr);
    RECT box;
    GetClipBox(canvas.dc, &box);
    EXPECT_EQ(6, box.right);
}

}  // namespace
