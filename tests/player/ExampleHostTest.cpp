// The example host from outside: its window, its pictures, its end.
#include "tests/player/ScreenRun.h"

namespace tdkplay {
namespace {

constexpr int kPoints = 16;  // across and down, that are looked at

class ExampleHost : public ScreenRun {
protected:
    void SetUp() override {
        ScreenRun::SetUp();
        if (!IsSkipped() && !std::filesystem::exists(EXAMPLE_HOST)) GTEST_SKIP() << "the example isn't built";
    }
    std::vector<int> PictureOf(xcb_window_t window) {
        const auto [left, top] = person_->CornerOf(window);
        const auto [width, height] = person_->SizeOf(window);
        std::vector<int> picture;
        for (int i = 0; i < kPoints * kPoints; ++i) {
            const ScreenColor color = person_->ColorAt(left + (2 * (i % kPoints) + 1) * width / (2 * kPoints),
                                                       top + (2 * (i / kPoints) + 1) * height / (2 * kPoints));
            picture.insert(picture.end(), {color.red, color.green, color.blue});
        }
        return picture;
    }
    // Twice another picture than before, so that it isn't only the first one that comes.
    bool Moves(xcb_window_t window) {
        std::vector<int> seen = PictureOf(window);
        int changes = 0;
        return WaitUntil([&] {
            const std::vector<int> now = PictureOf(window);
            changes += now != seen;
            seen = now;
            return changes > 2;
        });
    }
};

TEST_F(ExampleHost, ShowsMovingPicturesInItsWindowUntilItIsClosed) {
    CopyPlayer();
    const std::string host = folder_.File("copy/tdkhost");
    std::filesystem::copy(EXAMPLE_HOST, host);
    PutPlugin(Stage() + "/Visualizations/Flow.tkv");
    PutPlugin(TEST_PLUGIN_DIR "/PaintsRed.tkv");
    setenv("PULSE_SERVER", "unix:/nowhere", 1);
    Launch({Stage(), song_}, host);
    unsetenv("PULSE_SERVER");
    ASSERT_TRUE(Shows("tdkhost"));
    const xcb_window_t window = FindWindow("tdkhost");
    ASSERT_TRUE(WaitUntil([&] { return person_->ChildrenOf(window).size() == 1; }));
    const xcb_window_t view = person_->ChildrenOf(window).front();
    EXPECT_TRUE(Moves(view));

    person_->Resize(window, 400, 300);
    EXPECT_TRUE(WaitUntil([&] { return person_->SizeOf(view) == std::pair(400, 300); }));
    EXPECT_TRUE(Moves(view));
    const auto [left, top] = person_->CornerOf(window);
    person_->MoveMouse(left + 10, top + 10);
    Press('n');
    EXPECT_TRUE(WaitUntil([&] { return person_->ColorAt(left + 200, top + 150).DistanceTo({255, 0, 0}) == 0; }));
    Press('n');
    EXPECT_TRUE(Moves(view)) << "the first one again";
    person_->AskToClose(window);
    ExpectGoodEnd();
}

TEST_F(ExampleHost, SaysWhatIsMissing) {
    const auto expectFailure = [this](const std::vector<std::string>& arguments, const std::string& words) {
        const Outcome outcome = Run(arguments, EXAMPLE_HOST);
        EXPECT_EQ(outcome.Code, 1) << words;
        EXPECT_NE(outcome.Error.find(words), std::string::npos) << outcome.Error;
    };
    expectFailure({}, "usage");
    expectFailure({Stage(), folder_.File("missing.wav")}, "song");
    expectFailure({folder_.File("missing"), song_}, "tdkviz.so");
}

}  // namespace
}  // namespace tdkplay
