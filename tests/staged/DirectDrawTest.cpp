// Views whose output window is the DirectDraw one: the same pictures as with the plain one.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

class DirectDrawTest : public testing::Test {
protected:
    DirectDrawTest() { TestHost::InstallPlugins({"Cells.tkv", "Oscilloscope.tkv"}); }
    ~DirectDrawTest() override {
        ForgetSettings();
        TdkpPadDirectDrawRows(0);
    }
};

// The same song each time, with effects that move and fade what was drawn: every frame depends on those before.
std::vector<Picture> Play(const char* plugin, int width, int height, bool directDraw) {
    StoreSetting("VizUseDD", directDraw);
    for (const char* name : {"VizOn", "VizZoom", "VizFade", "VizRotate", "VizBlur"}) StoreSetting(name, 1);
    StoreSetting("VizRandom", 0);
    TestHost host;
    EXPECT_TRUE(host.MakeView(plugin, width, height));
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    std::vector<Picture> pictures;
    for (int frame = 0; frame < 12; ++frame) {
        host.Advance(50);
        pictures.emplace_back(host.ViewWindow());
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

}  // namespace
}  // namespace tdkviz::test
