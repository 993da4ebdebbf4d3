// Playing and capturing in this process, at a real sound server whose devices change.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <mutex>

#include "player/sound/AudioThread.h"
#include "player/sound/Playback.h"
#include "tests/listening/SoundServer.h"
#include "tests/support/Wait.h"

namespace tdkplay {
namespace {

using tdkviz::test::WaitUntil;

constexpr PcmFormat kFormat = {48000, 2};
constexpr double kFramesPerMillisecond = kFormat.Rate / 1000.0;

// Audio that carries its own time: the two channels of each frame hold its number.
class EndlessCount final : public Decoder {
public:
    PcmFormat Format() const override { return kFormat; }
    uint64_t TotalFrames() const override { return 0; }
    size_t Read(int16_t* samples, size_t frames) override {
        for (size_t i = 0; i < frames; ++i, ++next_) std::memcpy(samples + 2 * i, &next_, sizeof(next_));
        return frames;
    }
    bool Seek(uint64_t) override { return false; }

private:
    uint32_t next_ = 1 << 20;  // no silence
};

// Notes when counted audio would be seen: the moments at which frame 0 was heard, if all went on evenly.
class ClockHook final : public ComObject<IKVAAudioHook> {
public:
    explicit ClockHook(PlayerObject& player) : player_(player) {}
    HRESULT QueryInterface(const GUID& id, void** out) override { return GiveInterface(id, out, {}); }
    HRESULT OnAudioFormat(KVAAudioFormat*) override { return S_OK; }
    HRESULT OnAudioData(KVAAudioData* in, KVAAudioData*) override {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        uint32_t delay = 0;
        uint32_t last = 0;
        QueryFor<IKVAAudioDelay>(player_.GetPlaybackEngine(), kIID_IKVAAudioDelay)->GetCurrentDelay(&delay);
        const auto* const bytes = static_cast<const char*>(in->Buffer->GetBuffer());
        std::memcpy(&last, bytes + in->Buffer->GetSize() - sizeof(last), sizeof(last));
        const std::lock_guard lock(mutex_);
        zeros_.push_back(std::chrono::duration<double, std::milli>(now).count() - last / kFramesPerMillisecond + delay);
        return S_OK;
    }
    size_t Count() {
        const std::lock_guard lock(mutex_);
        return zeros_.size();
    }
    void Forget() {
        const std::lock_guard lock(mutex_);
        zeros_.clear();
    }
    double Median() {
        const std::lock_guard lock(mutex_);
        std::nth_element(zeros_.begin(), zeros_.begin() + static_cast<std::ptrdiff_t>(zeros_.size() / 2), zeros_.end());
        return zeros_[zeros_.size() / 2];
    }

private:
    PlayerObject& player_;
    std::mutex mutex_;
    std::vector<double> zeros_;  // milliseconds
};

// A playback in full: its context, its audio thread, and a host's answers to the news.
class Host {
public:
    explicit Host(const OutputRequest& request)
        : Sound(*context_, std::make_unique<EndlessCount>(), request, false),
          thread_(Sound.Pump(), Sound.Wake(), news_) {
        Begin();
    }
    explicit Host(const std::string& captureDevice)
        : Sound(*context_, captureDevice), thread_(Sound.Pump(), Sound.Wake(), news_) {
        Begin();
    }
    ~Host() { Sound.Stop(); }

