// The add-on's own resources as they reach a host: label, pictures, the dialog's template.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestBag.h"
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
    void* configuration = nullptr;
    host.Manager()->QueryInterface(kIID_IMPAAdvancedConfiguration, &configuration);
    std::vector<COLORREF> pictures[2];
    for (const uint32_t on : {0u, 1u}) {
        auto* bag = new TestBag;
        bag->SetNumber(kConfigEffects, on);
        static_cast<IMPAAdvancedConfiguration*>(configuration)->SetConfiguration(bag);
        bag->Release();
        pictures[on] = TakePicture(host.Component()->GetButtonBitmap());
    }
    EXPECT_EQ(pictures[0], off);
    EXPECT_NE(pictures[1], off);
}

// ---- The dialog's template

// Walks over the bytes of a template.
class TemplateReader {
public:
    TemplateReader(const void* data, size_t size) : place_(static_cast<const uint8_t*>(data)), end_(place_ + size) {}
    uint16_t Word() {
        uint16_t word = 0;
        if (end_ - place_ < 2) {
            ADD_FAILURE() << "the template ends too early";
            return 0;
        }
        std::memcpy(&word, place_, sizeof word);
        place_ += sizeof word;
        return word;
    }
    uint32_t Number() {
        const uint32_t low = Word();
        return low | uint32_t{Word()} << 16;
    }
    // A number of a resource reads as "#number".
    std::string Text() {
        std::string text;
        for (uint16_t unit = Word(); unit != 0; unit = Word()) {
            if (unit == 0xFFFF) return "#" + std::to_string(Word());
            text += static_cast<char>(unit);
        }
        return text;
    }
    // Controls start on multiples of four bytes of a template that does.
    void Align() {
        if (reinterpret_cast<uintptr_t>(place_) % 4 != 0) Word();
    }
    ptrdiff_t Left() const { return end_ - place_; }

private:
    const uint8_t* place_;
    const uint8_t* end_;
};

struct Control {
    int id;
    const char* type;
    const char* text;
    uint32_t style;
    int x, y, width, height;
};

constexpr Control kControls[] = {
    {65535, "BUTTON", "Special Effects", 0x50000007, 7, 5, 394, 127},
    {65535, "STATIC", "Drag the arrows to set the values for each effect.", 0x50020000, 66, 16, 269, 8},
    {1524, "STATIC", "#110", 0x5000000E, 12, 34, 9, 7},
    {1110, "BUTTON", "&On/Off", 0x50010000, 24, 30, 35, 14},
    {1111, "BUTTON", "&Reset", 0x50010000, 23, 49, 35, 14},
    {1038, "STATIC", "", 0x40000007, 66, 29, 61, 57},
    {1035, "STATIC", "", 0x40000007, 132, 29, 61, 57},
    {1036, "STATIC", "", 0x40000007, 198, 29, 61, 57},
    {1037, "STATIC", "", 0x40000007, 264, 29, 61, 57},
    {1039, "STATIC", "", 0x40000007, 330, 29, 61, 57},
    {65535, "STATIC", "Fade", 0x50020001, 71, 87, 51, 9},
    {65535, "STATIC", "Rotate", 0x50020001, 137, 87, 51, 9},
    {65535, "STATIC", "Zoom", 0x50020001, 203, 87, 51, 9},
    {65535, "STATIC", "Slide", 0x50020001, 269, 87, 51, 9},
    {65535, "STATIC", "Blur Type", 0x50020001, 335, 87, 51, 9},
    {1040, "BUTTON", "R&andomize Effects During Playback", 0x50010003, 22, 104, 129, 10},
    {1051, "BUTTON", "&Use DirectDraw for display (will take effect after restart)", 0x50010003, 22, 118, 188, 10},
    {65535, "BUTTON", "Frame Rate", 0x50000007, 7, 137, 394, 30},
    {65535, "STATIC", "Low", 0x50020002, 17, 151, 21, 10},
    {1444, "msctls_trackbar32", "Slider1", 0x50010018, 41, 148, 95, 17},
    {65535, "STATIC", "High", 0x50020000, 141, 151, 28, 10},
    {65535, "STATIC", "(Note: Higher frame rates require more processor power)", 0x50020000, 177, 151, 181, 13},
    {65535, "BUTTON", "Current Visualization", 0x50000007, 7, 169, 394, 30},
    {65535, "STATIC", "Name:", 0x50020000, 18, 183, 27, 12},
    {1042, "STATIC", "", 0x50020000, 47, 183, 241, 12},
    {1050, "BUTTON", "Co&nfigure", 0x50010000, 300, 180, 54, 12},
    {1049, "BUTTON", "&Make visualization window always on top", 0x40010003, 10, 206, 150, 10},
    {1006, "BUTTON", "&Help", 0x50010000, 300, 205, 48, 14},
    {1005, "BUTTON", "&Close", 0x50010000, 353, 205, 48, 14},
};

TEST(Resource, DialogTemplateIsWhatTheDialogCountsOn) {
    const HMODULE module = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    const HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(273), RT_DIALOG);
    ASSERT_NE(found, nullptr);
    TemplateReader reader(LockResource(LoadResource(module, found)), SizeofResource(module, found));
    EXPECT_EQ(reader.Number(), 0x80C800C0u);
    EXPECT_EQ(reader.Number(), 0u) << "no extended styles";
    EXPECT_EQ(reader.Word(), std::size(kControls));
    for (const uint16_t expected : {0, 0, 409, 226}) EXPECT_EQ(reader.Word(), expected);
    EXPECT_EQ(reader.Text(), "") << "no menu";
    EXPECT_EQ(reader.Text(), "") << "the usual class";
    EXPECT_EQ(reader.Text(), "Visualization Settings");
    EXPECT_EQ(reader.Word(), 8);
    EXPECT_EQ(reader.Text(), "MS Sans Serif");
    for (const Control& control : kControls) {
        reader.Align();
        const std::string name = std::to_string(control.id) + " " + control.text;
        EXPECT_EQ(reader.Number(), control.style) << name;
        EXPECT_EQ(reader.Number(), 0u) << name;
        for (const int expected : {control.x, control.y, control.width, control.height, control.id})
            EXPECT_EQ(reader.Word(), expected) << name;
        EXPECT_STRCASEEQ(reader.Text().c_str(), control.type) << name;
        EXPECT_EQ(reader.Text(), control.text) << name;
        EXPECT_EQ(reader.Word(), 0) << "no creation data: " << name;
    }
    EXPECT_LT(reader.Left(), 4);
    FreeLibrary(module);
}

}  // namespace
}  // namespace tdkviz::test
