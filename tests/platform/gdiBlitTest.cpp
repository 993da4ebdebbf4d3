// Moving pixels, against a model that looks at one pixel at a time.
#include <gtest/gtest.h>
#include <windows.h>

#include <tuple>

#include "tests/platform/gdiSupport.h"

namespace {

using namespace gditest;

struct Rect {
    int x, y, width, height;
};

// Source pixel for the target pixel `at` along one axis, as the documentation of COLORONCOLOR has it: no
// averaging, no duplicates left out. Extents below 0 begin at their pixel and run backwards.
int SourceOf(int at, int toStart, int toCount, int fromStart, int fromCount) {
    const int toLow = toCount < 0 ? toStart + toCount + 1 : toStart;
    const int fromLow = fromCount < 0 ? fromStart + fromCount + 1 : fromStart;
    const int step = (at - toLow) * std::abs(fromCount) / std::abs(toCount);
    const bool mirrored = (toCount < 0) != (fromCount < 0);
    return mirrored ? fromLow + std::abs(fromCount) - 1 - step : fromLow + step;
}

bool Covers(int at, int start, int count) {
    return count < 0 ? at > start + count && at <= start : at >= start && at < start + count;
}

std::vector<uint32_t> ModelCopy(const Surface& to, const Rect& toRect, const Surface& from, const Rect& fromRect) {
    std::vector<uint32_t> picture = to.Picture();
    for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) {
            if (!Covers(x, toRect.x, toRect.width) || !Covers(y, toRect.y, toRect.height)) continue;
            const int sx = SourceOf(x, toRect.x, toRect.width, fromRect.x, fromRect.width);
            const int sy = SourceOf(y, toRect.y, toRect.height, fromRect.y, fromRect.height);
            if (sx < 0 || sy < 0 || sx >= from.width || sy >= from.height) continue;
            uint32_t raw = to.RawOf(from.Color(sx, sy));
            if (to.form.name == from.form.name) raw = from.Raw(sx, sy);
            picture[static_cast<size_t>(y * to.width + x)] = raw;
        }
    }
    return picture;
}

class BetweenForms : public testing::TestWithParam<std::tuple<Form, Form>> {};

TEST_P(BetweenForms, EveryPixelArrivesAndNoOther) {
    const auto [fromForm, toForm] = GetParam();
    const Rect blits[][2] = {
        {{3, 2, 10, 7}, {1, 4, 10, 7}},        // plain
        {{-4, -3, 40, 40}, {-4, -3, 40, 40}},  // over all edges
        {{0, 0, 21, 13}, {5, 2, 21, 13}},      // past the source's end
        {{2, 1, 17, 11}, {4, 3, 6, 5}},        // larger
        {{2, 1, 5, 4}, {0, 0, 19, 13}},        // smaller
        {{1, 1, 18, 11}, {18, 3, -9, 5}},      // mirrored sideways
        {{18, 11, -12, -9}, {2, 1, 12, 9}},    // mirrored both ways, from the target's side
        {{15, 10, -12, 9}, {14, 2, -5, 9}},    // two signs below 0 don't mirror
    };
    for (const auto& [toRect, fromRect] : blits) {
        Surface from(fromForm, 19, 13);
        Surface to(toForm, 21, -13);
        from.FillWithNoise(1);
        to.FillWithNoise(2);
        const std::vector<uint32_t> expected = ModelCopy(to, toRect, from, fromRect);
        SetStretchBltMode(to.dc, COLORONCOLOR);
        EXPECT_TRUE(StretchBlt(to.dc, toRect.x, toRect.y, toRect.width, toRect.height, from.dc, fromRect.x, fromRect.y,
                               fromRect.width, fromRect.height, SRCCOPY));
        EXPECT_EQ("", FirstDifference(to, expected)) << toRect.x << " " << toRect.width << " " << fromRect.width;
    }
}

INSTANTIATE_TEST_SUITE_P(Blit, BetweenForms, testing::Combine(testing::ValuesIn(kForms), testing::ValuesIn(kForms)),
                         [](const auto& all) {
                             return std::string(std::get<0>(all.param).name) + "_" + std::get<1>(all.param).name;
                         });

TEST(Blit, MovingInsideOneBitmapReadsBeforeItWrites) {
    const Rect moves[] = {{3, 2, 12, 8}, {0, 0, 12, 8}, {4, 1, 12, 8}, {2, 1, 12, 8}, {3, 1, 12, 8}};
    for (const Form& form : {k8, k24, k32}) {
        for (const Rect& move : moves) {
            for (const int height : {12, -12}) {
                Surface surface(form, 20, height);
                surface.FillWithNoise(9);
                const std::vector<uint32_t> expected = ModelCopy(surface, move, surface, {3, 1, 12, 8});
                BitBlt(surface.dc, move.x, move.y, move.width, move.height, surface.dc, 3, 1, SRCCOPY);
                EXPECT_EQ("", FirstDifference(surface, expected)) << form << " " << move.x << " " << move.y;
            }
        }
    }
}

TEST(Blit, NothingComesOfExtentsThatReachNowhere) {
    Surface from(k32, 4, 4), to(k32, 4, 4);
    from.FillWithNoise(1);
    to.FillWithNoise(2);
    const std::vector<uint32_t> before = to.Picture();
    const int distant = 0x7FFFFFFF;
    BitBlt(to.dc, 0, 0, 0, 4, from.dc, 0, 0, SRCCOPY);
    BitBlt(to.dc, distant, distant, distant, distant, from.dc, 0, 0, SRCCOPY);
    BitBlt(to.dc, 0, 0, 4, 4, from.dc, distant, -distant, SRCCOPY);
    StretchBlt(to.dc, 0, 0, 4, 4, from.dc, 0, 0, 0, 0, SRCCOPY);
    EXPECT_EQ("", FirstDifference(to, before));
    EXPECT_FALSE(BitBlt(nullptr, 0, 0, 4, 4, from.dc, 0, 0, SRCCOPY));
    EXPECT_FALSE(BitBlt(to.dc, 0, 0, 4, 4, nullptr, 0, 0, SRCCOPY));
}

}  // namespace
