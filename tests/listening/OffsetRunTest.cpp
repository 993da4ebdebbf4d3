// The offset that a person finds for a device, by keys in a window.
#include "player/base/SettingsKey.h"
#include "player/settings/PlayerSettings.h"
#include "tests/listening/SoundServer.h"
#include "tests/player/ScreenRun.h"

namespace tdkplay {
namespace {

constexpr uint32_t kShift = 0xFFE1;

class OffsetRun : public ScreenRun {
protected:
    void SetUp() override {
        ScreenRun::SetUp();
        if (IsSkipped()) return;
        if (!SoundServer::IsInstalled()) GTEST_SKIP() << "PulseAudio is not installed";
        ASSERT_TRUE(sound_.Start());
    }
    static int OffsetOf(const std::string& device) { return PlayerSettings::Load().Offsets.Of(device); }

    SoundServer sound_;
};

TEST_F(OffsetRun, KeysShiftThePicturesAndTheDeviceIsRememberedWithThem) {
    SettingsKey::OpenToWrite(kPlayerKey).SetNumber("Offset:two", static_cast<uint32_t>(-70));
    Launch({"--window", "--offset", "30", "--loop", song_});
    ASSERT_TRUE(Shows("song.wav"));
    Press('[');
    EXPECT_TRUE(Shows("Pictures +20 ms"));
    person_->Key(kShift, true);
    Press(']');
    person_->Key(kShift, false);
    EXPECT_TRUE(Shows("Pictures +70 ms"));
    EXPECT_TRUE(Shows("Volume 100 %")) << "again, after a moment";
    EndProgram();
    EXPECT_EQ(OffsetOf("one"), 70);
    EXPECT_EQ(OffsetOf("two"), -70) << "was left alone";

    Launch({"--window", "--capture", "one"});
    ASSERT_TRUE(Shows("What you hear - Speakers"));
    Press(']');
    EXPECT_TRUE(Shows("Pictures +80 ms"));
    EndProgram();
    EXPECT_EQ(OffsetOf("one"), 80);
    EXPECT_NE(Run({"--settings"}).Out.find(" Offset:one             80 ms"), std::string::npos);
}

}  // namespace
}  // namespace tdkplay
