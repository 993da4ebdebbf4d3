// Several views side by side: where they stand, what they show, and that each keeps to itself.
#include "player/host/PluginCatalog.h"
#include "player/window/GridLayout.h"
#include "player/window/TransportStrip.h"
#include "tests/player/ScreenRun.h"

namespace tdkplay {
namespace {

constexpr uint32_t kDown = 0xFF54;
constexpr ScreenColor kRed = {255, 0, 0}, kGreen = {0, 255, 0}, kBlue = {0, 0, 255};

TEST(GridLayout, GivesEachViewAnEqualPlaceOfItsOwnInTheRoom) {
    struct Case {
        PictureSize Room;
        size_t Cells;
        int Columns;  // in the first row
    };
    for (const Case& c : {Case{{640, 480}, 1, 1},
                          {{640, 480}, 2, 2},
                          {{300, 900}, 3, 1},
                          {{1280, 720}, 16, 4},
                          {{640, 480}, 7, 3},
                          {{1000, 100}, 5, 5},
                          {{16, 16}, 16, 4}}) {
        SCOPED_TRACE(c.Room.Text() + " " + std::to_string(c.Cells));
        const std::vector<RECT> places = LayOutGrid(c.Room, c.Cells);
        ASSERT_EQ(places.size(), c.Cells);
        const RECT& first = places.front();
        int inFirstRow = 0;
        for (const RECT& place : places) {
            inFirstRow += place.top == first.top;
            EXPECT_EQ(place.right - place.left, first.right - first.left);
            EXPECT_EQ(place.bottom - place.top, first.bottom - first.top);
            EXPECT_TRUE(place.left >= 0 && place.top >= 0 && place.left < place.right && place.top < place.bottom);
            EXPECT_TRUE(place.right <= c.Room.Width && place.bottom <= c.Room.Height);
            for (const RECT& other : places) {
                RECT both = {};
                EXPECT_TRUE(&other == &place || !IntersectRect(&both, &other, &place));
            }
        }
        EXPECT_EQ(inFirstRow, c.Columns);
    }
    const RECT whole = LayOutGrid({123, 77}, 1).front();
    EXPECT_TRUE(whole.left == 0 && whole.top == 0 && whole.right == 123 && whole.bottom == 77);
}

TEST(PluginCatalog, FillsUpWithOthersAsLongAsThereAreAny) {
    using Indices = std::vector<size_t>;
    const auto filled = [](Indices chosen, size_t views, size_t plugins) {
        FillUp(chosen, views, plugins);
        return chosen;
    };
    EXPECT_EQ(filled({2}, 3, 4), (Indices{2, 3, 0}));
    EXPECT_EQ(filled({3, 1}, 4, 4), (Indices{3, 1, 2, 0}));
    EXPECT_EQ(filled({1}, 6, 3), (Indices{1, 2, 0, 1, 2, 0}));
    EXPECT_EQ(filled({0, 0}, 3, 1), (Indices{0, 0, 0}));
}

class ViewsRun : public ScreenRun {
protected:
    void SetUp() override {
        ScreenRun::SetUp();
        if (IsSkipped()) return;
        const std::string player = CopyPlayer();
        for (const char* file : {"/PaintsRed.tkv", "/PaintsGreen.tkv", "/PaintsBlue.tkv"})
            PutPlugin(std::string(TEST_PLUGIN_DIR) + file);
        Launch({"--window", "--no-audio", "--loop", "--size", "300x200", "--viz", "paints red", "--viz", "paints green",
                "--viz", "paints blue", song_},
               player);
        ASSERT_TRUE(ScreenRun::Shows("song.wav"));
        window_ = FindWindow("song.wav");
    }
    // The middle of a view's place, on the screen.
    std::pair<int, int> MiddleOf(size_t view) {
        const RECT place = LayOutGrid(size_, 3)[view];
        const auto [left, top] = person_->CornerOf(window_);
        return {left + (place.left + place.right) / 2, top + (place.top + place.bottom) / 2};
    }
    bool Shows(size_t view, const ScreenColor& color) {
        const auto [x, y] = MiddleOf(view);
        return person_->ColorAt(x, y).DistanceTo(color) == 0;
    }

    xcb_window_t window_ = 0;
    PictureSize size_ = {300, 200};
};

TEST_F(ViewsRun, EachKeepsItsPluginWhateverTheOthersDo) {
    const auto othersStay = [this] { return Shows(0, kRed) && Shows(2, kBlue); };
    EXPECT_TRUE(WaitUntil([&] { return othersStay() && Shows(1, kGreen); }));
    RemovePlugin("PaintsGreen.tkv");
    EXPECT_TRUE(WaitUntil([&] { return othersStay() && (Shows(1, kRed) || Shows(1, kBlue)); }));
    PutPlugin(TEST_PLUGIN_DIR "/PaintsGreen.tkv");
    EXPECT_TRUE(WaitUntil([&] { return othersStay() && Shows(1, kGreen); })) << "it is back";

    // Once around: two views have one plug-in, and one of them leaves it.
    const auto [x, y] = MiddleOf(2);
    person_->MoveMouse(x, y);
    for (int presses = 0; presses < 3; ++presses) {
        const ScreenColor before = person_->ColorAt(x, y);
        Press(kDown);
        EXPECT_TRUE(WaitUntil([&] { return !Shows(2, before) && Shows(0, kRed) && Shows(1, kGreen); })) << presses;
    }
    EXPECT_TRUE(othersStay());
    for (const PictureSize size : {PictureSize{200, 540}, {700, 150}, {500, 400}}) {
        person_->Resize(window_, size.Width, size.Height + TransportStrip::kHeight);
        size_ = size;
        EXPECT_TRUE(WaitUntil([&] { return othersStay() && Shows(1, kGreen); })) << size.Text();
    }
}

}  // namespace
}  // namespace tdkplay
