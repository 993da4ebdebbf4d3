// The schedule of frames, exactly, on the stepped clock.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <functional>
#include <vector>

#include "src/host/FrameWorker.h"
#include "src/host/HighResClock.h"
#include "src/host/VizTimer.h"

namespace tdkviz {
namespace {

using Times = std::vector<uint32_t>;

class FrameLoop : public testing::Test, public FrameWorkerClient {
protected:
    FrameLoop() : worker_(*this), timer_(worker_) {
        EXPECT_EQ(worker_.Start(), S_OK);
        begin_ = HighResMilliseconds();
    }
    ~FrameLoop() override {
        timer_.Stop();
        worker_.Stop();
    }

    bool HasSomethingToShow() const override { return true; }
    void MakeWindows() override {}
    void DestroyWindows() override {}
    void RunFrame() override {
        times_.push_back(HighResMilliseconds() - begin_);
        if (onFrame_) onFrame_();
    }
    // The times of the frames so far, in milliseconds from the start.
    Times Frames() {
        TdkpSettle();
        return times_;
    }

    FrameWorker worker_;
    CVizTimer timer_;
    std::function<void()> onFrame_;  // on the worker thread

private:
    uint32_t begin_ = 0;
    Times times_;
};

TEST_F(FrameLoop, ScheduleIsAbsolute) {
    timer_.SetPeriod(33);
    ASSERT_EQ(timer_.Start(), S_OK);
    TdkpAdvanceClock(140);
    EXPECT_EQ(Frames(), (Times{33, 66, 99, 132}));
}

TEST_F(FrameLoop, LongFrameSkipsTheTicksItOverran) {
    onFrame_ = [count = 0]() mutable {
        if (++count == 2) Sleep(120);
    };
    ASSERT_EQ(timer_.Start(), S_OK);
    TdkpAdvanceClock(400);
    // The second frame lasts from 100 to 220: the ticks at 150 and 200 are late when their turn comes.
    EXPECT_EQ(Frames(), (Times{50, 100, 250, 300, 350, 400}));
}

TEST_F(FrameLoop, RateChangeActsFromTheNextTick) {
    ASSERT_EQ(timer_.Start(), S_OK);
    TdkpAdvanceClock(110);
    timer_.SetPeriod(33);
    TdkpAdvanceClock(120);
    EXPECT_EQ(Frames(), (Times{50, 100, 150, 183, 216}));
}

TEST_F(FrameLoop, StartAndStopInEveryState) {
    timer_.Stop();
    EXPECT_FALSE(timer_.IsRunning());
    ASSERT_EQ(timer_.Start(), S_OK);
    ASSERT_EQ(timer_.Start(), S_OK) << "a second start makes no second thread";
    TdkpAdvanceClock(100);
    timer_.Stop();
    TdkpAdvanceClock(500);
    EXPECT_EQ(Frames(), (Times{50, 100}));
    ASSERT_EQ(timer_.Start(), S_OK);
    TdkpAdvanceClock(60);
    timer_.Stop();
    EXPECT_EQ(Frames(), (Times{50, 100, 650}));
}

// A frame that takes longer than the timer waits for it leaves one signal behind, so only one follows.
TEST_F(FrameLoop, HangingFrameIsFollowedByOne) {
    onFrame_ = [count = 0]() mutable {
        if (++count == 1) Sleep(5010);
    };
    ASSERT_EQ(timer_.Start(), S_OK);
    TdkpAdvanceClock(5055);
    EXPECT_EQ(Frames(), (Times{50}));
    TdkpAdvanceClock(60);
    EXPECT_EQ(Frames(), (Times{50, 5060, 5100})) << "the frame that stayed requested, then the schedule";
}

}  // namespace
}  // namespace tdkviz
