// Lines and shapes where they reach beyond what may be drawn on.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/platform/gdiSupport.h"

namespace {

using namespace gditest;

// What is drawn, as rows of characters: '.' for black, 'p' for the pen's colour, 'b' for the brush's.
class Canvas : public Surface {
public:
    Canvas(int columns, int rows)
        : Surface(k32, columns, rows),
          pen_(CreatePen(PS_SOLID, 1, RGB(255, 0, 0))),
          brush_(CreateSolidBrush(RGB(0, 255, 0))) {
        SelectObject(dc, pen_);
        SelectObject(dc, brush_);
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
            for (int x = 0; x < width; ++x) {
                const uint32_t color = Color(x, y);
                row += color == 0 ? '.' : color == 0xFF0000 ? 'p' : color == 0x00FF00 ? 'b' : '?';
            }
            rows.push_back(row);
        }
        return rows;
    }

private:
    const HPEN pen_;
    const HBRUSH brush_;
};

using Rows = std::vector<std::string>;

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

TEST(Clip, NothingIsDrawnOutside) {
    Canvas canvas(6, 4);
    EXPECT_EQ(SIMPLEREGION, IntersectClipRect(canvas.dc, 2, 1, 5, 3));
    Rectangle(canvas.dc, 1, 0, 6, 4);
    MoveToEx(canvas.dc, 0, 1, nullptr);
    LineTo(canvas.dc, 6, 1);
    EXPECT_EQ((Rows{"......", "..ppp.", "..bbb.", "......"}), canvas.Rows());
    EXPECT_EQ(NULLREGION, IntersectClipRect(canvas.dc, 0, 0, 1, 1));
}

TEST(Frame, IsOnePixelWideAndLeavesItsInside) {
    Canvas canvas(6, 5);
    const RECT rect = {1, 1, 5, 4};
    FrameRect(canvas.dc, &rect, static_cast<HBRUSH>(GetCurrentObject(canvas.dc, OBJ_BRUSH)));
    EXPECT_TRUE(SetPixelV(canvas.dc, 2, 2, RGB(255, 0, 0)));
    EXPECT_FALSE(SetPixelV(canvas.dc, 6, 2, RGB(255, 0, 0)));
    EXPECT_EQ((Rows{"......", ".bbbb.", ".bp.b.", ".bbbb.", "......"}), canvas.Rows());
}

TEST(Ground, OfATextIsItsWholeCellInTheBackgroundColor) {
    Canvas canvas(30, 30);
    SetBkColor(canvas.dc, RGB(0, 255, 0));
    SIZE cell = {};
    ASSERT_TRUE(GetTextExtentPoint32A(canvas.dc, " ", 1, &cell));
    TextOutA(canvas.dc, 2, 3, " ", 1);
    Canvas expected(30, 30);
    SelectObject(expected.dc, GetStockObject(NULL_PEN));
    Rectangle(expected.dc, 2, 3, 2 + cell.cx + 1, 3 + cell.cy + 1);
    EXPECT_EQ(expected.Rows(), canvas.Rows());
}

}  // namespace
