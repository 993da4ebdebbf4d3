// The converters against a model of one pixel at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <tdkviz/com.h>

#include "companions/qzcolor/Conversion.h"
#include "companions/qzcolor/RowTable.h"
#include "tests/converter/TestImage.h"

namespace converter_test {
namespace {

// Orientation of source and destination, padding, and which of the neighbouring pages is flush.
struct Placement {
    bool fromBottomUp, toBottomUp;
    int32_t padding;
    bool atEnd;
};
constexpr Placement kPlacements[] = {{true, true, 0, true},
                                     {true, false, 0, false},
                                     {false, true, 3, true},
                                     {false, false, 5, false},
                                     {true, true, 1, true}};

struct SizeCase {
    int32_t width, height;
    Area area;  // of the source
};
constexpr SizeCase kSizes[] = {{1, 1, {0, 0, 1, 1}},   {3, 2, {0, 0, 3, 2}},    {33, 17, {0, 0, 33, 17}},
                               {64, 4, {0, 0, 64, 4}}, {41, 13, {5, 3, 29, 7}}, {20, 20, {19, 19, 1, 1}}};

// The pixels as the model has them; `scale` is 1 or 2. Gives the place of the first that differs.
std::string FirstDifference(const TestImage& from, const Area& fromArea, const TestImage& to, const Area& toArea,
                            int32_t scale) {
    const uint32_t colorBits = to.bytes == 4 ? 0xFFFFFF : 0xFFFFFFFF;
    for (int32_t y = 0; y < toArea.height; ++y) {
        for (int32_t x = 0; x < toArea.width; ++x) {
            const int32_t fromX = fromArea.x + x / scale, fromY = fromArea.y + y / scale;
            const uint32_t seen = to.WordAt(toArea.x + x, toArea.y + y);
            uint32_t expected = Encode(to.format, from.At(fromX, fromY));
            uint32_t compared = colorBits;
            if (to.format == from.format) {
                expected = from.WordAt(fromX, fromY);
                // The spare bit of five-bit colours is nobody's.
                if (scale == 2 && Encode(to.format, {255, 255, 255}) == 0x7FFF) compared = 0x7FFF;
            } else if (to.format == FormatARGB) {
                expected |= 0xFF000000;
                compared = 0xFFFFFFFF;
            }
            if ((seen & compared) != (expected & compared))
                return std::to_string(x) + "," + std::to_string(y) + ": " + std::to_string(seen) + " instead of " +
                       std::to_string(expected);
        }
    }
    return "";
}

void ExpectExact(uint32_t fromFormat, uint32_t toFormat, const SizeCase& size, const Placement& place, int32_t scale) {
    SCOPED_TRACE(testing::Message() << "format " << fromFormat << " to " << toFormat << ", " << size.width << "x"
                                    << size.height << " times " << scale << ", placement " << &place - kPlacements);
    TestImage from(fromFormat, size.width, size.height, place.fromBottomUp, place.padding, place.atEnd);
    const Area toArea = {size.area.x, size.area.y, size.area.width * scale, size.area.height * scale};
    // The same margin on the far sides as the source has.
    TestImage to(toFormat, size.width + toArea.width - size.area.width, size.height + toArea.height - size.area.height,
                 place.toBottomUp, place.padding, place.atEnd);
    from.FillWithNoise(1);
    to.FillWithNoise(2);
    from.Remember();
    to.Remember();
    ASSERT_EQ(RunConverter(from, size.area, to, toArea), S_OK);
    EXPECT_EQ(FirstDifference(from, size.area, to, toArea, scale), "");
    EXPECT_EQ(to.FirstChangeOutside(toArea), -1);
    EXPECT_EQ(from.FirstChangeOutside({}), -1);
}

TEST(ConversionTest, EqualSizesAndDoublesAreExact) {
    for (const uint32_t from : kRgbFormats) {
        for (const uint32_t to : kRgbFormats) {
            for (const SizeCase& size : kSizes) {
                for (const Placement& place : kPlacements) {
                    ExpectExact(from, to, size, place, 1);
                    ExpectExact(from, to, size, place, 2);
                }
            }
            if (HasFailure()) return;
        }
    }
}

struct ScaleCase {
    int32_t width, height, toWidth, toHeight;
};
constexpr ScaleCase kScales[] = {
    {1, 1, 7, 5},   {7, 5, 1, 1},  {2, 2, 3, 3},           {64, 48, 100, 70}, {100, 70, 64, 48},  {16, 12, 48, 36},
    {5, 1, 100, 3}, {1, 9, 2, 18}, {640, 480, 3840, 2160}, {33, 31, 32, 31},  {320, 200, 40, 25}, {99, 3, 98, 600},
};

// Green is the same everywhere; red grows to the right, blue downwards.
constexpr int kGreen = 100;
void PaintGradients(TestImage& image) {
    for (int32_t y = 0; y < image.height; ++y) {
        for (int32_t x = 0; x < image.width; ++x)
            image.Set(x, y, {255 * (x + 1) / image.width, kGreen, 255 * (y + 1) / image.height});
    }
}

int CountFaults(const TestImage& image) {
    const int green = Decode(image.format, Encode(image.format, {0, kGreen, 0})).green;
    int faults = 0;
    for (int32_t y = 0; y < image.height; ++y) {
        for (int32_t x = 0; x < image.width; ++x) {
            const Color here = image.At(x, y);
            faults += here.green != green || (x > 0 && here.red < image.At(x - 1, y).red) ||
                      (y > 0 && here.blue < image.At(x, y - 1).blue);
        }
    }
    return faults;
}

TEST(ConversionTest, ScalingKeepsConstantPicturesAndTheOrderOfGradients) {
    for (const ScaleCase& c : kScales) {
        for (const uint32_t format : {FormatRGB32, FormatRGB24, FormatRGB565, FormatBGR555, FormatBGR32}) {
            for (const Placement& place : kPlacements) {
                if (c.toWidth > 1000 && (&place != kPlacements || format != FormatRGB565)) break;  // one will do
                SCOPED_TRACE(testing::Message() << c.width << "x" << c.height << " to " << c.toWidth << "x"
                                                << c.toHeight << " format " << format);
                TestImage from(FormatRGB32, c.width, c.height, place.fromBottomUp, place.padding, place.atEnd);
                TestImage to(format, c.toWidth, c.toHeight, place.toBottomUp, place.padding, place.atEnd);
                PaintGradients(from);
                to.FillWithNoise(4);
                to.Remember();
                ASSERT_EQ(RunConverter(from, Whole(from), to, Whole(to)), S_OK);
                EXPECT_EQ(to.FirstChangeOutside(Whole(to)), -1);
                EXPECT_EQ(CountFaults(to), 0);
                // The picture keeps its place: the middle stays the middle.
                EXPECT_NEAR(to.At(c.toWidth / 2, 0).red, from.At(c.width / 2, 0).red,
                            255 / std::min(c.width, c.toWidth) + 8);
            }
        }
    }
}

// BT.601, luma from 16 to 235.
struct Yuv {
    double y, u, v;
};
Yuv YuvOf(const Color& c) {
    const double y = 0.299 * c.red + 0.587 * c.green + 0.114 * c.blue;
    return {16 + y * 219 / 255, 128 + (c.blue - y) * 112 / 255 / 0.886, 128 + (c.red - y) * 112 / 255 / 0.701};
}

// What stands at a pixel, with the colour that it shares or, of a packed half pair, lacks: `expected` stands for that.
Yuv YuvAt(const TestImage& image, const Area& area, int32_t x, int32_t y, Yuv expected) {
    if (image.bytes == 1) {
        expected.y = *image.Pixel(x, y);
        if (x / 2 >= (area.x + area.width) / 2 || y / 2 >= (area.y + area.height) / 2) return expected;
        const int u = image.format == FormatYV12 ? 1 : 0;
        return {expected.y, double(image.HalfAt(u, x / 2, y / 2)), double(image.HalfAt(1 - u, x / 2, y / 2))};
    }
    const int luma = image.format == FormatYUY2 ? 0 : 1;
    expected.y = image.Pixel(x, y)[luma];
    (x % 2 == 0 ? expected.u : expected.v) = image.Pixel(x, y)[1 - luma];
    return expected;
}

bool IsInLastQuarter(const TestImage& image, int32_t x, int32_t y) {
    return x >= image.width / 2 && y >= image.height / 2;
}

// Of two shades of luma the lower right quarter has the other; the colour is the ground's.
void PaintQuarter(TestImage& image, const Yuv& ground, double otherLuma) {
    const auto byte = [](double value) { return static_cast<uint8_t>(value); };
    if (image.bytes == 1) image.FillHalves(byte(ground.u), byte(ground.v));
    const int luma = image.format == FormatUYVY ? 1 : 0;
    for (int32_t y = 0; y < image.height; ++y) {
        for (int32_t x = 0; x < image.width; ++x) {
            uint8_t* pixel = image.Pixel(x, y);
            pixel[luma] = byte(IsInLastQuarter(image, x, y) ? otherLuma : ground.y);
            if (image.bytes == 2) pixel[1 - luma] = byte(x % 2 == 0 ? ground.u : ground.v);
        }
    }
}

void ExpectFormula(uint32_t format, const SizeCase& size, const Placement& place) {
    constexpr double kTolerance = 2;
    SCOPED_TRACE(testing::Message() << "format " << format << ", " << size.width << "x" << size.height);
    const Area& area = size.area;
    TestImage from(FormatRGB32, size.width, size.height, place.fromBottomUp, place.padding, place.atEnd);
    TestImage to(format, size.width, size.height, place.toBottomUp, place.padding, place.atEnd);
    to.FillWithNoise(5);
    to.Remember();
    // Neighbours that share a colour are alike.
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) from.Set(x, y, {40 + x / 2 * 3, 200 - y / 2 * 4, x / 2 + 60});
    }
    ASSERT_EQ(RunConverter(from, area, to, area), S_OK);
    EXPECT_EQ(to.FirstChangeOutside(area), -1);
    for (int32_t y = area.y; y < area.y + area.height; ++y) {
        for (int32_t x = area.x; x < area.x + area.width; ++x) {
            const Yuv expected = YuvOf(from.At(x, y)), seen = YuvAt(to, area, x, y, expected);
            ASSERT_NEAR(seen.y, expected.y, kTolerance) << x << "," << y;
            ASSERT_NEAR(seen.u, expected.u, kTolerance) << x << "," << y;
            ASSERT_NEAR(seen.v, expected.v, kTolerance) << x << "," << y;
        }
    }
}

