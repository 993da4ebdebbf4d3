// The player in a window, as a person at the X server has it.
#include <chrono>
#include <thread>
#include <tuple>

#include "player/window/TransportStrip.h"
#include "tests/player/ScreenRun.h"
#include "tests/x11/DropSource.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr uint32_t kDown = 0xFF54, kAlt = 0xFFE9, kEscape = 0xFF1B, kSpace = ' ';
constexpr char kDialogTitle[] = "Visualization Settings";
constexpr ScreenColor kFace = {192, 192, 192}, kSelected = {0, 0, 128};
constexpr int kWidth = 300, kHeight = 200;

class WindowRun : public ScreenRun {
protected:
    void Play(std::vector<std::string> arguments, const std::string& program = Stage() + "/tdkplay") {
        const std::string size = std::to_string(kWidth) + "x" + std::to_string(kHeight);
        arguments.insert(arguments.end(), {"--window", "--no-audio", "--loop", "--size", size});
        arguments.insert(arguments.begin(), song_);
        Launch(arguments, program);
        ASSERT_TRUE(Shows("song.wav - "));
        ASSERT_TRUE(WaitUntil([this] { return FindStrip() != 0; }));
        window_ = FindWindow("song.wav - ");
        std::tie(left_, top_) = person_->CornerOf(FindStrip());
    }
    // The strip, once it stands where it belongs.
    xcb_window_t FindStrip() {
        for (const xcb_window_t child : person_->ChildrenOf(FindWindow("song.wav")))
            if (person_->SizeOf(child) == std::pair(kWidth, TransportStrip::kHeight)) return child;
        return 0;
    }
    // From plug-in to plug-in: a new one is seen in the title alone, when its turn comes.
    bool IsReached(const std::string& plugin) {
        return WaitUntil([&] { return FindWindow(" - " + plugin + " - ") != 0; },
                         [this] {
                             const std::string before = person_->TextProperty(window_, "WM_NAME");
                             Press(kDown);
                             WaitUntil([&] { return person_->TextProperty(window_, "WM_NAME") != before; });
                         });
    }
    void Click(int x, int y, int button = 1) {
        person_->MoveMouse(x, y);
        person_->Button(button, true);
        person_->Button(button, false);
    }
    // In a strip of this width, where neither time nor label move the others.
    void Click(StripPart part) {
        const RECT place = StripLayout::For(kWidth, 0, 0).PlaceOf(part);
        Click(left_ + (place.left + place.right) / 2, top_ + (place.top + place.bottom) / 2);
    }

    xcb_window_t window_ = 0;
    int left_ = 0, top_ = 0;  // of the strip, on the screen
};

TEST_F(WindowRun, PluginsComeAndGoWhileItPlays) {
    const std::string player = CopyPlayer();
    const auto put = [this](const std::string& file) { PutPlugin(Stage() + "/Visualizations/" + file); };
    const auto shows = [this](const std::string& name) { return Shows(" - " + name + " - "); };
    put("Flow.tkv");
    put("SpectrumBars.tkv");
    Play({"--viz", "Spectrum Bars"}, player);
    EXPECT_TRUE(shows("Spectrum Bars"));

    put("Oscilloscope.tkv");
    EXPECT_TRUE(IsReached("Oscilloscope"));
    RemovePlugin("Oscilloscope.tkv");
    EXPECT_TRUE(shows("Spectrum Bars")) << "the one before";
    Press(kDown);
    EXPECT_TRUE(shows("Flow"));

    RemovePlugin("Flow.tkv");
    EXPECT_TRUE(shows("Spectrum Bars"));
    RemovePlugin("SpectrumBars.tkv");
    EXPECT_TRUE(shows("No plug-in"));
    Press(kDown);
    put("Flow.tkv");
    EXPECT_TRUE(shows("Flow"));
}

TEST_F(WindowRun, APluginDroppedIntoTheUsersFolderIsShown) {
    const std::string own = dataHome_ + "/tdkviz/Visualizations";
    fs::create_directories(own);
    Play({"--viz", "Flow"});
    fs::copy(TEST_PLUGIN_DIR "/Glow.tkv", own + "/Glow.tkv");
    EXPECT_TRUE(IsReached("Glow"));
    fs::remove(own + "/Glow.tkv");
    EXPECT_TRUE(WaitUntil([this] { return FindWindow(" - Glow - ") == 0; }));
}

TEST_F(WindowRun, StripKeysAndMenuWork) {
    const std::string other = folder_.File("other.wav");
    ASSERT_TRUE(WriteSines(other, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 1, 5.0));
    Play({other, "--viz", "Spectrum Bars"});
    Click(StripPart::kPlay);
    ASSERT_TRUE(Shows("Spectrum Bars - Volume 100 % (paused)"));
    Press('n');
    EXPECT_TRUE(Shows("other.wav - "));
    Click(StripPart::kPrevious);  // paused at its start, so not that again
    EXPECT_TRUE(Shows("song.wav - "));
    Click(StripPart::kNext);
    EXPECT_TRUE(Shows("other.wav - "));
    Press('b');
    EXPECT_TRUE(Shows("song.wav - "));
    person_->MoveMouse(left_ + kWidth / 2, top_ - kHeight / 2);
    person_->Button(5, true);
    person_->Button(5, false);
    EXPECT_TRUE(Shows("Volume 95 %"));

    const std::vector<xcb_window_t> before = person_->ChildrenOf(person_->Root());
    const int x = left_ + 10, y = top_ - kHeight + 10;
    Click(x, y, 3);
    EXPECT_TRUE(WaitUntil([&] { return person_->ChildrenOf(person_->Root()).size() > before.size(); }));
    ASSERT_TRUE(WaitUntil([&] {
        person_->MoveMouse(x + 20, y + 12);  // the first plug-in; a move before the menu has the mouse is lost
        return person_->ColorAt(x + 4, y + 12).DistanceTo(kSelected) == 0;
    }));
    Click(x + 20, y + 12);
    EXPECT_TRUE(Shows(PluginNames().at(0) + " - Volume 95 % (paused)"));
    Press(kSpace);
    EXPECT_TRUE(WaitUntil([&] { return FindWindow("(paused)") == 0; }));
}

