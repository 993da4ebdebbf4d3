// The offset that a person finds for a device, by keys in a window.
#include <csignal>
#include <optional>

#include "player/settings/PlayerSettings.h"
#include "player/settings/SettingsKey.h"
#include "tests/listening/SoundServer.h"
#include "tests/player/PlayerRun.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace tdkplay {
namespace {

constexpr uint32_t kShift = 0xFFE1;

class OffsetRun : public PlayerRun {
protected:
    void SetUp() override {
        PlayerRun::SetUp();
        if (IsSkipped()) return;
        if (!SoundServer::IsInstalled() || !XServer::IsInstalled()) GTEST_SKIP() << "a server is not installed";
        former_ = getenv("TDKVIZ_REGISTRY");
        setenv("TDKVIZ_REGISTRY", registry_.c_str(), 1);  // for this process's own look at it
        ASSERT_TRUE(screen_.Running());
        ASSERT_TRUE(sound_.Start());
        display_ = screen_.Name();
        person_.emplace(display_);
    }
    void TearDown() override {
        if (!former_.empty()) setenv("TDKVIZ_REGISTRY", former_.c_str(), 1);
    }

    bool Shows(const std::string& title) {
        return WaitUntil([&] {
            for (const xcb_window_t window : person_->ChildrenOf(person_->Root()))
                if (person_->TextProperty(window, "WM_NAME").find(title) != std::string::npos) return true;
            return false;
        });
    }
    void Press(uint32_t keysym) {
        person_->Key(keysym, true);
        person_->Key(keysym, false);
    }
    void End(pid_t player) const {
        kill(player, SIGINT);
        const Outcome outcome = Finish(player);
        EXPECT_EQ(outcome.Code, 0) << outcome.Error;
        EXPECT_EQ(outcome.Error, "");
    }
    static int OffsetOf(const std::string& device) { return PlayerSettings::Load().Offsets.Of(device); }

    XServer screen_{24};
    SoundServer sound_;
    std::optional<ForeignClient> person_;
    std::string former_;
};

TEST_F(OffsetRun, KeysShiftThePicturesAndTheDeviceIsRememberedWithThem) {
    SettingsKey::OpenToWrite(kPlayerKey).SetNumber("Offset:two", static_cast<uint32_t>(-70));
    pid_t player = Start({"--window", "--offset", "30", "--loop", song_});
    ASSERT_TRUE(Shows("song.wav"));
    Press('[');
    EXPECT_TRUE(Shows("Pictures +20 ms"));
    person_->Key(kShift, true);
    Press(']');
    person_->Key(kShift, false);
    EXPECT_TRUE(Shows("Pictures +70 ms"));
    EXPECT_TRUE(Shows("Volume 100 %")) << "again, after a moment";
    End(player);
    EXPECT_EQ(OffsetOf("one"), 70);
    EXPECT_EQ(OffsetOf("two"), -70) << "was left alone";

    player = Start({"--window", "--capture", "one"});
    ASSERT_TRUE(Shows("What you hear - Speakers"));
    Press(']');
    EXPECT_TRUE(Shows("Pictures +80 ms"));
    End(player);
    EXPECT_EQ(OffsetOf("one"), 80);
    EXPECT_NE(Run({"--settings"}).Out.find(" Offset:one             80 ms"), std::string::npos);
}

}  // namespace
}  // namespace tdkplay