TEST(ConversionTest, YuvIsThatOfTheFormula) {
    constexpr SizeCase kYuvSizes[] = {{1, 1, {0, 0, 1, 1}},
                                      {5, 5, {0, 0, 5, 5}},
                                      {64, 32, {0, 0, 64, 32}},
                                      {37, 22, {4, 6, 15, 9}},
                                      {2, 7, {0, 0, 2, 7}}};
    for (const uint32_t format : kYuvFormats) {
        for (const SizeCase& size : kYuvSizes) {
            for (const Placement& place : kPlacements) ExpectFormula(format, size, place);
        }
        // Enlarged, and from another format.
        TestImage from(FormatRGB565, 20, 10, true), to(format, 33, 21, false);
        for (int32_t i = 0; i < 200; ++i) from.Set(i % 20, i / 20, {200, 100, 48});
        to.FillWithNoise(7);
        ASSERT_EQ(RunConverter(from, Whole(from), to, Whole(to)), S_OK);
        const Yuv expected = YuvOf(from.At(0, 0));
        EXPECT_NEAR(YuvAt(to, Whole(to), 32, 20, expected).y, expected.y, 2);
        EXPECT_NEAR(YuvAt(to, Whole(to), 30, 10, expected).u, expected.u, 2);
        EXPECT_EQ(RunConverter(from, Whole(from), to, {1, 0, 8, 8}), E_INVALIDARG) << "in the middle of a pair";
    }
}

