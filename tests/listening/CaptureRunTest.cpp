// The player from outside, listening to what other programs play.
#include <cmath>

#include "tests/listening/SoundServer.h"
#include "tests/player/PlayerRun.h"

namespace tdkplay {
namespace {

constexpr double kBandWidth = 48000.0 / 512.0;  // Hz

class CaptureRun : public PlayerRun {
protected:
    void SetUp() override {
        PlayerRun::SetUp();
        if (IsSkipped()) return;
        if (!SoundServer::IsInstalled()) GTEST_SKIP() << "PulseAudio is not installed";
        copy_ = CopyPlayer();
        PutPlugin(TEST_PLUGIN_DIR "/LoudestBand.tkv");
        setenv("TDKVIZ_TEST_BANDS", folder_.Write("bands", "").c_str(), 1);
    }
    void Capture(const std::vector<std::string>& device = {}) {
        std::vector<std::string> arguments = {"--headless", "--fps", "30", "--capture"};
        arguments.insert(arguments.end(), device.begin(), device.end());
        Launch(arguments, copy_);
    }
    // Whether the tone shows soon where it belongs. Of the two bands next to a tone, its phase says which is the louder
    // one, and frames come at the same few phases.
    bool Shows(int hertz) const {
        return WaitUntil([&] {
            std::ifstream file(folder_.File("bands"));
            int band = -1;
            file >> band;
            return band >= 0 && std::abs(band + 0.5 - hertz / kBandWidth) <= 1.0;
        });
    }

    SoundServer server_;
    std::string copy_;
};

TEST_F(CaptureRun, TonesShowAtTheirBandsAndTheDefaultIsFollowed) {
    ASSERT_TRUE(server_.Start());
    server_.PlayTone(1000, "one");
    server_.PlayTone(5000, "two");
    Capture();
    EXPECT_TRUE(Shows(1000));
    server_.Ask("set-default-sink two");
    EXPECT_TRUE(Shows(5000));
    server_.Ask("set-default-sink one");
    server_.StopTones();
    server_.PlayTone(1000, "one");
    EXPECT_TRUE(Shows(1000));

    server_.StopTones();
    server_.Kill();
    ASSERT_TRUE(server_.Start());
    server_.PlayTone(3000, "one");
    EXPECT_TRUE(Shows(3000)) << "of a server that was started anew";
}

TEST_F(CaptureRun, ANamedDeviceIsStayedWithAndComeBackTo) {
    ASSERT_TRUE(server_.Start());
    server_.Plug("headset");
    server_.PlayTone(1000, "one");
    server_.PlayTone(5000, "headset");
    Capture({"headset"});
    EXPECT_TRUE(Shows(5000));
    server_.Ask("set-default-sink two");
    server_.Ask("set-default-sink one");
    EXPECT_TRUE(Shows(5000));
    server_.StopTones();
    server_.PlayTone(1000, "one");
    server_.Unplug("headset");
    EXPECT_TRUE(Shows(1000));
    server_.Plug("headset");
    server_.PlayTone(3000, "headset");
    EXPECT_TRUE(Shows(3000));
}

TEST_F(CaptureRun, AnInputIsTakenByItsOwnName) {
    ASSERT_TRUE(server_.Start());
    server_.Ask("load-module module-remap-source source_name=microphone master=two.monitor");
    server_.PlayTone(1000, "one");
    server_.PlayTone(5000, "two");
    Capture({"microphone"});
    EXPECT_TRUE(Shows(5000));
}

TEST_F(CaptureRun, DevicesAreListedAndFailuresTold) {
    ExpectError(ExitCode::kNoSound, Run({"--devices"}));
    ExpectError(ExitCode::kNoSound, Run({"--headless", "--capture"}));
    ASSERT_TRUE(server_.Start());
    server_.Ask("set-default-sink two");
    server_.Ask("load-module module-remap-source source_name=microphone master=two.monitor " +
                std::string("source_properties=device.description=Microphone"));
    const std::string list = Run({"--devices"}).Out;
    EXPECT_EQ(list.rfind("output\tone\tSpeakers\noutput\ttwo\tHeadset\tdefault\ninput\tmicrophone\tMicrophone", 0), 0u)
        << list;
    const Outcome outcome = Run({"--headless", "--capture", "gramophone"});
    ExpectError(ExitCode::kNoSound, outcome);
    EXPECT_NE(outcome.Error.find("one, two, microphone"), std::string::npos) << outcome.Error;
    ExpectError(ExitCode::kNoDisplay, Run({"--capture"}));
    EXPECT_EQ(Run({"--headless", "--capture", "--duration", "0.2"}).Code, 0) << "in silence, too";
}

}  // namespace
}  // namespace tdkplay
