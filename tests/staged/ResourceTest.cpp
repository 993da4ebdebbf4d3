// The add-on's own resources as they reach a host: label and pictures.
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

// Of 16 by 16 pixels, as one number for each pixel. Deletes the bitmap.
std::vector<COLORREF> TakePicture(HBITMAP bitmap) {
    BITMAP description = {};
    EXPECT_NE(GetObjectA(bitmap, sizeof description, &description), 0);
    EXPECT_EQ(description.bmWidth, 16);
    EXPECT_EQ(description.bmHeight, 16);
    EXPECT_EQ(description.bmBitsPixel, 24);
    std::vector<COLORREF> picture;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ former = SelectObject(dc, bitmap);
    for (int i = 0; i < 256; ++i) picture.push_back(GetPixel(dc, i % 16, i / 16));
    SelectObject(dc, former);
    DeleteDC(dc);
    EXPECT_TRUE(DeleteObject(bitmap));
    return picture;
}

TEST(Resource, ButtonHasItsLabelAndAPictureForEachState) {
    TestHost::InstallPlugins({});
    const NothingLeft nothingLeft;
    const HMODULE library = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    IUnknown* made = nullptr;
    ASSERT_EQ(SymbolOf<TKCreateInstanceFunction>(library, kCreateInstanceName)(&made), S_OK);
    auto* button = static_cast<ITKCommandButton*>(made);
    char text[64] = "";
    EXPECT_EQ(button->GetButtonLabel(text, sizeof text), S_OK);
    EXPECT_STREQ(text, "Visualization Settings");
    EXPECT_EQ(button->GetButtonLabel(text, 8), S_OK);
    EXPECT_STREQ(text, "Visuali");
    const std::vector<COLORREF> off = TakePicture(button->GetButtonBitmap());
    EXPECT_GT(std::set<COLORREF>(off.begin(), off.end()).size(), 3u);
    made->Release();
    FreeLibrary(library);

    TestHost host;
    std::vector<COLORREF> pictures[2];
    for (const uint32_t on : {0u, 1u}) {
        host.Configure(kConfigEffects, on);
        pictures[on] = TakePicture(host.Component()->GetButtonBitmap());
    }
    EXPECT_EQ(pictures[0], off);
    EXPECT_NE(pictures[1], off);
}

}  // namespace
}  // namespace tdkviz::test