// The quarter stays where it is, and the colour what it is.
TEST(ConversionTest, YuvIsScaledToItself) {
    constexpr ScaleCase kYuvScales[] = {{64, 32, 64, 32}, {64, 32, 128, 64}, {2, 2, 9, 7},
                                        {9, 7, 33, 21},   {100, 60, 37, 22}, {65, 5, 2, 2}};
    constexpr Yuv kGround = {60, 90, 200};
    constexpr double kOtherLuma = 180;
    for (const uint32_t format : kYuvFormats) {
        for (const ScaleCase& c : kYuvScales) {
            for (const Placement& place : kPlacements) {
                SCOPED_TRACE(testing::Message() << "format " << format << ", " << c.width << "x" << c.height << " to "
                                                << c.toWidth << "x" << c.toHeight);
                TestImage from(format, c.width, c.height, place.fromBottomUp, place.padding, place.atEnd);
                TestImage to(format, c.toWidth, c.toHeight, place.toBottomUp, place.padding, place.atEnd);
                PaintQuarter(from, kGround, kOtherLuma);
                to.FillWithNoise(8);
                to.Remember();
                ASSERT_EQ(RunConverter(from, Whole(from), to, Whole(to)), S_OK);
                EXPECT_EQ(to.FirstChangeOutside(Whole(to)), -1);
                for (int32_t y = 0; y < to.height; ++y) {
                    for (int32_t x = 0; x < to.width; ++x) {
                        const Yuv seen = YuvAt(to, Whole(to), x, y, kGround);
                        ASSERT_EQ(seen.u, kGround.u) << x << "," << y;
                        ASSERT_EQ(seen.v, kGround.v) << x << "," << y;
                        ASSERT_TRUE(seen.y >= kGround.y && seen.y <= kOtherLuma) << x << "," << y;
                        const bool isCorner = (x == 0 || x + 1 == to.width) && (y == 0 || y + 1 == to.height);
                        if (!isCorner) continue;
                        ASSERT_NEAR(seen.y, IsInLastQuarter(to, x, y) ? kOtherLuma : kGround.y, 8) << x << "," << y;
                    }
                }
                EXPECT_EQ(RunConverter(from, {1, 0, 1, 1}, to, Whole(to)), E_INVALIDARG) << "in the middle of a pair";
            }
        }
    }
}

