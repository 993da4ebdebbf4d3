// The road of the audio on the stepped clock: what is delivered when, with which delay.
#include "player/sound/Playback.h"

#include <gtest/gtest.h>

#include <tdkplatform.h>

#include <cmath>
#include <cstring>

#include "player/sound/AudioThread.h"
#include "player/sound/SilentOutput.h"

namespace tdkplay {
namespace {

// The whole program runs on the stepped clock, which has to be asked for before anything else.
const BOOL kIsStepped = TdkpUseSteppedClock();

constexpr PcmFormat kFormat = {48000, 2};

// Audio that carries its own time: the two channels of each frame hold its number.
class CountingDecoder final : public Decoder {
public:
    explicit CountingDecoder(uint64_t frames, uint32_t first = 0, PcmFormat format = kFormat)
        : frames_(frames), first_(first), format_(format) {}
    PcmFormat Format() const override { return format_; }
    uint64_t TotalFrames() const override { return frames_; }
    size_t Read(int16_t* samples, size_t frames) override {
        const size_t count = std::min<uint64_t>(frames, frames_ - next_);
        for (size_t i = 0; i < count; ++i, ++next_) {
            const auto number = static_cast<uint32_t>(next_ + first_);
            std::memcpy(samples + 2 * i, &number, sizeof(number));
        }
        return count;
    }
    bool Seek(uint64_t frame) override {
        next_ = frame;
        return true;
    }

private:
    uint64_t frames_;
    uint64_t next_ = 0;
    uint32_t first_;
    PcmFormat format_;
};

// Notes for each delivery which frame is heard by its delay.
class RecordingHook final : public ComObject<IKVAAudioHook> {
public:
    explicit RecordingHook(PlayerObject& player) : player_(player) {}
    std::vector<double> HeardFrames;
    std::vector<uint32_t> FirstFrames;
    KVAAudioFormat Format = {};
    int Formats = 0;

    HRESULT QueryInterface(const GUID& id, void** out) override { return GiveInterface(id, out, {}); }
    HRESULT OnAudioFormat(KVAAudioFormat* format) override {
        Format = *format;
        ++Formats;
        return S_OK;
    }
    HRESULT OnAudioData(KVAAudioData* in, KVAAudioData*) override {
        uint32_t delay = 0;
        uint32_t largest = 0;
        const auto source = QueryFor<IKVAAudioDelay>(player_.GetPlaybackEngine(), kIID_IKVAAudioDelay);
        source->GetCurrentDelay(&delay);
        source->GetConfiguredDelay(&largest);
        EXPECT_LE(delay, largest);
        EXPECT_LE(in->Buffer->GetSize(), Format.BlockSize);
        uint32_t first = 0;
        std::memcpy(&first, in->Buffer->GetBuffer(), sizeof(first));
        FirstFrames.push_back(first);
        const double end = first + static_cast<double>(in->Buffer->GetSize()) / kFormat.FrameBytes();
        HeardFrames.push_back(end - delay * kFormat.Rate / 1000.0);
        return S_OK;
    }

private:
    PlayerObject& player_;
};

class PlaybackTest : public testing::Test {
protected:
    PlaybackTest() { context_->Hooks().AddHook(hook_.Get(), 1); }

    void Load(double seconds, bool loop = false) {
        playback_.emplace(*context_, std::make_unique<CountingDecoder>(static_cast<uint64_t>(seconds * kFormat.Rate)),
                          OutputRequest{kSilentName, {}, false}, loop);
    }
    AudioPump::State DeliverAhead() {
        AudioPump::Step step = {};
        do step = playback_->Pump().DeliverBlock();
        while (step.Result == AudioPump::State::kDelivered);
        return step.Result;
    }
    // Plays on in uneven steps; gives the state of the pump after the last one.
    AudioPump::State PlayFor(int milliseconds) {
        constexpr int kSteps[] = {7, 31, 1, 20};
        AudioPump::State state = DeliverAhead();
        for (int i = 0, step = 0; milliseconds > 0; milliseconds -= step, ++i) {
            step = std::min(milliseconds, kSteps[static_cast<size_t>(i) % std::size(kSteps)]);
            TdkpAdvanceClock(static_cast<DWORD>(step));
            now_ += step;
            const size_t before = hook_->HeardFrames.size();
            state = DeliverAhead();
            for (size_t delivery = before; delivery < hook_->HeardFrames.size(); ++delivery)
                EXPECT_NEAR(hook_->HeardFrames[delivery], (now_ + shift_) * kFormat.Rate / 1000.0,
                            kFormat.Rate / 1000.0)
                    << "at " << now_ << " ms";
        }
        return state;
    }

