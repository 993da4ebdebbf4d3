// Contact sheets: what stands where, and the same bytes each time.
#include <png.h>

#include "player/render/SheetLayout.h"
#include "tests/player/PlayerRun.h"

namespace tdkplay {
namespace {

constexpr PictureSize kSize = {96, 72};
constexpr size_t kMoments = 4;

// The brightest part of a colour in this part of a PNG file; -1 if it isn't inside.
int BrightestIn(const std::string& path, const RECT& place) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return -1;
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> bytes(PNG_IMAGE_SIZE(image));
    const bool isInside =
        place.right <= static_cast<LONG>(image.width) && place.bottom <= static_cast<LONG>(image.height);
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) || !isInside) return -1;
    int brightest = 0;
    for (LONG y = place.top; y < place.bottom; ++y)
        for (LONG i = place.left * 3; i < place.right * 3; ++i)
            brightest =
                std::max<int>(brightest, bytes[static_cast<size_t>(y) * image.width * 3 + static_cast<size_t>(i)]);
    return brightest;
}

TEST_F(PlayerRun, DrawsAStripForEachPlugin) {
    const auto draw = [this](const std::string& name, const std::string& seed) {
        const Outcome outcome = Run({"--sheet", folder_.File(name), "--size", kSize.Text(), "--seed", seed, song_});
        EXPECT_EQ(outcome.Code, 0) << outcome.Error;
        return ReadFile(folder_.File(name));
    };
    const std::string first = draw("first.png", "5");
    EXPECT_TRUE(first == draw("second.png", "5"));
    EXPECT_FALSE(first == draw("other.png", "70000"));
    const std::vector<std::string> names = PluginNames();
    const SheetLayout layout(kSize, names.size(), kMoments);
    const std::string sheet = folder_.File("first.png");
    EXPECT_GT(BrightestIn(sheet, layout.TitlePlace()), 200);
    for (size_t strip = 0; strip < names.size(); ++strip) {
        EXPECT_GT(BrightestIn(sheet, layout.CaptionPlace(strip)), 200) << names[strip];
        for (size_t moment = 0; moment < kMoments; ++moment)
            EXPECT_GT(BrightestIn(sheet, layout.PicturePlace(strip, moment)), 60) << names[strip] << " " << moment;
    }
}

TEST_F(PlayerRun, DrawsASheetOfTheNamedPluginsOrSaysWhyNot) {
    const std::string sheet = folder_.File("a.png");
    EXPECT_EQ(Run({"--sheet", sheet, "--viz", "Flow", "--viz", "Ink", "--size", "64x48", song_}).Code, 0);
    EXPECT_GT(BrightestIn(sheet, SheetLayout({64, 48}, 2, kMoments).PicturePlace(1, kMoments - 1)), 60);
    ExpectError(ExitCode::kUsage, Run({"--sheet", sheet, "--size", "8000x8000", song_}));
    ExpectError(ExitCode::kCannotWrite, Run({"--sheet", folder_.File("no/a.png"), "--size", "64x48", song_}));
}

}  // namespace
}  // namespace tdkplay
