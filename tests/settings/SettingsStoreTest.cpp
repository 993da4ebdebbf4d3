#include "src/settings/SettingsStore.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <iterator>
#include <random>
#include <string>

#include "src/support/RegistryKey.h"
#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

constexpr const char* kNames[] = {
    "VizBlur",   "VizBlurAmount", "VizZoom",        "VizZoomX",      "VizZoomY",
    "VizFade",   "VizFadeColor",  "VizFadeTime",    "VizSlide",      "VizSlideX",
    "VizSlideY", "VizRotate",     "VizRotateSpeed", "VizSampleRate", "VizWindowAlwaysOnTop",
    "VizOn",     "VizRandom",     "VizRandomSeed",  "VizUseDD",
};
constexpr size_t kCount = std::size(kNames);
using Values = std::array<uint32_t, kCount>;

StoredSettings SettingsOf(const Values& values) {
    StoredSettings settings;
    const uint32_t* next = values.data();
    VizEffectParams& effects = settings.UserEffects;
    effects.Blur = *next++ != 0;
    effects.BlurAmount = static_cast<int32_t>(*next++);
    effects.Zoom = *next++ != 0;
    effects.ZoomX = static_cast<int32_t>(*next++);
    effects.ZoomY = static_cast<int32_t>(*next++);
    effects.Fade = *next++ != 0;
    effects.FadeColor = *next++;
    effects.FadeTime = static_cast<int32_t>(*next++);
    effects.Slide = *next++ != 0;
    effects.SlideX = static_cast<int32_t>(*next++);
    effects.SlideY = static_cast<int32_t>(*next++);
    effects.Rotate = *next++ != 0;
    effects.RotateSpeed = static_cast<int32_t>(*next++);
    settings.FrameRate = *next++;
    settings.AlwaysOnTop = *next++ != 0;
    settings.EffectsOn = *next++ != 0;
    settings.Randomize = *next++ != 0;
    settings.RandomSeed = *next++;
    settings.UseDirectDraw = *next++ != 0;
    return settings;
}

// No two neighbours of a kind alike, so that a value in the wrong place shows.
constexpr Values kOneSet = {1, 2, 0, 0xFFFFFFF6, 10, 1, 0xAB00FF, 25, 0, 0x80000000, 3, 1, 77, 20, 0, 1, 0, 9, 1};
constexpr Values kOtherSet = {0, 7, 1, 11, 0xFFFFFF00, 0, 0x123456, 256, 1, 4, 0x7FFFFFFF, 0, 78, 30, 1, 0, 1, 4711, 0};

class SettingsStoreTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(kRegistryIsTheTests);
        RegDeleteTreeA(HKEY_CURRENT_USER, kSettingsKey);
    }
    void TearDown() override { setenv("TDKVIZ_REGISTRY", TestRegistryFolder().File("registry.db").c_str(), 1); }
    static void Set(const Values& values) {
        for (size_t index = 0; index < kCount; ++index)
            EXPECT_TRUE(WriteNumberSetting(kNames[index], values[index], kSettingsKey)) << kNames[index];
    }
    static uint32_t Stored(const char* name) {
        uint32_t value = 0xDEADBEEF;
        EXPECT_TRUE(ReadNumberSetting(name, 0, &value, kSettingsKey)) << name;
        return value;
    }
};

TEST_F(SettingsStoreTest, NineteenValuesGoOutAndComeBack) {
    for (const Values& values : {kOneSet, kOtherSet}) {
        SaveSettings(SettingsOf(values));
        for (size_t index = 0; index < kCount; ++index)
            EXPECT_EQ(Stored(kNames[index]), values[index]) << kNames[index];
        StoredSettings loaded;
        LoadSettings(loaded);
        RegDeleteTreeA(HKEY_CURRENT_USER, kSettingsKey);
        SaveSettings(loaded);
        for (size_t index = 0; index < kCount; ++index)
            EXPECT_EQ(Stored(kNames[index]), values[index]) << kNames[index];
    }
}

