// Every staged plug-in through the contract.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "src/render/EffectRandomizer.h"
#include "src/render/VizEffectEngine.h"
#include "src/settings/PrefsWrapper.h"
#include "src/support/RefPtr.h"
#include "tests/staged/NothingLeft.h"
#include "tests/support/GuardedMemory.h"
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

std::vector<VizAnalysisFrame> HardFrames() {
    VizAnalysisFrame silence = {}, full = {}, noise = {};
    full.ChannelCount = noise.ChannelCount = 2;
    uint32_t seed = 1;
    for (int i = 0; i < kWaveformSamples; ++i) {
        full.WaveformLeft[i] = i % 32 < 16 ? 127 : -128;
        full.WaveformRight[i] = i % 2 ? 127 : -128;
        seed = seed * 1664525 + 1013904223;
        noise.WaveformLeft[i] = static_cast<int8_t>(seed >> 24);
        noise.WaveformRight[i] = static_cast<int8_t>(seed >> 16);
    }
    for (int k = 0; k < kSpectrumBands; ++k) {
        full.SpectrumLeft[k] = full.SpectrumRight[k] = 255;
        seed = seed * 1664525 + 1013904223;
        noise.SpectrumLeft[k] = static_cast<uint8_t>(seed >> 24);
        noise.SpectrumRight[k] = static_cast<uint8_t>(seed >> 16);
    }
    return {silence, full, noise, full, silence, noise};
}

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
    // The mean brightness of the next frame, 0 to 1.
    double Luminance(const VizAnalysisFrame& frame) {
        double sum = 0;
        for (const uint32_t pixel : Next(frame))
            sum += 0.2126 * (pixel >> 16 & 255) + 0.7152 * (pixel >> 8 & 255) + 0.0722 * (pixel & 255);
        return sum / 255 / (kWidth * kHeight);
    }

    StagedPlugin plugin;

private:
    VizEffectParams effects_;
    VizEffectEngine engine_;
    std::vector<uint32_t> front_ = std::vector<uint32_t>(kWidth * kHeight), back_ = front_;
    HWND window_ = nullptr;
};

class VisualizationsTest : public testing::TestWithParam<std::string> {
protected:
    static void SetUpTestSuite() { TdkpUseMemoryDisplay(1400, 900, 32); }
};

TEST_P(VisualizationsTest, PaintsInsideOfTheFrameOnly) {
    if (!kHasTimeForPixels) GTEST_SKIP();
    const int sizes[][2] = {{1, 1}, {2, 1}, {1, 7}, {3, 3}, {33, 17}, {640, 480}, {3840, 2160}};
    StagedPlugin plugin(GetParam());
    ASSERT_TRUE(plugin.IsLoaded());
    if (plugin.DrawsToWindow()) return;
    for (const auto& [width, height] : sizes) {
        for (const int padding : {0, 12}) {
            for (const bool atEnd : {false, true}) {
                const int pitch = width * 4 + padding;
                const auto size = static_cast<size_t>(pitch * height);
                const GuardedMemory memory(size);
                uint8_t* const block = memory.Block(size, atEnd);
                std::memset(block, 0x5A, size);
                for (const VizAnalysisFrame& frame : HardFrames())
                    plugin.Draw(block, width, height, atEnd ? pitch : -pitch, frame);
                for (int y = 0; y < height; ++y) {
                    for (int i = width * 4; i < pitch; ++i) ASSERT_EQ(block[y * pitch + i], 0x5A);
                }
            }
        }
    }
}

TEST_P(VisualizationsTest, SameMusicSamePicture) {
    Show one(GetParam()), other(GetParam());
    for (size_t i = 0; i < 60; ++i) {
        const auto& frame = DemoFrames()[i * 7];
        ASSERT_EQ(one.Next(frame), other.Next(frame)) << "frame " << i;
    }
}

TEST_P(VisualizationsTest, ShowsMusicWithoutFlickerAndSilenceAsBlack) {
    if (!kHasTimeForPixels) GTEST_SKIP();
    constexpr double kSwing = 0.1;
    constexpr int kMostSwings = 2 * 3;  // three flashes: up and down again
    Show show(GetParam());
    double extreme = 0, brightest = 0;
    bool rising = true;
    std::vector<int> swings;
    for (int i = 0; i < static_cast<int>(DemoFrames().size()); ++i) {
        const double now = show.Luminance(DemoFrames()[static_cast<size_t>(i)]);
        brightest = std::max(brightest, now);
        if (rising ? now > extreme : now < extreme) extreme = now;
        if (std::fabs(now - extreme) < kSwing) continue;
        rising = !rising;
        extreme = now;
        swings.push_back(i);
        const auto lately = [&](int at) { return i - at < kFramesPerSecond; };
        ASSERT_LE(std::count_if(swings.begin(), swings.end(), lately), kMostSwings) << "frame " << i;
    }
    EXPECT_GT(brightest, 0.01);
    for (int i = 0; i < 20 * kFramesPerSecond; ++i) show.Next({});
    EXPECT_LT(show.Luminance({}), 0.004);
}

TEST_P(VisualizationsTest, LeavesNothing) {
    const NothingLeft nothing;
    Show show(GetParam());
    for (const VizAnalysisFrame& frame : HardFrames()) show.Next(frame);
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