TEST(ConversionTest, WhatMakesNoSenseDoesNothing) {
    TestImage from(FormatRGB32, 16, 12, true), to(FormatRGB565, 24, 18, true);
    to.FillWithNoise(1);
    to.Remember();
    const Area empty[] = {{},
                          {3, 3, 0, 5},
                          {3, 3, -4, 5},
                          {24, 0, 5, 5},
                          {-9, 0, 9, 5},
                          {0, INT_MAX, 5, 5},
                          {INT_MIN, INT_MIN, INT_MAX, INT_MAX}};
    for (const Area& area : empty) {
        EXPECT_EQ(RunConverter(from, Whole(from), to, area), S_OK);
        EXPECT_EQ(RunConverter(from, area, to, Whole(to)), S_OK);
    }
    const ColorConverterFunction convert = qzcolor::FindConverter(FormatRGB32, FormatRGB565);
    for (const int32_t pitch : {0, 47, -47})
        EXPECT_EQ(convert(to.memory, 24, 18, pitch, 0, 0, 24, 18, from.memory, 16, 12, 64, 0, 0, 16, 12), E_INVALIDARG);
    EXPECT_EQ(convert(nullptr, 24, 18, 48, 0, 0, 24, 18, from.memory, 16, 12, 64, 0, 0, 16, 12), E_INVALIDARG);
    EXPECT_EQ(convert(to.memory, 24, 18, 48, 0, 0, 24, 18, nullptr, 16, 12, 64, 0, 0, 16, 12), E_INVALIDARG);
    EXPECT_EQ(to.FirstChangeOutside({}), -1);
    // Partly outside: what lies inside is taken.
    EXPECT_EQ(RunConverter(from, {-4, -4, 100, INT_MAX}, to, {20, 14, INT_MAX, 50}), S_OK);
    EXPECT_EQ(to.FirstChangeOutside({20, 14, 4, 4}), -1);
    for (const uint32_t id : {FormatYVU9, FormatRGB8, FormatZVQN, FormatYUVA, FormatNone, FormatMC12, FormatDVPF})
        EXPECT_EQ(qzcolor::FindConverter(FormatRGB32, id), nullptr) << id;
    EXPECT_EQ(qzcolor::FindConverter(FormatI420, FormatRGB32), nullptr);
    EXPECT_EQ(qzcolor::FindConverter(FormatRGB32, kFormatCount), nullptr);
    EXPECT_EQ(qzcolor::FindConverter(UINT32_MAX, FormatRGB32), nullptr);
}