    const ComPtr<HostContext> context_ = MakeCom<HostContext>();
    const ComPtr<RecordingHook> hook_ = MakeCom<RecordingHook>(context_->Player());
    std::optional<Playback> playback_;
    int now_ = 0;    // milliseconds played
    int shift_ = 0;  // of the place in the piece against the time played, milliseconds
};

TEST_F(PlaybackTest, EachDeliveryTellsWhatIsHeardThen) {
    ASSERT_TRUE(kIsStepped);
    Load(10.0);
    playback_->Play();
    EXPECT_EQ(PlayFor(2000), AudioPump::State::kFull);
    EXPECT_EQ(hook_->Formats, 1);
    EXPECT_EQ(hook_->Format.Channels, 2);
    EXPECT_EQ(hook_->Format.BitsPerSample, 16);
    EXPECT_GT(hook_->FirstFrames.back(), 2.03 * kFormat.Rate) << "ahead of the listener";
    EXPECT_NEAR(playback_->Pump().Played(), 2.0, 0.001);
    EXPECT_NEAR(playback_->Pump().Where().Position, 2.0, 0.001);
}

TEST_F(PlaybackTest, PauseLosesNothing) {
    Load(10.0);
    playback_->Play();
    PlayFor(500);
    playback_->Pause();
    const size_t before = hook_->FirstFrames.size();
    TdkpAdvanceClock(5000);
    EXPECT_EQ(DeliverAhead(), AudioPump::State::kIdle);
    EXPECT_EQ(hook_->FirstFrames.size(), before);
    EXPECT_NEAR(playback_->Pump().Where().Position, 0.5, 0.001);
    playback_->Play();
    PlayFor(500);
    for (size_t i = 1; i < hook_->FirstFrames.size(); ++i)
        EXPECT_EQ(hook_->FirstFrames[i] - hook_->FirstFrames[i - 1], hook_->Format.BlockSize / kFormat.FrameBytes());
}

TEST_F(PlaybackTest, SeekGoesOnFromTheNewPlaceAtOnce) {
    Load(20.0);
    playback_->Play();
    PlayFor(1000);
    playback_->SeekBy(5.0);
    EXPECT_NEAR(playback_->Pump().Where().Position, 6.0, 0.001);
    EXPECT_NEAR(playback_->Pump().Played(), 1.0, 0.001);
    shift_ = 5000;
    PlayFor(1000);
    playback_->SeekBy(-100.0);
    EXPECT_EQ(playback_->Pump().Where().Position, 0.0);
    shift_ = -2000;
    PlayFor(300);
    playback_->SeekBy(100.0);
    EXPECT_EQ(DeliverAhead(), AudioPump::State::kEnded);
}

// Keeps what a device gets.
class RecordingOutput final : public SilentOutput {
public:
    RecordingOutput() : SilentOutput(kFormat) {}
    std::vector<int16_t> Samples;