    // Serves the news until then.
    bool Wait(const std::function<bool()>& done) {
        return WaitUntil([&] {
            const AudioThread::News news = thread_.TakeNews();
            if (news.DeviceMoved) Sound.OnDeviceMoved();
            if (news.RestChanged) Sound.OnRestChanged();
            return done();
        });
    }
    // On this device, with audio flowing.
    bool PlaysOn(const std::string& device) {
        const auto isThere = [&] { return Sound.DeviceName() == device; };
        if (!Wait(isThere)) return false;
        const size_t before = Hook->Count();
        return Wait([&] { return isThere() && Hook->Count() > before + 10; });
    }
    bool ShowsPictures() {
        auto* const engine = static_cast<ITKPlaybackEngine*>(context_->Player().GetPlaybackEngine());
        return engine->GetState() == kEngineStatePlaying && engine->QueryEngineFlag(kEngineFlagVisualize) != 0;
    }

private:
    const ComPtr<HostContext> context_ = MakeCom<HostContext>();
    const Event news_;

public:
    const ComPtr<ClockHook> Hook = MakeCom<ClockHook>(context_->Player());
    Playback Sound;

private:
    void Begin() {
        context_->Hooks().AddHook(Hook.Get(), 1);
        Sound.Play();
    }
    AudioThread thread_;
};

class Devices : public testing::Test {
protected:
    void SetUp() override {
        if (!SoundServer::IsInstalled()) GTEST_SKIP() << "PulseAudio is not installed";
        ASSERT_TRUE(server_.Start());
    }
    SoundServer server_;
};

TEST_F(Devices, WhatIsCapturedIsSeenWhenItIsHeard) {
    Host player(OutputRequest{"pulse", "one", true});
    ASSERT_TRUE(player.PlaysOn("one"));
    Host capture("one");
    // Large enough for the smallest delay to play no part.
    for (const int offset : {200, 500}) {
        capture.Sound.SetOffset(offset);
        // The first ones come before the server's measures have settled.
        for (int round = 0; round < 2; ++round) {
            player.Hook->Forget();
            capture.Hook->Forget();
            ASSERT_TRUE(capture.Wait([&] { return player.Hook->Count() > 60 && capture.Hook->Count() > 60; }));
        }
        EXPECT_NEAR(capture.Hook->Median() - player.Hook->Median(), offset, 60.0);
    }
}

TEST_F(Devices, SilenceLetsThePicturesRestAndSoundWakesThem) {
    Host capture("");
    EXPECT_EQ(capture.Sound.DeviceName(), "one");
    EXPECT_EQ(capture.Sound.Captured()->Title(), "Speakers");
    EXPECT_TRUE(capture.Wait([&] { return !capture.ShowsPictures(); }));
    server_.PlayTone(1000, "one");
    EXPECT_TRUE(capture.Wait([&] { return capture.ShowsPictures(); }));
    EXPECT_TRUE(capture.PlaysOn("one"));
    server_.Ask("suspend-sink one 1");
    EXPECT_TRUE(capture.Wait([&] { return !capture.ShowsPictures(); }));
    server_.Ask("suspend-sink one 0");
    EXPECT_TRUE(capture.PlaysOn("one"));
    EXPECT_TRUE(capture.ShowsPictures());
    capture.Sound.Pause();
    EXPECT_FALSE(capture.ShowsPictures());
    capture.Sound.Play();
    EXPECT_TRUE(capture.PlaysOn("one"));
    EXPECT_TRUE(capture.ShowsPictures());
}

TEST_F(Devices, PlayingFollowsTheDefaultAndOutlivesTheServer) {
    Host player(OutputRequest{"auto", "", false});
    EXPECT_TRUE(player.PlaysOn("one"));
    server_.Ask("set-default-sink two");
    EXPECT_TRUE(player.PlaysOn("two"));
    server_.Kill();
    EXPECT_TRUE(player.PlaysOn(""));
    ASSERT_TRUE(server_.Start());
    EXPECT_TRUE(player.PlaysOn("one"));
    EXPECT_TRUE(player.ShowsPictures());
}

TEST_F(Devices, PlayingComesBackToTheChosenDevice) {
    server_.Plug("headset");
    Host player(OutputRequest{"auto", "headset", false});
    EXPECT_TRUE(player.PlaysOn("headset"));
    server_.Ask("set-default-sink two");
    server_.Unplug("headset");
    EXPECT_TRUE(player.PlaysOn("two"));
    server_.Ask("set-default-sink one");
    EXPECT_TRUE(player.PlaysOn("one"));
    player.Sound.SetOffset(40);
    server_.Plug("headset");
    EXPECT_TRUE(player.PlaysOn("headset"));
    EXPECT_EQ(player.Sound.Offset(), 0) << "which was for the other";
}

}  // namespace
}  // namespace tdkplay