TEST(ConversionTest, EveryInstructionSetGivesTheSame) {
    const qzcolor::RowTable* wide = qzcolor::Avx2RowTable();
    if (!wide) GTEST_SKIP() << "there is one only";
    const qzcolor::RowTable& plain = qzcolor::PlainRowTable();
    TestImage from(FormatRGB32, 100, 1, false);
    from.FillWithNoise(6);
    std::vector<int32_t> places;
    std::vector<uint32_t> weights;
    for (uint32_t i = 0; i < 100; ++i) {
        places.push_back(static_cast<int32_t>(i * 37 % 99));
        weights.push_back(i * 167 % 257 * 0x10001);
    }
    for (const uint32_t format : kRgbFormats) {
        if (!plain.Double[format]) continue;
        for (int32_t count = 0; count <= from.width; ++count) {
            TestImage narrowRows(format, 2 * count + 1, 3, false, 1), wideRows(format, 2 * count + 1, 3, false, 1);
            const std::pair<const qzcolor::RowTable*, TestImage*> runs[] = {{&plain, &narrowRows}, {wide, &wideRows}};
            for (const auto& [table, to] : runs) {
                if (table->Pack[format]) table->Pack[format](from.memory, to->Pixel(0, 0), count);
                table->Double[format](from.memory, to->Pixel(0, 1), to->Pixel(0, 2), count);
                if (format == FormatRGB32)
                    table->Mix(from.memory, places.data(), weights.data(), to->Pixel(count, 0), count);
            }
            EXPECT_EQ(std::memcmp(narrowRows.memory, wideRows.memory, static_cast<size_t>(3 * wideRows.pitch)), 0)
                << "format " << format << ", " << count << " pixels";
        }
    }
    // And the same as by hand.
    TestImage mixed(FormatRGB32, 100, 1, false);
    plain.Mix(from.memory, places.data(), weights.data(), mixed.memory, 100);
    for (int32_t i = 0; i < 400; ++i) {
        const auto at = static_cast<size_t>(i / 4);
        const int32_t left = from.memory[4 * places[at] + i % 4], right = from.memory[4 * places[at] + 4 + i % 4];
        const auto weight = static_cast<int32_t>(weights[at] & 0xFFFF);
        EXPECT_EQ(mixed.memory[i], (left * (256 - weight) + right * weight + 128) / 256) << i;
    }
}

// Two windows, two workers; the thread sanitizer watches.
TEST(ConversionTest, ThreadsConvertAtOnce) {
    const auto work = [](uint32_t seed) {
        for (int32_t round = 0; round < 20; ++round) {
            TestImage from(FormatRGB565, 40 + 7 * (round % 3), 30, true), to(FormatRGB24, 61 + round, 50, true);
            TestImage again(FormatRGB24, 61 + round, 50, true);
            from.FillWithNoise(seed);
            RunConverter(from, Whole(from), to, Whole(to));
            RunConverter(from, Whole(from), again, Whole(again));
            EXPECT_EQ(std::memcmp(to.memory, again.memory, static_cast<size_t>(-to.pitch) * 50), 0);
        }
    };
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < 4; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace converter_test