    void Write(const int16_t* samples, size_t frames) override {
        Samples.insert(Samples.end(), samples, samples + frames * kFormat.Channels);
        SilentOutput::Write(samples, frames);
    }
};

TEST_F(PlaybackTest, TheVolumeIsForTheListenerAlone) {
    Load(10.0);
    const auto output = std::make_shared<RecordingOutput>();
    const auto engine = MakeCom<Engine>(1.0);
    context_->Player().SetEngine(engine);
    playback_->Pump().SetOutput(output, engine);
    playback_->Play();
    const std::pair<int, double> steps[] = {{kFullVolume, 1.0}, {50, 0.125}, {-5, 0.0}};
    for (const auto& [volume, factor] : steps) {
        playback_->SetVolume(volume);
        PlayFor(100);
        const auto frame = static_cast<int16_t>(output->Samples.size() / 2 - 1);
        EXPECT_EQ(output->Samples[output->Samples.size() - 2], std::lround(frame * factor)) << volume;
    }
    EXPECT_EQ(playback_->Volume(), 0);
    for (size_t i = 1; i < hook_->FirstFrames.size(); ++i)
        ASSERT_EQ(hook_->FirstFrames[i] - hook_->FirstFrames[i - 1], hook_->Format.BlockSize / kFormat.FrameBytes());
}

TEST_F(PlaybackTest, AnOffsetShiftsThePicturesAtOnceAsFarAsThereIsAudio) {
    Load(20.0);
    playback_->Play();
    PlayFor(500);
    // Before the first pictures that come earlier, that much more has to be ahead.
    for (const int offset : {300, 1000, -200, 0}) {
        playback_->SetOffset(offset);
        for (int step = 0; step < 5; ++step, now_ += 50) {
            TdkpAdvanceClock(50);
            DeliverAhead();
        }
        shift_ = -offset;
        PlayFor(500);
    }
    playback_->SetOffset(5000);
    EXPECT_EQ(playback_->Offset(), kLargestOffset);
    EXPECT_EQ(hook_->Formats, 1) << "the ring is long enough from the start";
}

TEST(Gain, GoesWithoutAStepToWhatWasAskedFor) {
    std::vector<int16_t> samples(2 * 1000);
    const auto apply = [&samples](Gain& gain) {
        for (size_t i = 0; i < samples.size(); ++i) samples[i] = i % 2 == 0 ? INT16_MAX : INT16_MIN;
        gain.Apply(samples.data(), 1000, 2);
    };
    Gain gain;
    gain.SetPercent(50);
    apply(gain);
    EXPECT_EQ(samples.front(), 4096) << "the first block has its volume from the start";
    EXPECT_EQ(samples.back(), -4096);
    gain.SetPercent(100);
    apply(gain);
    for (size_t i = 2; i < samples.size(); ++i) ASSERT_LE(std::abs(samples[i] - samples[i - 2]), 30) << i;
    EXPECT_EQ(samples[1998], INT16_MAX);
    apply(gain);
    EXPECT_EQ(samples.front(), INT16_MAX);
    EXPECT_EQ(samples.back(), INT16_MIN);
}

// The second piece carries on with the numbers of the first, so that a gap or a cut shows.
TEST_F(PlaybackTest, ThePieceThatFollowsInTheSameFormatComesWithoutAGap) {
    constexpr uint32_t kFirst = kFormat.Rate + 123;  // ends within a block
    playback_.emplace(*context_, std::make_unique<CountingDecoder>(kFirst), OutputRequest{kSilentName, {}, false},
                      false);
    playback_->SetNext({std::make_unique<CountingDecoder>(kFormat.Rate, kFirst), 7});
    playback_->Play();
    PlayFor(900);
    TdkpAdvanceClock(20);
    now_ += 20;
    EXPECT_EQ(DeliverAhead(), AudioPump::State::kNextPiece);
    EXPECT_FALSE(playback_->Pump().HasNext());
    HeardPlace place = playback_->Pump().Where();
    EXPECT_EQ(place.Piece, 0u) << "what goes out isn't heard yet";
    EXPECT_NEAR(place.UntilNext, 0.08 + 123.0 / kFormat.Rate, 0.002);
    PlayFor(200);
    place = playback_->Pump().Where();
    EXPECT_EQ(place.Piece, 7u);
    EXPECT_FALSE(place.IsLeaving());
    EXPECT_NEAR(place.Position, 0.12 - 123.0 / kFormat.Rate, 0.001);
    EXPECT_EQ(place.Length, 1.0);
    EXPECT_EQ(hook_->Formats, 1);
    for (size_t i = 1; i < hook_->FirstFrames.size(); ++i)
        ASSERT_EQ(hook_->FirstFrames[i] - hook_->FirstFrames[i - 1], hook_->Format.BlockSize / kFormat.FrameBytes());
    EXPECT_EQ(PlayFor(880 + 3), AudioPump::State::kEnded);
    EXPECT_FALSE(playback_->GoOn());
}

TEST_F(PlaybackTest, APieceInAnotherFormatIsHeardWhenTheLastFrameOfTheFirstHasBeen) {
    constexpr PcmFormat kOther = {24000, 1};
    Load(1.0);
    playback_->SetNext({std::make_unique<CountingDecoder>(kOther.Rate, 0, kOther), 1});
    playback_->Play();
    IUnknown* const before = context_->Player().GetPlaybackEngine();
    EXPECT_EQ(PlayFor(999), AudioPump::State::kDraining);
    EXPECT_FALSE(playback_->Pump().HasEnded());
    EXPECT_EQ(PlayFor(1), AudioPump::State::kEnded);
    ASSERT_TRUE(playback_->Pump().HasEnded());
    ASSERT_TRUE(playback_->GoOn());
    auto* const engine = static_cast<ITKPlaybackEngine*>(context_->Player().GetPlaybackEngine());
    EXPECT_NE(engine, before);
    EXPECT_EQ(engine->GetState(), kEngineStatePlaying);
    EXPECT_EQ(playback_->Pump().Where().Piece, 1u);
    DeliverAhead();
    EXPECT_EQ(hook_->Format.SamplesPerSecond, kOther.Rate);
    EXPECT_EQ(hook_->Format.Channels, kOther.Channels);
    TdkpAdvanceClock(100);
    EXPECT_NEAR(playback_->Pump().Played(), 1.1, 0.001);
    EXPECT_NEAR(playback_->Pump().Where().Position, 0.1, 0.001);
}

TEST_F(PlaybackTest, AnotherPieceBeginsAtOncePausedOrNot) {
    Load(10.0);
    playback_->Play();
    PlayFor(500);
    playback_->Pause();
    playback_->Begin({std::make_unique<CountingDecoder>(kFormat.Rate, 500000), 3});
    EXPECT_EQ(playback_->Pump().Where().Piece, 3u);
    EXPECT_EQ(playback_->Pump().Where().Position, 0.0);
    const size_t delivered = hook_->FirstFrames.size();
    EXPECT_EQ(DeliverAhead(), AudioPump::State::kIdle);
    playback_->Play();
    DeliverAhead();
    EXPECT_EQ(hook_->FirstFrames.at(delivered), 500000u);
    EXPECT_NEAR(playback_->Pump().Played(), 0.5, 0.001);
}

TEST_F(PlaybackTest, LoopBeginsAgain) {
    Load(0.5, true);
    playback_->Play();
    const auto block = hook_.Get();
    DeliverAhead();
    for (int i = 0; i < 100; ++i) {
        TdkpAdvanceClock(20);
        EXPECT_EQ(DeliverAhead(), AudioPump::State::kFull);
    }
    EXPECT_NEAR(playback_->Pump().Played(), 2.0, 0.001);
    EXPECT_EQ(std::count(block->FirstFrames.begin(), block->FirstFrames.end(), 0u), 5);
    playback_->Seek(10.0);  // its end
    for (int i = 0; i < 10; ++i) {
        TdkpAdvanceClock(20);
        EXPECT_EQ(DeliverAhead(), AudioPump::State::kFull);
    }
}

TEST_F(PlaybackTest, AnotherDeviceIsAnotherEngineThatGoesOnPlaying) {
    Load(10.0);
    playback_->Play();
    PlayFor(500);
    IUnknown* const before = context_->Player().GetPlaybackEngine();
    playback_->OnDeviceMoved();
    auto* const after = static_cast<ITKPlaybackEngine*>(context_->Player().GetPlaybackEngine());
    EXPECT_NE(before, after);
    EXPECT_EQ(after->GetState(), kEngineStatePlaying);
    const size_t delivered = hook_->FirstFrames.size();
    TdkpAdvanceClock(50);
    EXPECT_EQ(DeliverAhead(), AudioPump::State::kFull);
    EXPECT_GT(hook_->FirstFrames.size(), delivered);
    EXPECT_EQ(hook_->Formats, 2) << "for the new engine's delay";
}

TEST_F(PlaybackTest, WithNobodyWatchingItRunsFurtherAheadAndTheAddOnMayRest) {
    Load(20.0);
    playback_->Play();
    PlayFor(500);
    auto* const engine = static_cast<ITKPlaybackEngine*>(context_->Player().GetPlaybackEngine());
    EXPECT_NE(engine->QueryEngineFlag(kEngineFlagVisualize), 0u);
    playback_->SetWatched(false);
    EXPECT_EQ(engine->QueryEngineFlag(kEngineFlagVisualize), 0u);
    EXPECT_EQ(engine->GetState(), kEngineStatePlaying);
    PlayFor(2000);
    EXPECT_GT(hook_->FirstFrames.back(), 2.9 * kFormat.Rate);
    playback_->SetWatched(true);
    PlayFor(2000);
    EXPECT_LT(hook_->FirstFrames.back(), 4.65 * kFormat.Rate);
    EXPECT_NE(engine->QueryEngineFlag(kEngineFlagVisualize), 0u);
}

TEST_F(PlaybackTest, TheAudioThreadKeepsTheDeviceFilledAndSleepsWhilePaused) {
    Load(3.0);
    const Event news;
    AudioThread thread(playback_->Pump(), playback_->Wake(), news);
    TdkpSettle();
    EXPECT_TRUE(hook_->FirstFrames.empty());
    playback_->Play();
    TdkpSettle();
    TdkpAdvanceClock(1000);
    EXPECT_NEAR(hook_->FirstFrames.back(), 1.065 * kFormat.Rate, 0.035 * kFormat.Rate);
    playback_->Pause();
    TdkpSettle();
    const size_t delivered = hook_->FirstFrames.size();
    TdkpAdvanceClock(10000);
    EXPECT_EQ(hook_->FirstFrames.size(), delivered);
    playback_->Play();
    TdkpSettle();
    TdkpAdvanceClock(1999);
    EXPECT_FALSE(thread.TakeNews().Ended);
    TdkpAdvanceClock(2);
    EXPECT_TRUE(thread.TakeNews().Ended);
    EXPECT_EQ(WaitForSingleObject(news.Handle(), 0), WAIT_OBJECT_0);
}

}  // namespace
}  // namespace tdkplay
