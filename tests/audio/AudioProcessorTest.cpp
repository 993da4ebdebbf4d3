#include "src/audio/AudioProcessor.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "src/audio/FrameRate.h"
#include "tests/audio/FakeHost.h"

namespace tdkviz::test {
namespace {

constexpr int kRate = 44100;
constexpr int kBlock = 4096;
constexpr int kShortestRing = 3 * kBlock;

class AudioProcessor : public testing::Test {
protected:
    AudioProcessor() { context_.Player.Engine = &engine_; }
    ~AudioProcessor() override { AudioSyncFactor = 0.0; }

    void Feed(size_t size) {
        const auto bytes = StreamBytes(fed_, size);
        Deliver(processor_, bytes.data(), size);
        fed_ += size;
    }
    VizAnalysisFrame Read(bool wantSpectrum = false) {
        VizAnalysisFrame frame{};
        processor_.ReadAnalysisFrame(frame, wantSpectrum);
        return frame;
    }
    // The frame must show 16-bit stereo audio from this byte of the stream on; silence before the stream.
    static void ExpectStereo(const VizAnalysisFrame& frame, int64_t position) {
        for (int64_t i = 0; i < kWaveformSamples; ++i) {
            const int64_t at = position + 4 * i;
            ASSERT_EQ(frame.WaveformLeft[i], at < 0 ? 0 : static_cast<int8_t>(StreamByte(at + 1))) << i;
            ASSERT_EQ(frame.WaveformRight[i], at < 0 ? 0 : static_cast<int8_t>(StreamByte(at + 3))) << i;
        }
    }
    template <typename Array>
    static bool AllAre(const Array& array, int value) {
        return std::all_of(std::begin(array), std::end(array), [=](int entry) { return entry == value; });
    }
    static bool IsSilent(const VizAnalysisFrame& frame) {
        return AllAre(frame.WaveformLeft, 0) && AllAre(frame.WaveformRight, 0);
    }

