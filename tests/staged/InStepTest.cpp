// What a plug-in gets at its draw is the audio that is heard then.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <algorithm>
#include <cmath>

#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

// The largest distance between what is drawn and what is heard, over the frames that were watched.
class StepWatch {
public:
    explicit StepWatch(TestHost& host) : host_(host) {
        watch_ = WatchProbe([this](const ProbeFrame& frame) { Look(frame.analysis); });
    }
    // Frames right after a jump may still show what was heard before it.
    void Forget() {
        worst_ = 0;
        frames_ = 0;
    }
    double WorstMilliseconds() const { return worst_ * 1000.0 / kRate; }
    int Frames() const { return frames_; }

private:
    void Look(const VizAnalysisFrame& analysis) {
        const double drawn = static_cast<double>(StampedPosition(analysis.WaveformLeft[0], analysis.WaveformRight[0]));
        worst_ = std::max(worst_.load(), std::abs(drawn - static_cast<double>(host_.heard.load())));
        ++frames_;
    }

    TestHost& host_;
    std::atomic<double> worst_{0};
    std::atomic<int> frames_{0};
    std::shared_ptr<void> watch_;
};

struct StepCase {
    uint32_t delay;           // ms
    uint32_t deliveryFrames;  // sample frames
    uint32_t frameRate;
};

class InStep : public testing::TestWithParam<StepCase> {};

// Half a frame period plus one delivery, and the steps of the clock and of the stamps.
double Bound(const StepCase& c) {
    return 500.0 / c.frameRate + c.deliveryFrames * 1000.0 / kRate + 1.0 + kFramesPerStamp * 1000.0 / kRate;
}

TEST_P(InStep, AcrossPauseSeekAndEngineChange) {
    const StepCase c = GetParam();
    TestHost::InstallPlugins({"Probe.tkv"});
    TestHost host;
    ASSERT_TRUE(host.MakeView("Probe.tkv", 160, 120));
    StepWatch watch(host);
    host.StartDevice(c.delay, c.deliveryFrames);
    host.SetState(kEngineStatePlaying);
    host.Advance(2500);
    EXPECT_GE(watch.Frames(), 45);
    EXPECT_LE(watch.WorstMilliseconds(), Bound(c)) << "from the start";

    host.SetState(kEngineStatePaused);
    const int before = watch.Frames();
    host.Advance(700);
    EXPECT_EQ(watch.Frames(), before) << "frames while paused";
    watch.Forget();
    host.SetState(kEngineStatePlaying);
    host.Advance(1000);
    EXPECT_GE(watch.Frames(), 18);
    EXPECT_LE(watch.WorstMilliseconds(), Bound(c)) << "after a pause";

    for (const uint64_t second : {40, 1}) {
        watch.Forget();
        host.Seek(second * kRate);
        host.Advance(1000);
        EXPECT_LE(watch.WorstMilliseconds(), Bound(c)) << "after a seek to " << second;
    }

    TestEngine other;
    other.state = kEngineStatePlaying;
    other.configuredDelay = c.delay;
    host.SetEngine(&other);
    host.StartDevice(c.delay, c.deliveryFrames);
    host.Seek(60 * kRate);
    watch.Forget();
    host.Advance(1000);
    EXPECT_LE(watch.WorstMilliseconds(), Bound(c)) << "after an engine change";
    host.SetState(0);
    host.Shutdown();
    EXPECT_EQ(other.References, 0u) << "the add-on let the engine go";
}

INSTANTIATE_TEST_SUITE_P(Delays, InStep,
                         // Without a delay the ring's length stands in for it: three of the host's blocks.
                         testing::Values(StepCase{0, 220, 20}, StepCase{120, 128, 20}, StepCase{120, 441, 20},
                                         StepCase{120, 2048, 20}, StepCase{500, 1024, 20}, StepCase{2000, 4410, 20}));

TEST(InStepWithChanges, DelayMovesWhilePlaying) {
    TestHost::InstallPlugins({"Probe.tkv"});
    TestHost host;
    ASSERT_TRUE(host.MakeView("Probe.tkv", 160, 120));
    StepWatch watch(host);
    host.StartDevice(2000, 882);
    host.SetState(kEngineStatePlaying);
    // A device that drains or fills moves its delay a little with each delivery.
    for (const uint32_t target : {2000u, 120u, 900u, 40u, 1500u}) {
        for (; host.delay != target; host.Advance(4)) host.delay += host.delay < target ? 1 : -1;
        host.Advance(500);
    }
    EXPECT_GE(watch.Frames(), 400);
    EXPECT_LE(watch.WorstMilliseconds(), Bound({2000, 882, 20}));
}

}  // namespace
}  // namespace tdkviz::test
