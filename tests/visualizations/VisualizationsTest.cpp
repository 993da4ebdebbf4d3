// Every staged plug-in through the contract.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <algorithm>
#include <cstring>

#include "player/check/FlashMeter.h"
#include "player/check/TestSound.h"
#include "src/render/EffectRandomizer.h"
#include "src/render/VizEffectEngine.h"
#include "src/settings/PrefsWrapper.h"
#include "src/support/RefPtr.h"
#include "tests/staged/NothingLeft.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestObjects.h"
#include "tests/visualizations/StagedPlugin.h"

namespace tdkviz::test {
namespace {

constexpr int kWidth = 320, kHeight = 240;

// What one thread does alone gives the thread sanitizer nothing to find, and takes it minutes.
#ifdef __SANITIZE_THREAD__
constexpr bool kHasTimeForPixels = false;
#else
constexpr bool kHasTimeForPixels = true;
#endif

// A view of the plug-in in its usual size, with the effects of a new installation.
class Show {
public:
    explicit Show(const std::string& name) : plugin(name) {
        SetDefaultEffects(effects_);
        if (!plugin.DrawsToWindow()) return;
        window_ = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight, nullptr, nullptr,
                                  nullptr, nullptr);
        MPAVizWindowRecord record = {static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window_)), {}};
        plugin.Two()->SetWindow(&record);
    }
    ~Show() {
        if (window_) DestroyWindow(window_);
    }
    const std::vector<uint32_t>& Next(const VizAnalysisFrame& frame) {
        if (window_) {
            plugin.DrawTo(window_, frame);
            const Picture picture(window_);
            front_.assign(picture.pixels.begin(), picture.pixels.end());
            return front_;
        }
        if (engine_.ApplyEffects(front_.data(), back_.data(), kWidth, kHeight, kWidth, effects_, plugin.EffectMask()))
            front_.swap(back_);
        plugin.Draw(front_.data(), kWidth, kHeight, -kWidth * 4, frame);
        return front_;
    }

    StagedPlugin plugin;

private:
    VizEffectParams effects_;
    VizEffectEngine engine_;
    std::vector<uint32_t> front_ = std::vector<uint32_t>(kWidth * kHeight), back_ = front_;
    HWND window_ = nullptr;
};

// The mean brightness of a picture, 0 to 1.
double Luminance(const std::vector<uint32_t>& picture) {
    double sum = 0;
    for (const uint32_t pixel : picture)
        sum += 0.2126 * (pixel >> 16 & 255) + 0.7152 * (pixel >> 8 & 255) + 0.0722 * (pixel & 255);
    return sum / 255 / (kWidth * kHeight);
}

class VisualizationsTest : public testing::TestWithParam<std::string> {
protected:
    static void SetUpTestSuite() { TdkpUseMemoryDisplay(1400, 900, 32); }
};

TEST_P(VisualizationsTest, SameMusicSamePicture) {
    Show one(GetParam()), other(GetParam());
    for (size_t i = 0; i < 60; ++i) {
        const auto& frame = DemoFrames()[i * 7];
        ASSERT_EQ(one.Next(frame), other.Next(frame)) << "frame " << i;
    }
}

TEST_P(VisualizationsTest, ShowsMusicWithoutFlickerAndSilenceAsBlack) {
    if (!kHasTimeForPixels) GTEST_SKIP();
    Show show(GetParam());
    tdkplay::check::FlashMeter meter(kFramesPerSecond);
    double brightest = 0;
    for (const VizAnalysisFrame& frame : DemoFrames()) {
        const std::vector<uint32_t>& picture = show.Next(frame);
        meter.Add(picture, kWidth, kHeight);
        brightest = std::max(brightest, Luminance(picture));
    }
    EXPECT_LE(meter.MostFlashes(), tdkplay::check::FlashMeter::kMostFlashes);
    EXPECT_GT(brightest, 0.01);
    for (int i = 0; i < 20 * kFramesPerSecond; ++i) show.Next({});
    EXPECT_LT(Luminance(show.Next({})), 0.004);
}

TEST_P(VisualizationsTest, LeavesNothing) {
    const NothingLeft nothing;
    Show show(GetParam());
    for (const auto& sound : tdkplay::check::HardFrames()) show.Next(sound.Frame);
}

