// A device in software plays audio that carries its own time; what a frame shows must be what is heard.
#include <cmath>

#include <gtest/gtest.h>

#include "src/audio/AudioProcessor.h"
#include "tests/audio/FakeHost.h"

namespace tdkviz::test {
namespace {

constexpr int kRate = 44100;
constexpr int kFrameBytes = 4;
constexpr int kFramePeriod = kRate / 20;  // all times in sample frames

// Plays, delivers ahead and draws, sample frame by sample frame.
class Device {
public:
    explicit Device(int delivery) : delivery_(delivery), processor_(&context_) {}

    void UseEngine(FakeEngine& engine, bool announce) {
        processor_.SetPlaybackEngine(&engine);
        delay_ = engine.Delay;
        if (announce) Announce(processor_, 2, 16, kRate, delivery_ * kFrameBytes);
        Seek(heard_);
    }
    void Seek(int64_t position) { heard_ = delivered_ = position; }
    void SetAhead(int milliseconds) { ahead_ = std::max<int64_t>(int64_t{milliseconds} * kRate / 1000, delivery_); }
    void Pause(int64_t time) { now_ += time; }

    // Gives the largest distance between shown and heard, once the first delivery is there.
    int64_t Play(int64_t time) {
        int64_t worst = 0;
        for (const int64_t end = now_ + time; now_ < end; ++now_, ++heard_) {
            while (delivered_ + delivery_ - heard_ <= ahead_) DeliverNext();
            if (now_ % kFramePeriod == 0) worst = std::max(worst, std::abs(Shown() - heard_));
        }
        return worst;
    }

private:
    void DeliverNext() {
        const auto bytes = StreamBytes(delivered_ * kFrameBytes, static_cast<size_t>(delivery_) * kFrameBytes);
        delivered_ += delivery_;
        delay_->Current = static_cast<uint32_t>((delivered_ - heard_) * 1000 / kRate);
        Deliver(processor_, bytes.data(), bytes.size());
    }
    // Where in the song the first samples of the frame come from.
    int64_t Shown() {
        VizAnalysisFrame frame{};
        processor_.ReadAnalysisFrame(frame, true);
        for (int64_t distance = 0; distance < 3 * kRate; ++distance) {
            for (const int64_t position : {heard_ + distance, heard_ - distance}) {
                int i = 0;
                while (i < 32 &&
                       frame.WaveformLeft[i] == static_cast<int8_t>(StreamByte((position + i) * kFrameBytes + 1)))
                    ++i;
                if (i == 32) return position;
            }
        }
        return -3 * kRate;
    }

    const int64_t delivery_;
    FakeContext context_;
    CVizAudioProcessor processor_;
    FakeDelay* delay_ = nullptr;
    int64_t ahead_ = 0;
    int64_t now_ = 0;
    int64_t heard_ = 4 * kRate;
    int64_t delivered_ = 4 * kRate;
};

struct InStep : testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(InStep, ThroughDelaysPauseSeekAndEngineChange) {
    const auto [ahead, delivery] = GetParam();
    const int64_t bound = kFramePeriod / 2 + delivery;
    FakeDelay delay, otherDelay;
    FakeEngine engine(&delay), otherEngine(&otherDelay);
    delay.Configured = ahead;
    otherDelay.Configured = 2 * ahead + 100;
    Device device(delivery);
    device.SetAhead(ahead);
    device.UseEngine(engine, true);
    EXPECT_LE(device.Play(kRate), bound);
    device.Pause(kRate / 3);
    EXPECT_LE(device.Play(kRate / 2), bound) << "after a pause";
    device.SetAhead(ahead / 3);
    EXPECT_LE(device.Play(kRate), bound) << "with a delay that shrinks";
    device.SetAhead(ahead);
    EXPECT_LE(device.Play(kRate), bound) << "with a delay that grows";
    device.Seek(60 * kRate);
    EXPECT_LE(device.Play(kRate), bound) << "after seeking ahead";
    device.Seek(kRate);
    EXPECT_LE(device.Play(kRate), bound) << "after seeking back";
    device.UseEngine(otherEngine, false);
    device.SetAhead(2 * ahead + 100);
    EXPECT_LE(device.Play(kRate), bound) << "after a change of engine";
    device.UseEngine(engine, true);
    device.SetAhead(ahead);
    EXPECT_LE(device.Play(kRate), bound) << "after a change of engine and format";
}

INSTANTIATE_TEST_SUITE_P(Delays, InStep,
                         testing::Combine(testing::Values(120, 500, 2000), testing::Values(128, 441, 1024, 4000)));

// With no delay the place of a frame is the oldest audio: three blocks of the host's, or one of the
// analysis where that is longer. The bound holds for blocks up to a quarter of a frame period.
TEST(InStepWithoutDelay, FollowsByTheLengthOfTheRing) {
    for (const int block : {64, 128, 441, kFramePeriod / 4, 1024, 2048}) {
        FakeDelay none;
        FakeEngine engine(&none);
        FakeContext context;
        context.Player.Engine = &engine;
        CVizAudioProcessor processor(&context);
        Announce(processor, 2, 16, kRate, block * kFrameBytes);
        const int64_t ring = std::max(3 * block, kWaveformSamples);
        for (int64_t delivered = 0; delivered < kRate; delivered += block) {
            Deliver(processor, StreamBytes(delivered * kFrameBytes, block * kFrameBytes).data(), block * kFrameBytes);
            const int64_t heard = delivered + block;
            VizAnalysisFrame frame{};
            processor.ReadAnalysisFrame(frame, false);
            if (heard < ring) continue;
            for (int i = 0; i < kWaveformSamples; ++i) {
                ASSERT_EQ(frame.WaveformLeft[i], static_cast<int8_t>(StreamByte((heard - ring + i) * kFrameBytes + 1)));
            }
            EXPECT_TRUE(ring <= kFramePeriod / 2 + block || block > kFramePeriod / 4) << block;
        }
    }
}

}  // namespace
}  // namespace tdkviz::test