TEST_F(SettingsStoreTest, WhatIsNoSettingLeavesTheField) {
    StoredSettings settings = SettingsOf(kOneSet);
    RegistryKey key;
    ASSERT_TRUE(key.Open(HKEY_CURRENT_USER, kSettingsKey));
    for (const char* name : kNames) key.SetString(name, "5");
    key.SetNumber(kNames[0], 0);
    LoadSettings(settings);
    RegDeleteTreeA(HKEY_CURRENT_USER, kSettingsKey);
    SaveSettings(settings);
    EXPECT_EQ(Stored(kNames[0]), 0u);
    for (size_t index = 1; index < kCount; ++index) EXPECT_EQ(Stored(kNames[index]), kOneSet[index]) << kNames[index];
}

TEST_F(SettingsStoreTest, EffectSwitchesTakeAnyNumberOtherFlagsOnlyOne) {
    for (const char* name : kNames) WriteNumberSetting(name, 2, kSettingsKey);
    StoredSettings settings = SettingsOf(kOtherSet);
    LoadSettings(settings);
    SaveSettings(settings);
    for (const char* name : {"VizBlur", "VizZoom", "VizFade", "VizSlide", "VizRotate"})
        EXPECT_EQ(Stored(name), 1u) << name;
    for (const char* name : {"VizWindowAlwaysOnTop", "VizOn", "VizRandom", "VizUseDD"})
        EXPECT_EQ(Stored(name), 0u) << name;
}

// ---- A process that ends in the middle

using Clock = std::chrono::steady_clock;

// Has saved `rounds` times, one set after the other, when it ends; 0 for ever.
pid_t StartSaver(int rounds) {
    const pid_t child = fork();
    if (child != 0) return child;
    const StoredSettings sets[] = {SettingsOf(kOneSet), SettingsOf(kOtherSet)};
    for (int round = 0; rounds == 0 || round < rounds; ++round) SaveSettings(sets[round % 2]);
    _exit(0);
}

std::string IntegrityOf(const std::string& file) {
    sqlite3* database = nullptr;
    std::string answer;
    sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
    const auto take = [](void* out, int, char** values, char**) {
        *static_cast<std::string*>(out) += values[0];
        return 0;
    };
    sqlite3_exec(database, "PRAGMA integrity_check", take, &answer, nullptr);
    sqlite3_close(database);
    return answer;
}

TEST_F(SettingsStoreTest, AProcessKilledAtAnyMomentOfASaveLeavesWholeValues) {
    constexpr int kKills = 200;
    constexpr int kMeasuredSaves = 6;
    const TemporaryFolder folder(FolderInMemory());
    setenv("TDKVIZ_REGISTRY", folder.File("registry.db").c_str(), 1);
    Set(kOneSet);
    const auto begin = Clock::now();
    waitpid(StartSaver(kMeasuredSaves), nullptr, 0);
    const std::chrono::duration<double, std::micro> save = (Clock::now() - begin) / kMeasuredSaves;
    std::mt19937 random(20);
    std::uniform_real_distribution<double> moment(0, save.count());
    int mixed = 0;
    for (uint32_t kill = 0; kill < kKills; ++kill) {
        const pid_t child = StartSaver(0);
        usleep(static_cast<useconds_t>(moment(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        size_t ofOneSet = 0;
        for (size_t index = 0; index < kCount; ++index) {
            const uint32_t value = Stored(kNames[index]);
            ofOneSet += value == kOneSet[index] ? 1 : 0;
            ASSERT_TRUE(value == kOneSet[index] || value == kOtherSet[index]) << kNames[index] << " is " << value;
        }
        mixed += ofOneSet > 0 && ofOneSet < kCount ? 1 : 0;
        ASSERT_TRUE(WriteNumberSetting("After", kill, kSettingsKey));
        ASSERT_EQ(Stored("After"), kill);
        ASSERT_EQ(IntegrityOf(folder.File("registry.db")), "ok");
    }
    EXPECT_GT(mixed, kKills / 4) << "the kills have to fall into saves";
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        EXPECT_EQ(entry.path().filename(), "registry.db") << "nothing set aside, nothing left behind";
}

}  // namespace
}  // namespace tdkviz
