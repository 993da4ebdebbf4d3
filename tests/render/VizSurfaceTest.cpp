#include <gtest/gtest.h>

#include "src/render/FrameBuffer.h"
#include "src/render/VizSurface.h"
#include "tests/render/WindowTools.h"
#include "tests/staged/NothingLeft.h"

namespace tdkviz::test {
namespace {

BitmapInfoRecord MakeInfo(uint32_t format, int32_t width, int32_t height) {
    BitmapInfoRecord info = {};
    EXPECT_NE(FillBitmapInfo(&info, sizeof(info), format, width, height, nullptr, 0), 0u);
    return info;
}

TEST(VizSurfaceTest, HasTheFormOfItsHeaderAndFreesAll) {
    UseMemoryDisplay();
    const NothingLeft nothingLeft;
    EXPECT_EQ(GetDisplayFormat(), FormatRGB32);
    for (const uint32_t format : {FormatRGB32, FormatRGB24, FormatRGB565, FormatRGB555}) {
        const BitmapInfoRecord info = MakeInfo(format, 5, 3);
        const VizSurfacePtr surface(CreateVizSurface(&info));
        ASSERT_TRUE(surface) << format;
        EXPECT_EQ(surface->Section.dsBm.bmWidth, 5);
        EXPECT_EQ(surface->Section.dsBm.bmHeight, 3);
        EXPECT_EQ(surface->Section.dsBm.bmWidthBytes, -RowPitch(&info));
    }
    // No size rule, no mapping, no surface; a size that no bitmap has.
    for (const uint32_t format : {FormatZVQN, FormatMC12, FormatDVPF}) {
        const BitmapInfoRecord info = MakeInfo(format, 5, 3);
        EXPECT_EQ(CreateVizSurface(&info), nullptr) << format;
    }
    BitmapInfoRecord info = MakeInfo(FormatRGB32, 5, 3);
    info.Header.biWidth = 0;
    EXPECT_EQ(CreateVizSurface(&info), nullptr);
    EXPECT_EQ(CreateVizSurface(nullptr), nullptr);
    DestroyVizSurface(nullptr);
}

TEST(FrameBufferTest, IsAlignedAndZeroed) {
    FrameBuffer buffer;
    for (const size_t bytes : {size_t{1}, size_t{31}, size_t{4096}, size_t{320 * 240 * 4}}) {
        ASSERT_TRUE(buffer.Allocate(bytes));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.Pixels()) % FrameBuffer::kAlignment, 0u);
        for (size_t i = 0; i < bytes; ++i) ASSERT_EQ(buffer.Pixels()[i], 0);
        std::fill_n(buffer.Pixels(), bytes, uint8_t{0xFF});
    }
    EXPECT_FALSE(buffer.Allocate(0));
    EXPECT_EQ(buffer.Pixels(), nullptr);
    EXPECT_FALSE(buffer.Allocate(SIZE_MAX - 1));
    EXPECT_EQ(buffer.Pixels(), nullptr);
}

}  // namespace
}  // namespace tdkviz::test
