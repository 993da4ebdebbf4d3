// What the player remembers: on a real X server, since only a run in a window does.
#include <csignal>

#include "player/base/SettingsKey.h"
#include "player/settings/PlayerSettings.h"
#include "tests/player/ScreenRun.h"

namespace tdkplay {
namespace {

constexpr char kPreferencesKey[] = "Software\\Corvane\\Tunedeck\\1.0\\Preferences";
constexpr char kForeignKey[] = "Software\\Corvane\\Other";

class SettingsRun : public ScreenRun {
protected:
    void PlayInAWindow(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--window", "--no-audio", "--duration", "0.2", song_});
        EXPECT_EQ(RunWell(arguments).Error, "");
    }
    std::string Remembered() const {
        const PlayerSettings settings = PlayerSettings::Load();
        return (settings.Size ? settings.Size->Text() : "none") + " " + std::to_string(settings.Volume.value_or(-1)) +
               " " + settings.Plugin + " " + settings.Device;
    }
    // Each of so many values has a line that begins with what people call it.
    static void ExpectNamed(const char* key, size_t count, const std::string& printed) {
        const std::vector<StoredValue> stored = SettingsKey::OpenToRead(key).Values();
        EXPECT_EQ(stored.size(), count);
        for (const StoredValue& value : stored) {
            const size_t place = printed.find(" " + value.Name + " ");
            ASSERT_NE(place, std::string::npos) << value.Name;
            const size_t line = printed.rfind('\n', place) + 1;
            EXPECT_EQ(printed.find_first_not_of(' ', line), line + 2) << value.Name << " has no name";
        }
    }
};

TEST_F(SettingsRun, AWindowRemembersAndOptionsWin) {
    PlayInAWindow({"--size", "300x200", "--volume", "40", "--viz", "Spectrum Bars"});
    EXPECT_EQ(Remembered(), "300x200 40 SpectrumBars.tkv ");
    PlayInAWindow({});
    EXPECT_EQ(Remembered(), "300x200 40 SpectrumBars.tkv ");
    PlayInAWindow({"--volume", "55"});
    EXPECT_EQ(Remembered(), "300x200 55 SpectrumBars.tkv ");

    const std::string before = ReadFile(registry_);
    EXPECT_EQ(Run({"--headless", "--no-audio", "--duration", "0.1", "--volume", "7", song_}).Code, 0);
    EXPECT_EQ(Run({"--window", "--size", "90x80", "--snapshot", folder_.File("a.png"), "--at", "0.1", song_}).Code, 0);
    EXPECT_EQ(ReadFile(registry_), before) << "only a run that somebody watches is remembered";
}

TEST_F(SettingsRun, WhatNoLongerFitsIsReplaced) {
    PlayerSettings settings;
    settings.Size = PictureSize{5000, 300};
    settings.Plugin = "Gone.tkv";
    settings.Device = "a device that is gone";
    settings.StoreChanges({});
    SettingsKey::OpenToWrite(kPlayerKey).SetText(kVolumeValue, "loud");
    PlayInAWindow({});
    settings = PlayerSettings::Load();
    EXPECT_LE(settings.Size->Width, XServer::kWidth);
    EXPECT_GE(settings.Size->Width, XServer::kWidth / 2);
    EXPECT_EQ(settings.Size->Height, 300);
    EXPECT_EQ(settings.Volume, 100);
    EXPECT_EQ(settings.Plugin, "Flow.tkv") << "the first";
}

TEST_F(SettingsRun, AnEndByASignalLosesNothing) {
    for (const int signal : {SIGINT, SIGKILL}) {
        const std::string size = signal == SIGINT ? "310x210" : "320x220";
        const std::string expected = size + " 100 Flow.tkv ";
        const pid_t child = Start({"--window", "--no-audio", "--loop", "--size", size, song_});
        // The kill comes when the changes have rested and been stored.
        EXPECT_TRUE(WaitUntil([&] { return signal == SIGINT ? FindWindow("Flow") != 0 : Remembered() == expected; }));
        kill(child, signal);
        EXPECT_EQ(Finish(child).Code, signal == SIGINT ? 0 : -1);
        EXPECT_EQ(Remembered(), expected);
    }
}

TEST_F(SettingsRun, ArePrintedForPeopleAndCleared) {
    EXPECT_EQ(Run({"--settings"}).Out, "Nothing is stored.\n");
    RunWell({"--list"});  // the add-on stores its own settings and what it knows of the plug-ins
    PlayerSettings settings = {PictureSize{333, 222}, 35, "Ink.tkv", "headset", true, {}};
    settings.Offsets.Set("headset", -120);
    settings.StoreChanges({});
    SettingsKey::OpenToWrite(kPreferencesKey).SetText("Glow.Colour", "red");
    SettingsKey::OpenToWrite(kForeignKey).SetText("Kept", "yes");
    SettingsKey::OpenToWrite(kAddOnKey).SetText("VizFadeTime", "late");

    const Outcome outcome = RunWell({"--settings"});
    for (const char* text : {"333x222 pixels", "35 %", "Ink.tkv", "headset", "-120 ms", "20 frames a second",
                             "Spectrum Bars", "SpectrumBars.tkv", "\"red\"", "\"late\" (not of the right type)"})
        EXPECT_NE(outcome.Out.find(text), std::string::npos) << text << " in\n" << outcome.Out;
    ExpectNamed(kPlayerKey, 6, outcome.Out);
    ExpectNamed(kAddOnKey, 19, outcome.Out);
    EXPECT_EQ(outcome.Out.find("Kept"), std::string::npos);

    EXPECT_EQ(Run({"--reset-settings"}).Out.rfind("Cleared: 6 settings of the player, 19 settings of the pictures", 0),
              0u);
    EXPECT_EQ(Run({"--settings"}).Out, "Nothing is stored.\n");
    EXPECT_EQ(Run({"--reset-settings"}).Out, "Nothing was stored.\n");
    EXPECT_EQ(SettingsKey::OpenToRead(kForeignKey).Find("Kept")->Text(), "yes");
}

TEST_F(SettingsRun, AStoreThatCannotBeUsedIsTold) {
    std::filesystem::create_directory(registry_);
    ExpectError(ExitCode::kNoSettings, Run({"--settings"}));
    ExpectError(ExitCode::kNoSettings, Run({"--reset-settings"}));
    const Outcome outcome = Run({"--window", "--no-audio", "--duration", "0.2", song_});
    EXPECT_EQ(outcome.Code, 0) << "the music plays all the same";
    EXPECT_EQ(outcome.Error.rfind("tdkplay: the store of the settings can't be opened", 0), 0u) << outcome.Error;
}

}  // namespace
}  // namespace tdkplay