    FakeDelay delay_;
    FakeEngine engine_{&delay_};
    FakeContext context_;
    CVizAudioProcessor processor_{nullptr};
    int64_t fed_ = 0;
};

TEST_F(AudioProcessor, LeavesTheFrameAloneBeforeTheFirstFormat) {
    Feed(1000);
    VizAnalysisFrame frame;
    std::memset(&frame, 0x5A, sizeof(frame));
    const VizAnalysisFrame before = frame;
    processor_.ReadAnalysisFrame(frame, true);
    processor_.OnAudioFormat(nullptr);
    KVAAudioFormat nothing{};
    processor_.OnAudioFormat(&nothing);
    processor_.ReadAnalysisFrame(frame, true);
    EXPECT_EQ(std::memcmp(&frame, &before, sizeof(frame)), 0);
}

TEST_F(AudioProcessor, AFormatWithoutDataIsSilence) {
    for (int bits : {8, 16}) {
        for (int channels : {1, 2, 6}) {
            Announce(processor_, channels, bits, 96000, kBlock);
            VizAnalysisFrame frame;
            std::memset(&frame, 0x5A, sizeof(frame));
            processor_.ReadAnalysisFrame(frame, true);
            EXPECT_TRUE(IsSilent(frame));
            EXPECT_TRUE(AllAre(frame.SpectrumRight, channels <= 2 ? 0 : 0x5A));
            EXPECT_EQ(frame.ChannelCount, channels);
            EXPECT_EQ(frame.SampleRateLow, 30464);
            EXPECT_EQ(frame.Reserved, 0x5A5A5A5Au);
        }
    }
}

TEST_F(AudioProcessor, WithoutADelaySourceTheRingsLengthIsTheDelay) {
    struct {
        double SyncFactor;
        int RingSize;
    } const cases[] = {{0.0, kShortestRing}, {0.25, 44100 + 2 * kBlock}, {-1.0, kShortestRing}};
    for (const auto& c : cases) {
        AudioSyncFactor = c.SyncFactor;
        Announce(processor_, 2, 16, kRate, kBlock);
        Feed(3 * 60000 + fed_ % 4);
        const auto oldest = fed_ - c.RingSize;
        ExpectStereo(Read(), oldest);
        ExpectStereo(Read(), oldest + 8820);  // one frame period on
        Feed(0);
        ExpectStereo(Read(), oldest + (2 * 8820 < c.RingSize ? 2 * 8820 : 2 * 8820 - c.RingSize));  // nothing delivered
    }
}

TEST_F(AudioProcessor, ReadsWhereTheDelaySays) {
    CVizAudioProcessor processor(&context_);
    delay_.Configured = 500;
    Announce(processor, 2, 16, kRate, kBlock);
    const int ring = 88200 + 2 * kBlock;
    for (uint32_t milliseconds : {500u, 120u, 13u, 250u, 0u, 5000u, 4294967295u}) {
        delay_.Current = milliseconds;
        const auto bytes = StreamBytes(fed_, 100000);
        Deliver(processor, bytes.data(), bytes.size());
        fed_ += 100000;
        VizAnalysisFrame frame{};
        processor.ReadAnalysisFrame(frame, false);
        const auto lag = static_cast<int64_t>(milliseconds / 1000.0 * 176400 + 0.5);
        const int64_t position = lag == 0 || lag > ring ? fed_ - ring : (fed_ - lag + 3) / 4 * 4;
        ExpectStereo(frame, position);
    }
}

TEST_F(AudioProcessor, AnySplitIntoDeliveriesGivesTheSameFrame) {
    std::mt19937 random(5);
    delay_.Configured = delay_.Current = 120;
    for (int channels : {1, 2, 3, 6}) {
        for (int bits : {8, 16}) {
            const auto stream = StreamBytes(0, 12 * 9001);
            for (size_t largest : {5u, 333u, 4096u, 50000u}) {
                CVizAudioProcessor split(&context_);
                Announce(split, channels, bits, kRate, 1024);
                for (size_t done = 0; done < stream.size();) {
                    const size_t size = std::min<size_t>(1 + random() % largest, stream.size() - done);
                    Deliver(split, stream.data() + done, size);
                    done += size;
                }
                CVizAudioProcessor reference(&context_);
                Announce(reference, channels, bits, kRate, 1024);
                Deliver(reference, stream.data(), stream.size());
                for (int i = 0; i < 4; ++i) {
                    VizAnalysisFrame one{}, other{};
                    reference.ReadAnalysisFrame(one, true);
                    split.ReadAnalysisFrame(other, true);
                    ASSERT_EQ(std::memcmp(&one, &other, sizeof(one)), 0) << channels << " " << bits << " " << largest;
                }
            }
        }
    }
}

TEST_F(AudioProcessor, ShowsOddFormatsAsWhatTheyAre) {
    delay_.Configured = delay_.Current = 100;
    CVizAudioProcessor processor(&context_);
    for (int bits : {8, 16}) {
        for (int channels : {0, 1, 2, 3, 6, 7}) {
            SCOPED_TRACE(testing::Message() << channels << " channels, " << bits << " bits");
            Announce(processor, channels, bits, 48000, 960);
            const int frameBytes = channels * bits / 8;
            const size_t size = 20000 * std::max(frameBytes, 1);
            const auto stream = StreamBytes(0, size);
            Deliver(processor, stream.data(), size);
            VizAnalysisFrame frame{};
            processor.ReadAnalysisFrame(frame, true);
            if (channels == 0) {
                EXPECT_TRUE(IsSilent(frame));
                continue;
            }
            // 100 ms back, at the first whole sample frame from the first multiple of 4 on.
            const int lag = 4800 * frameBytes;
            const auto sample = [&](size_t at) {
                return bits == 8 ? stream[at] - 128 : static_cast<int8_t>(stream[at + 1]);
            };
            // Places count from the start of the ring, which starts a round at a multiple of its size.
            const RingLayout sizes =
                LayoutRing({static_cast<uint16_t>(channels), static_cast<uint16_t>(bits), 48000, 960, 0}, 0.1, 20);
            const size_t round = size / sizes.RingSize * sizes.RingSize;
            size_t start = (size - lag - (round - sizes.RingSize) + 3) / 4 * 4;
            start = (start + frameBytes - 1) / frameBytes * frameBytes + round - sizes.RingSize;
            for (int i = 0; i < kWaveformSamples; ++i) {
                const size_t at = start + static_cast<size_t>(i) * frameBytes;
                ASSERT_EQ(frame.WaveformLeft[i], sample(at)) << i;
                ASSERT_EQ(frame.WaveformRight[i], sample(channels == 1 ? at : at + bits / 8)) << i;
            }
            EXPECT_EQ(AllAre(frame.SpectrumLeft, 0), channels > 2);
        }
    }
}

TEST_F(AudioProcessor, DropsAudioThatCannotBeRead) {
    Announce(processor_, 2, 24, 48000, kBlock);
    Feed(30000);
    EXPECT_TRUE(IsSilent(Read(true)));
    Announce(processor_, 2, 16, kRate, kBlock);
    fed_ = 0;
    Feed(30000);
    Announce(processor_, 1, 24, 48000, kBlock);
    const VizAnalysisFrame old = Read();
    ExpectStereo(old, fed_ - kShortestRing);  // the old ring goes on
    EXPECT_EQ(old.ChannelCount, 1);
    EXPECT_EQ(old.SampleRateLow, 48000);
    Feed(3000);
    EXPECT_TRUE(IsSilent(Read()));
}

TEST_F(AudioProcessor, SpectrumOnlyWhenWanted) {
    Announce(processor_, 2, 16, kRate, kBlock);
    Feed(40000);
    VizAnalysisFrame frame;
    std::memset(&frame, 0x5A, sizeof(frame));
    processor_.ReadAnalysisFrame(frame, false);
    EXPECT_TRUE(AllAre(frame.SpectrumLeft, 0x5A) && AllAre(frame.SpectrumRight, 0x5A));
    ExpectStereo(frame, fed_ - kShortestRing);
    processor_.ReadAnalysisFrame(frame, true);
    EXPECT_FALSE(AllAre(frame.SpectrumLeft, 0x5A));
    EXPECT_FALSE(std::equal(frame.SpectrumLeft, frame.SpectrumLeft + 256, frame.SpectrumRight));
}

TEST_F(AudioProcessor, AudioStateClearsTheRingOnlyWhenNothingFlows) {
    Announce(processor_, 2, 16, kRate, kBlock);
    for (uint32_t flags = 0; flags < 8; ++flags) {
        Feed(40000);
        EXPECT_EQ(processor_.OnAudioState(flags), S_OK);
        EXPECT_EQ(processor_.IsAudioFlowing(), (flags & 3) != 0) << flags;
        EXPECT_EQ(IsSilent(Read()), (flags & 3) == 0) << flags;
    }
    processor_.OnAudioState(0);
    processor_.SetAudioFlowing(true);
    EXPECT_TRUE(processor_.IsAudioFlowing());
}

TEST_F(AudioProcessor, ANewEngineBringsItsDelayAndAnEmptyRing) {
    {
        CVizAudioProcessor processor(&context_);
        EXPECT_EQ(delay_.References, 1);
        Announce(processor, 2, 16, kRate, kBlock);
        Deliver(processor, StreamBytes(0, 40000).data(), 40000);
        FakeDelay slow;
        slow.Configured = slow.Current = 2000;
        FakeEngine engine(&slow);
        processor.SetPlaybackEngine(&engine);
        EXPECT_EQ(delay_.References, 0);
        VizAnalysisFrame frame{};
        processor.ReadAnalysisFrame(frame, false);
        EXPECT_TRUE(IsSilent(frame));
        // The ring has grown for the new engine, with no format in between.
        Deliver(processor, StreamBytes(0, 352800).data(), 352800);
        processor.ReadAnalysisFrame(frame, false);
        ExpectStereo(frame, 0);
        // Without an engine the ring stays as long as it is, and that is the delay.
        processor.SetPlaybackEngine(nullptr);
        EXPECT_EQ(slow.References, 0);
        Deliver(processor, StreamBytes(0, 400000).data(), 400000);
        processor.ReadAnalysisFrame(frame, false);
        ExpectStereo(frame, 400000 - (352800 + 2 * kBlock));
    }
    EXPECT_EQ(delay_.References, 0);
    EXPECT_EQ(engine_.References, 0);
    EXPECT_EQ(context_.Player.References, 0);
}

// A host may do anything while it is asked for its delay.
TEST_F(AudioProcessor, NoLockIsHeldAcrossCallsIntoTheHost) {
    CVizAudioProcessor processor(&context_);
    Announce(processor, 2, 16, kRate, kBlock);
    delay_.OnAsked = [&] {
        std::thread([&] {
            VizAnalysisFrame frame{};
            processor.ReadAnalysisFrame(frame, true);
            processor.SetPlaybackEngine(nullptr);
        }).join();
    };
    Deliver(processor, StreamBytes(0, 4096).data(), 4096);
    EXPECT_EQ(delay_.References, 0);
}

// Every size a host can name, deliveries of every length: nothing outside the buffers (address sanitizer).
TEST_F(AudioProcessor, SurvivesAnyFormat) {
    std::mt19937 random(23);
    CVizAudioProcessor processor(&context_);
    const int channels[] = {0, 1, 2, 3, 4, 6, 8, 255, 4000};
    const int widths[] = {0, 1, 8, 12, 16, 20, 24, 32, 65535};
    const uint32_t rates[] = {0, 1, 8000, 11025, 44100, 192000, 4000000000u};
    const int blocks[] = {0, 1, 3, 100, 4096, 65535};
    const auto pick = [&](const auto& table) { return table[random() % std::size(table)]; };
    const auto stream = StreamBytes(0, 300000);
    for (int round = 0; round < 150; ++round) {
        delay_.Configured = random() % 3 ? 0 : random() % 300;
        Announce(processor, pick(channels), pick(widths), pick(rates), pick(blocks));
        for (int step = 0; step < 5; ++step) {
            delay_.Current = random() % 4 ? random() % 400 : static_cast<uint32_t>(random());
            Deliver(processor, stream.data(), random() % 3 ? random() % 3000 : random() % stream.size());
            VizAnalysisFrame frames[3]{};
            processor.ReadAnalysisFrame(frames[1], true);
            EXPECT_EQ(frames[0].Reserved | frames[1].Reserved | frames[2].Reserved, 0u);
        }
    }
}

// For the thread sanitizer: all doors at once.
TEST_F(AudioProcessor, AllThreadsAtOnce) {
    FakeEngine other(nullptr);
    CVizAudioProcessor processor(&context_);
    std::atomic<bool> stop{false};
    std::thread audio([&] {
        for (int i = 0; !stop; ++i) {
            if (i % 64 == 0) Announce(processor, 1 + i / 64 % 2, 16, kRate, kBlock);
            Deliver(processor, StreamBytes(0, 2000).data(), 2000);
        }
    });
    std::thread host([&] {
        for (int i = 0; !stop; ++i) {
            processor.SetPlaybackEngine(i % 2 ? &engine_ : &other);
            processor.OnAudioState(i % 3);
            SetAnalysisFrameRate(20 + i % 2);
            AudioSyncFactor = i % 5 / 10.0;
        }
    });
    VizAnalysisFrame frame{};
    for (int i = 0; i < 300; ++i) processor.ReadAnalysisFrame(frame, true);
    stop = true;
    audio.join();
    host.join();
    SetAnalysisFrameRate(kDefaultFrameRate);
}

}  // namespace
}  // namespace tdkviz::test