INSTANTIATE_TEST_SUITE_P(Staged, VisualizationsTest, testing::ValuesIn(StagedPlugins()),
                         [](const auto& plugin) { return plugin.param; });

class ConfigureTest : public testing::Test {
protected:
    static constexpr char kKey[] = "Software\\Corvane\\VisualizationsTest";
    void SetUp() override {
        ASSERT_TRUE(kRegistryIsTheTests);
        TdkpUseMemoryDisplay(1400, 900, 32);
        RegDeleteTreeA(HKEY_CURRENT_USER, kKey);
    }
    void Store(const char* name, const char* text) {
        FakeBuffer buffer(text, std::strlen(text) + 1);
        EXPECT_EQ(preferences_->WriteValue(name, &buffer), S_OK);
    }
    std::string Stored(const char* name) {
        RefPtr<IKVABuffer> text;
        return preferences_->ReadValue(name, text.Receive()) == S_OK ? static_cast<char*>(text->GetBuffer()) : "";
    }
    static HWND Dialog() { return FindWindowExA(nullptr, nullptr, nullptr, "Waterfall"); }

    const RefPtr<CIKVAPrefsWrapper> preferences_{new CIKVAPrefsWrapper(kKey)};
};

TEST_F(ConfigureTest, ChoicesAreKeptAndTheDialogGoesWithThePlugin) {
    const NothingLeft nothing;
    for (const char* expected : {"2", "0"}) {
        StagedPlugin plugin("Waterfall", preferences_.Get());
        ASSERT_TRUE(plugin.CanBeConfigured());
        MPAVizWindowRecord none = {};
        ASSERT_EQ(plugin.Two()->Configure(&none), S_OK);
        const HWND dialog = Dialog();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(plugin.Two()->Configure(&none), S_OK) << "shown already";
        constexpr int kPaceButton = 101;
        SendMessageA(GetDlgItem(dialog, kPaceButton), BM_CLICK, 0, 0);
        EXPECT_EQ(Stored("Waterfall Pace"), expected) << "one further than what was stored";
    }
    EXPECT_EQ(Dialog(), nullptr);
}

TEST_F(ConfigureTest, NonsenseThatIsStoredCountsAsNothing) {
    for (const char* text : {"", "x", "3", "-1", "99999999999999999999"}) {
        Store("Waterfall Colours", text);
        StagedPlugin plugin("Waterfall", preferences_.Get());
        plugin.Two()->OnClick(0, 0, 0);
        EXPECT_EQ(Stored("Waterfall Colours"), "1") << text;
    }
}

TEST_F(ConfigureTest, WhatWasStoredUnderTheOldNameCountsUntilThereIsANewOne) {
    Store("Colours", "1");
    for (const char* expected : {"2", "0"}) {
        StagedPlugin plugin("Waterfall", preferences_.Get());
        plugin.Two()->OnClick(0, 0, 0);
        EXPECT_EQ(Stored("Waterfall Colours"), expected);
    }
    EXPECT_EQ(Stored("Colours"), "1");
}

TEST(MetersTest, PaintsOnlyWhileItHasTheWindow) {
    TdkpUseMemoryDisplay(1400, 900, 32);
    for (const SIZE size : {SIZE{1, 1}, SIZE{33, 17}, SIZE{300, 500}, SIZE{1200, 700}}) {
        StagedPlugin plugin("Meters");
        const HWND window = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, size.cx, size.cy, nullptr,
                                            nullptr, nullptr, nullptr);
        const Picture before(window);
        plugin.DrawTo(window, DemoFrames()[200]);
        EXPECT_EQ(Picture(window).pixels, before.pixels) << "before SetWindow";
        MPAVizWindowRecord record = {static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window)), {}};
        plugin.Two()->SetWindow(&record);
        for (int i = 200; i < 220; ++i) plugin.DrawTo(window, DemoFrames()[static_cast<size_t>(i)]);
        const Picture painted(window);
        if (size.cx > 100) {
            EXPECT_NE(painted.pixels, before.pixels);
        }
        record.Window = 0;
        plugin.Two()->SetWindow(&record);
        plugin.DrawTo(window, DemoFrames()[300]);
        EXPECT_EQ(Picture(window).pixels, painted.pixels) << "withdrawn";
        DestroyWindow(window);
    }
}

}  // namespace
}  // namespace tdkviz::test
