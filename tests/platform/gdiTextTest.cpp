// Text: where its ink lies and how large it says it is.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/platform/gdiSupport.h"

namespace {

using namespace gditest;

// White text on black, without a ground of its own.
class Page : public Surface {
public:
    explicit Page(int columns = 200, int rows = 60, const Form& pixelForm = k32) : Surface(pixelForm, columns, rows) {
        SetTextColor(dc, RGB(255, 255, 255));
        SetBkMode(dc, TRANSPARENT);
        SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
        empty_ = Picture();
    }

    // The smallest rectangle around all ink.
    RECT Ink() const {
        const std::vector<uint32_t> picture = Picture();
        RECT ink = {width, height, 0, 0};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const size_t i = static_cast<size_t>(y * width + x);
                if (picture[i] == empty_[i]) continue;
                ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y), std::max<LONG>(ink.right, x + 1),
                       std::max<LONG>(ink.bottom, y + 1)};
            }
        }
        return ink;
    }
    bool HasInk() const { return Ink().right > 0; }
    SIZE Measure(const std::string& text) const {
        SIZE size = {};
        GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &size);
        return size;
    }

private:
    std::vector<uint32_t> empty_;
};

TEST(Text, HasItsInkInsideOfWhatItMeasures) {
    for (const Form& form : kForms) {
        Page page(200, 60, form);
        const SIZE size = page.Measure("Hello, gyp");
        EXPECT_TRUE(TextOutA(page.dc, 20, 10, "Hello, gyp", 10));
        const RECT ink = page.Ink();
        ASSERT_TRUE(page.HasInk()) << form;
        EXPECT_GE(ink.left, 19);
        EXPECT_GE(ink.top, 10);
        EXPECT_LE(ink.right, 20 + size.cx + 1);
        EXPECT_LE(ink.bottom, 10 + size.cy);
        // It fills most of that, so that nothing was cut off.
        EXPECT_GT(ink.right - ink.left, size.cx * 3 / 4);
        EXPECT_GT(ink.bottom - ink.top, size.cy / 2);
    }
}

TEST(Text, StandsWhereDrawTextIsToldTo) {
    struct Case {
        const char* name;
        UINT format;
        int horizontal, vertical;  // -1 at the start, 0 in the middle, 1 at the end
    };
    const Case cases[] = {
        {"plain", DT_SINGLELINE, -1, -1},
        {"centre", DT_SINGLELINE | DT_CENTER | DT_VCENTER, 0, 0},
        {"end", DT_SINGLELINE | DT_RIGHT | DT_BOTTOM, 1, 1},
        {"not a single line", DT_RIGHT | DT_VCENTER, 1, -1},
    };
    for (const Case& one : cases) {
        Page page;
        RECT rect = {10, 5, 190, 55};
        const SIZE size = page.Measure("HHH");
        DrawTextA(page.dc, "HHH", -1, &rect, one.format);
        const RECT ink = page.Ink();
        const int left = 10 + (180 - size.cx) * (one.horizontal + 1) / 2;
        const int top = 5 + (50 - size.cy) * (one.vertical + 1) / 2;
        EXPECT_NEAR(left, ink.left, 2) << one.name;
        EXPECT_NEAR(left + size.cx, ink.right, 2) << one.name;
        EXPECT_GE(ink.top, top) << one.name;
        EXPECT_LE(ink.bottom, top + size.cy) << one.name;
    }
}

TEST(Text, PrefixesUnderlineAndDontShow) {
    Page prefixed, plain, literal;
    RECT rect = {0, 0, 200, 60};
    DrawTextA(prefixed.dc, "S&ave && go", -1, &rect, DT_SINGLELINE);
    DrawTextA(plain.dc, "Save & go", -1, &rect, DT_SINGLELINE | DT_NOPREFIX);
    DrawTextA(literal.dc, "S&ave", -1, &rect, DT_SINGLELINE | DT_NOPREFIX);
    const int before = plain.Measure("S").cx, width = plain.Measure("a").cx;
    int underlined = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 200; ++x) {
            if (prefixed.Raw(x, y) == plain.Raw(x, y)) continue;
            ++underlined;
            EXPECT_GE(x, before - 1);
            EXPECT_LE(x, before + width + 1);
        }
    }
    EXPECT_NEAR(width, underlined, 2);
    EXPECT_GT(literal.Ink().right, literal.Measure("Save").cx);
}

TEST(Text, AnyBytesAreTaken) {
    Page page;
    std::string all;
    for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
    EXPECT_TRUE(TextOutA(page.dc, -50, 10, all.data(), static_cast<int>(all.size())));
    EXPECT_TRUE(page.HasInk());
    // A letter beyond ASCII is one letter, in either spelling.
    EXPECT_EQ(page.Measure("\xC3\xA9").cx, page.Measure("\xE9").cx);
    EXPECT_LT(page.Measure("\xC3\xA9").cx, page.Measure("ee").cx);
    EXPECT_TRUE(TextOutA(page.dc, 0x7FFFFFFF, static_cast<int>(0x80000000), "x", 1));
    EXPECT_FALSE(TextOutA(page.dc, 0, 0, "x", -1));
}

}  // namespace
