// The two libraries as they are staged: what the exports do that nothing here calls.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "companions/qzcolor/Exports.h"

namespace {

using Library = std::unique_ptr<void, int (*)(void*)>;
Library Open(const char* name) {
    return {dlopen((std::string(STAGE_DIR "/Codecs/") + name).c_str(), RTLD_NOW | RTLD_LOCAL), dlclose};
}

// The function of a library with the signature that the header tells.
template <typename Function>
Function* Find(const Library& library, const char* name, Function*) {
    return reinterpret_cast<Function*>(dlsym(library.get(), name));
}
#define FIND(library, name) Find(library, #name, decltype(&name){})

TEST(ConverterLibraryTest, APaletteBringsConvertersToRgb8) {
    const Library library = Open("qzcolor.so");
    ASSERT_TRUE(library);
    const auto find = FIND(library, GetColorConverter);
    const auto scanAll = FIND(library, ScanAllCompatibleColorFormats);
    uint32_t formats[kFormatCount] = {};
    EXPECT_EQ(scanAll(FormatRGB32, formats, 2), 13u);
    EXPECT_EQ(formats[1], uint32_t{FormatYV12});
    EXPECT_EQ(formats[2], 0u) << "there was room for two";
    EXPECT_EQ(FIND(library, ScanCompatibleColorFormats)(FormatRGB32, nullptr, 0), 9u);
    EXPECT_EQ(scanAll(FormatI420, nullptr, 0), 1u) << "itself";
    qzcolor::PaletteEntry palette[256] = {};
    const uint32_t count = FIND(library, SuggestRGB8Palette)(palette, 256);
    const auto set = FIND(library, SetRGB8Palette);
    EXPECT_EQ(set(palette, 0), E_INVALIDARG);
    EXPECT_EQ(set(palette, 257), E_INVALIDARG);
    EXPECT_EQ(find(FormatRGB32, FormatRGB8), nullptr);
    ASSERT_EQ(set(palette, count), S_OK);
    const ColorConverterFunction convert = find(FormatRGB32, FormatRGB8);
    ASSERT_NE(convert, nullptr);
    const uint32_t words[] = {0x000000, 0xFFFFFF, 0xFF0000, 0x3333CC};
    for (const int scale : {1, 2}) {
        uint8_t made[8 * 2] = {};
        convert(made, 4 * scale, scale, 8, 0, 0, 4 * scale, scale, words, 4, 1, 16, 0, 0, 4, 1);
        for (int x = 0; x < 4 * scale; ++x) {
            const qzcolor::PaletteEntry& seen = palette[made[8 * (scale - 1) + x]];
            EXPECT_EQ(seen.Red << 16 | seen.Green << 8 | seen.Blue, static_cast<int>(words[x / scale])) << scale;
        }
    }
}

TEST(ConverterLibraryTest, AdjustsOnlyAsItWasTold) {
    const Library library = Open("qzltcolor.so");
    ASSERT_TRUE(library);
    const auto enhance = FIND(library, Enhance), uniform = FIND(library, EnhanceUniform);
    const std::vector<uint32_t> original = {0x808080, 0x808080, 0x888888, 0xC0C0C0, 0xC08040, 0xC08040};
    std::vector<uint32_t> picture = original;
    const auto run = [&](auto function) {
        picture = original;
        EXPECT_EQ(function(picture.data(), 6, 1, -24), S_OK);
        return picture;
    };
    EXPECT_EQ(run(enhance), original) << "neutral at first";
    qzcolor::ColorAdjustments colors = {0, 0, -1};
    EXPECT_EQ(FIND(library, SetColorAdjustments)(&colors), S_OK);
    colors = {0, 3, 0};
    EXPECT_EQ(FIND(library, SetColorAdjustments)(&colors), E_INVALIDARG);
    EXPECT_EQ(FIND(library, GetColorAdjustments)(&colors), S_OK);
    EXPECT_EQ(colors.Saturation, -1);
    EXPECT_EQ(run(enhance)[5], 0x8C8C8Cu) << "no colour is left";
    colors = {};
    FIND(library, SetColorAdjustments)(&colors);
    const qzcolor::SharpnessAdjustments sharp = {1};
    EXPECT_EQ(FIND(library, SetSharpnessAdjustments)(&sharp), S_OK);
    run(enhance);
    EXPECT_EQ(picture[1], original[1]) << "noise";
    EXPECT_GT(picture[3], original[3]) << "an edge";
    EXPECT_LT(run(uniform)[1], original[1]);
    EXPECT_EQ(enhance(nullptr, 6, 1, 24), E_INVALIDARG);
    EXPECT_EQ(enhance(picture.data(), 6, 1, 20), E_INVALIDARG);
    EXPECT_EQ(enhance(picture.data(), 0, 1, 20), S_OK);
}

TEST(ConverterLibraryTest, MixesAndConvertsColors) {
    const Library library = Open("qzcolor.so");
    ASSERT_TRUE(library);
    const auto toYuv = FIND(library, ConvertRGBtoYUV), toRgb = FIND(library, ConvertYUVtoRGB);
    EXPECT_EQ(toYuv(0xFFFFFF), 0xEB8080u);
    EXPECT_EQ(toYuv(0), 0x108080u);
    for (uint32_t color = 0; color < 0x1000000; color += 0x30517) {
        const uint32_t back = toRgb(toYuv(color));
        for (const int shift : {0, 8, 16})
            EXPECT_NEAR(int(back >> shift & 0xFF), int(color >> shift & 0xFF), 4) << std::hex << color;
    }
    // 4x2 pixels: luma 8, two halves of 2, alpha 8.
    std::vector<uint8_t> first(12, 100), second(20, 200), mixed(12);
    EXPECT_EQ(FIND(library, I420andI420toI420)(first.data(), second.data(), mixed.data(), 4, 2, 128), S_OK);
    EXPECT_EQ(mixed, std::vector<uint8_t>(12, 150));
    EXPECT_EQ(FIND(library, I420andI420toI420)(first.data(), second.data(), mixed.data(), 3, 2, 128), E_INVALIDARG);
    std::fill(second.begin() + 12, second.end(), uint8_t{255});
    second[12] = 0;
    EXPECT_EQ(FIND(library, I420andYUVA)(first.data(), second.data(), 4, 2), S_OK);
    EXPECT_EQ(first[0], 100);
    EXPECT_EQ(first[1], 200);
    const uint8_t triple[3] = {1, 2, 3};
    uint32_t word = 0;
    EXPECT_EQ(FIND(library, ConvertRGB24toXRGB)(&word, 4, triple, 3, 1, 1), S_OK);
    EXPECT_EQ(word & 0xFFFFFF, 0x030201u);
}

}  // namespace