TEST_F(WindowRun, WhatIsDroppedPlaysAtOnce) {
    fs::create_directory(folder_.File("album"));
    fs::copy(song_, folder_.File("album/2 b.wav"));
    fs::copy(song_, folder_.File("album/1 a.wav"));
    Play({});
    Click(StripPart::kPlay);
    ASSERT_TRUE(Shows("(paused)"));
    DropSource source(display_, window_);
    source.Enter({"text/uri-list"});
    ASSERT_TRUE(source.Position(left_ + kWidth / 2, top_ - kHeight / 2));
    EXPECT_TRUE(source.Drop("file://" + folder_.File("album") + "\r\n"));
    ASSERT_TRUE(Shows("1 a.wav - "));
    EXPECT_EQ(FindWindow("(paused)"), 0u);
    Press('n');
    EXPECT_TRUE(Shows("2 b.wav - "));
}

TEST_F(WindowRun, FullScreenIsADoubleClickAwayAndTheStripComesWithTheMouse) {
    Play({});
    const auto strip = [this] {
        for (const xcb_window_t child : person_->ChildrenOf(window_))
            if (person_->SizeOf(child) == std::pair(XServer::kWidth, TransportStrip::kHeight)) return child;
        return xcb_window_t{0};
    };
    const auto isFull = [this] { return person_->SizeOf(window_) == std::pair(XServer::kWidth, XServer::kHeight); };
    const int x = left_ + kWidth / 2, y = top_ - kHeight / 2;
    Click(x, y);
    Click(x, y);
    ASSERT_TRUE(WaitUntil(isFull));
    EXPECT_TRUE(WaitUntil([&] { return strip() == 0; }));
    for (int i = 1; i <= 3; ++i) person_->MoveMouse(x + i, y);
    ASSERT_TRUE(WaitUntil([&] { return strip() != 0; }));
    EXPECT_EQ(person_->CornerOf(strip()), std::pair(0, XServer::kHeight - TransportStrip::kHeight));
    EXPECT_EQ(person_->ChildrenOf(window_).back(), strip()) << "above the picture";
    EXPECT_TRUE(WaitUntil([&] { return strip() == 0; }));
    Press(kEscape);
    EXPECT_TRUE(WaitUntil([&] { return FindStrip() != 0; }));
    Press('t');
    EXPECT_TRUE(WaitUntil([&] { return FindStrip() == 0; }));
}

TEST_F(WindowRun, TheButtonOpensTheSettingsAndShowsTheSwitch) {
    Play({});
    const RECT button = StripLayout::For(kWidth, 0, 0).Settings;
    const auto picture = [this, x = left_ + static_cast<int>(button.left) + StripLayout::kPadding,
                          y = top_ + static_cast<int>(button.top + button.bottom) / 2 - 8] {
        std::vector<int> colors;
        for (int i = 0; i < 16; ++i) {
            const ScreenColor color = person_->ColorAt(x + i, y + 8);
            colors.insert(colors.end(), {color.red, color.green, color.blue});
        }
        return colors;
    };
    // The one that is there to stay.
    const auto restingPicture = [&picture] {
        std::vector<int> seen;
        EXPECT_TRUE(WaitUntil([&] {
            seen = picture();
            std::this_thread::sleep_for(milliseconds(200));
            return picture() == seen && seen != std::vector<int>(seen.size(), 0);
        }));
        return seen;
    };
    const auto useSwitch = [&] {
        Click(StripPart::kSettings);
        person_->MoveMouse(left_, top_ - 1);  // the button looks the same again when the dialog has gone
        const auto isOpen = [this] {
            const xcb_window_t dialog = FindWindow(kDialogTitle);
            if (dialog == 0 || person_->Focus() != dialog) return false;
            const auto [x, y] = person_->CornerOf(dialog);
            return person_->ColorAt(x + 1, y + 1).DistanceTo(kFace) == 0;
        };
        ASSERT_TRUE(WaitUntil(isOpen));
        person_->Key(kAlt, true);
        Press('o');
        person_->Key(kAlt, false);
        Press(kEscape);
        ASSERT_TRUE(WaitUntil([this] { return FindWindow(kDialogTitle) == 0; }));
    };
    const std::vector<int> on = restingPicture();
    useSwitch();
    const std::vector<int> off = restingPicture();
    EXPECT_NE(off, on);
    useSwitch();
    EXPECT_TRUE(WaitUntil([&] { return picture() == on; }));
    useSwitch();
    EXPECT_TRUE(WaitUntil([&] { return picture() == off; }));
    EXPECT_NE(FindWindow("song.wav"), 0u) << "only the dialog was closed";
}

}  // namespace
}  // namespace tdkplay
