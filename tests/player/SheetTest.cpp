// Contact sheets: what stands where, and the same bytes each time.
#include "player/render/SheetLayout.h"
#include "tests/player/PlayerRun.h"

namespace tdkplay {
namespace {

constexpr PictureSize kSize = {96, 72};
constexpr size_t kMoments = 4;

// The brightest part of a colour in this part of a picture; -1 if it isn't inside.
int BrightestIn(const Pixels& picture, const RECT& place) {
    if (place.right > static_cast<LONG>(picture.Width) || place.bottom > static_cast<LONG>(picture.Height)) return -1;
    int brightest = 0;
    for (LONG y = place.top; y < place.bottom; ++y)
        for (LONG i = place.left * 3; i < place.right * 3; ++i)
            brightest = std::max<int>(
                brightest, picture.Bytes[static_cast<size_t>(y) * picture.Width * 3 + static_cast<size_t>(i)]);
    return brightest;
}

TEST_F(PlayerRun, DrawsAStripForEachPlugin) {
    const auto draw = [this](const std::string& name, const std::string& seed) {
        RunWell({"--sheet", folder_.File(name), "--size", kSize.Text(), "--seed", seed, song_});
        return ReadFile(folder_.File(name));
    };
    const std::string first = draw("first.png", "5");
    EXPECT_TRUE(first == draw("second.png", "5"));
    EXPECT_FALSE(first == draw("other.png", "70000"));
    const std::vector<std::string> names = PluginNames();
    const SheetLayout layout(kSize, names.size(), kMoments);
    const Pixels sheet = ReadPng(folder_.File("first.png"));
    EXPECT_GT(BrightestIn(sheet, layout.TitlePlace()), 200);
    for (size_t strip = 0; strip < names.size(); ++strip) {
        EXPECT_GT(BrightestIn(sheet, layout.CaptionPlace(strip)), 200) << names[strip];
        for (size_t moment = 0; moment < kMoments; ++moment)
            EXPECT_GT(BrightestIn(sheet, layout.PicturePlace(strip, moment)), 60) << names[strip] << " " << moment;
    }
}

TEST_F(PlayerRun, DrawsASheetOfTheNamedPluginsOrSaysWhyNot) {
    const std::string sheet = folder_.File("a.png");
    RunWell({"--sheet", sheet, "--viz", "Flow", "--viz", "Ink", "--size", "64x48", song_});
    EXPECT_GT(BrightestIn(ReadPng(sheet), SheetLayout({64, 48}, 2, kMoments).PicturePlace(1, kMoments - 1)), 60);
    ExpectError(ExitCode::kUsage, Run({"--sheet", sheet, "--size", "8000x8000", song_}));
    ExpectError(ExitCode::kCannotWrite, Run({"--sheet", folder_.File("no/a.png"), "--size", "64x48", song_}));
}

}  // namespace
}  // namespace tdkplay
