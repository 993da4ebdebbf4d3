// Views whose output window is the DirectDraw one: the same pictures as with the plain one, whatever fails.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

constexpr char kKey[] = "Software\\Corvane\\Visualizations";

void Set(const char* name, DWORD value) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value)), 0);
    RegCloseKey(key);
}

class DirectDrawTest : public testing::Test {
protected:
    DirectDrawTest() { TestHost::InstallPlugins({"Probe.tkv", "Cells.tkv", "Oscilloscope.tkv"}); }
    ~DirectDrawTest() override {
        RegDeleteTreeA(HKEY_CURRENT_USER, kKey);
        TdkpPadDirectDrawRows(0);
    }
};

// The same song each time, with effects that move and fade what was drawn: every frame depends on those before.
std::vector<Picture> Play(const char* plugin, int width, int height, bool directDraw) {
    Set("VizUseDD", directDraw);
    for (const char* name : {"VizOn", "VizZoom", "VizFade", "VizRotate", "VizBlur"}) Set(name, 1);
    Set("VizRandom", 0);
    TestHost host;
    EXPECT_TRUE(host.MakeView(plugin, width, height));
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    std::vector<Picture> pictures;
    for (int frame = 0; frame < 12; ++frame) {
        host.Advance(50);
        pictures.emplace_back(FindWindowExA(host.Parent(), nullptr, "TDVisualizationClass", nullptr));
    }
    EXPECT_EQ(Counts().directDraw > 0, directDraw);
    return pictures;
}

TEST_F(DirectDrawTest, SameSongGivesTheSamePictures) {
    // In the two last the plain window's frames are half as wide and high, so what they show has to be a matter of
    // parts of the frame.
    const struct {
        const char* plugin;
        int width, height;
    } cases[] = {{"Oscilloscope.tkv", 320, 240},
                 {"Oscilloscope.tkv", 212, 148},
                 {"Oscilloscope.tkv", 480, 160},
                 {"Cells.tkv", 400, 300},
                 {"Cells.tkv", 480, 360}};
    for (const auto& c : cases) {
        const std::vector<Picture> plain = Play(c.plugin, c.width, c.height, false);
        for (const DWORD padding : {0u, 44u}) {
            TdkpPadDirectDrawRows(padding);
            const std::vector<Picture> other = Play(c.plugin, c.width, c.height, true);
            for (size_t frame = 0; frame < plain.size(); ++frame) {
                ASSERT_EQ(other[frame].width, c.width);
                EXPECT_TRUE(other[frame].pixels == plain[frame].pixels) << c.width << ": " << frame << " +" << padding;
            }
        }
        EXPECT_NE(plain.front().pixels, plain.back().pixels);
    }
}

TEST_F(DirectDrawTest, WhicheverCallFailsTheViewShowsItsPicture) {
    Set("VizUseDD", 1);
    uint32_t calls = 0;
    for (uint32_t failing = 0; failing <= calls; ++failing) {
        SCOPED_TRACE(failing);
        const NothingLeft nothingLeft;
        TestHost host;
        TdkpFailDirectDraw(failing, E_FAIL);
        ASSERT_TRUE(host.MakeView("Probe.tkv", 200, 152));
        host.StartDevice(120, 441);
        host.SetState(kEngineStatePlaying);
        host.Advance(120);
        calls = std::max(calls, uint32_t{TdkpFailDirectDraw(0, S_OK)});
        host.Advance(60);
        const Picture picture(host.Parent());
        EXPECT_EQ(picture.At(2, 2), 0xFF0000u);
        EXPECT_EQ(picture.At(199, 151), 0x204060u);
        host.Shutdown();
    }
    EXPECT_GT(calls, 15u);
}

}  // namespace
}  // namespace tdkviz::test
