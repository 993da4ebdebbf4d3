// The player in a window, as a person at the X server has it.
#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <thread>

#include "tests/player/PlayerRun.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr uint32_t kDown = 0xFF54, kAlt = 0xFFE9, kEscape = 0xFF1B;
constexpr char kDialogTitle[] = "Visualization Settings";
constexpr ScreenColor kFace = {192, 192, 192};
constexpr milliseconds kPatience{5000};

class WindowRun : public PlayerRun {
protected:
    void SetUp() override {
        PlayerRun::SetUp();
        if (IsSkipped()) return;
        if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
        server_.emplace(24);
        ASSERT_TRUE(server_->Running());
        display_ = server_->Name();
        person_.emplace(display_);
    }
    void TearDown() override {
        if (player_ <= 0) return;
        kill(player_, SIGINT);
        const Outcome outcome = Finish(player_);
        EXPECT_EQ(outcome.Code, 0) << outcome.Error;
        EXPECT_EQ(outcome.Error, "");
    }

    void Play(std::vector<std::string> arguments, const std::string& program = Stage() + "/tdkplay") {
        arguments.insert(arguments.end(), {"--window", "--no-audio", "--loop", "--size", "300x200", song_});
        player_ = Start(arguments, program);
        ASSERT_TRUE(WaitUntil([this] { return FindWindow("song.wav") != 0; }, kPatience));
    }
    static bool WaitUntil(const std::function<bool()>& done, milliseconds limit) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (!done()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(milliseconds(10));
        }
        return true;
    }
    // A window on the screen whose title has this in it, or 0.
    xcb_window_t FindWindow(const std::string& text) {
        for (const xcb_window_t window : person_->ChildrenOf(person_->Root()))
            if (person_->TextProperty(window, "WM_NAME").find(text) != std::string::npos) return window;
        return 0;
    }
    void Press(uint32_t keysym) {
        person_->Key(keysym, true);
        person_->Key(keysym, false);
    }

    std::optional<XServer> server_;
    std::optional<ForeignClient> person_;
    pid_t player_ = 0;
};

TEST_F(WindowRun, PluginsComeAndGoWhileItPlays) {
    const std::string copy = folder_.File("copy"), plugins = copy + "/Visualizations/";
    fs::create_directories(plugins);
    for (const char* file : {"tdkplay", "libtdkplatform.so", "tdkviz.so"})
        fs::copy(Stage() + "/" + file, copy + "/" + file);
    const auto put = [&](const std::string& file) { fs::copy(Stage() + "/Visualizations/" + file, plugins + file); };
    const auto shows = [this](const std::string& name) {
        return WaitUntil([&] { return FindWindow(" - " + name + " - ") != 0; }, milliseconds(1000));
    };
    put("Flow.tkv");
    put("SpectrumBars.tkv");
    Play({"--viz", "Spectrum Bars"}, copy + "/tdkplay");
    EXPECT_TRUE(shows("Spectrum Bars"));

    put("Oscilloscope.tkv");
    std::this_thread::sleep_for(milliseconds(800));
    Press(kDown);
    EXPECT_TRUE(shows("Oscilloscope"));
    fs::remove(plugins + "Oscilloscope.tkv");
    EXPECT_TRUE(shows("Spectrum Bars")) << "the one before";
    Press(kDown);
    EXPECT_TRUE(shows("Flow"));

    fs::remove(plugins + "Flow.tkv");
    EXPECT_TRUE(shows("Spectrum Bars"));
    fs::remove(plugins + "SpectrumBars.tkv");
    EXPECT_TRUE(shows("No plug-in"));
    Press(kDown);
    put("Flow.tkv");
    EXPECT_TRUE(shows("Flow"));
}

TEST_F(WindowRun, APluginDroppedIntoTheUsersFolderIsShown) {
    constexpr milliseconds kBusyMachine{20000};
    const std::string own = dataHome_ + "/tdkviz/Visualizations";
    fs::create_directories(own);
    Play({"--viz", "Flow"});
    fs::copy(TEST_PLUGIN_DIR "/Glow.tkv", own + "/Glow.tkv");
    EXPECT_TRUE(WaitUntil(
        [this] {
            Press(kDown);
            return WaitUntil([this] { return FindWindow(" - Glow - ") != 0; }, milliseconds(200));
        },
        kBusyMachine));
    fs::remove(own + "/Glow.tkv");
    EXPECT_TRUE(WaitUntil([this] { return FindWindow(" - Glow - ") == 0; }, kBusyMachine));
}

TEST_F(WindowRun, TheButtonOpensTheSettingsAndShowsTheSwitch) {
    Play({});
    const auto [left, top] = person_->CornerOf(FindWindow("song.wav"));
    // In the button of the strip.
    const auto picture = [this, x = left + 9, y = top + 206] {
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
        EXPECT_TRUE(WaitUntil(
            [&] {
                seen = picture();
                std::this_thread::sleep_for(milliseconds(200));
                return picture() == seen && seen != std::vector<int>(seen.size(), 0);
            },
            kPatience));
        return seen;
    };
    const auto useSwitch = [&, buttonX = left + 40, buttonY = top + 214] {
        person_->MoveMouse(buttonX, buttonY);
        person_->Button(1, true);
        person_->Button(1, false);
        const auto isOpen = [this] {
            const xcb_window_t dialog = FindWindow(kDialogTitle);
            if (dialog == 0 || person_->Focus() != dialog) return false;
            const auto [x, y] = person_->CornerOf(dialog);
            return person_->ColorAt(x + 1, y + 1).DistanceTo(kFace) == 0;
        };
        ASSERT_TRUE(WaitUntil(isOpen, kPatience));
        person_->Key(kAlt, true);
        Press('o');
        person_->Key(kAlt, false);
        Press(kEscape);
        ASSERT_TRUE(WaitUntil([this] { return FindWindow(kDialogTitle) == 0; }, kPatience));
    };
    const std::vector<int> on = restingPicture();
    useSwitch();
    const std::vector<int> off = restingPicture();
    EXPECT_NE(off, on);
    useSwitch();
    EXPECT_TRUE(WaitUntil([&] { return picture() == on; }, kPatience));
    useSwitch();
    EXPECT_TRUE(WaitUntil([&] { return picture() == off; }, kPatience));
    EXPECT_NE(FindWindow("song.wav"), 0u) << "only the dialog was closed";
}

}  // namespace
}  // namespace tdkplay
