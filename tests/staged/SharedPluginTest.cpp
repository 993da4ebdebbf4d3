// One plug-in in several views: what one of them does to it, what the others see of that, and in which order the
// plug-in is told.
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <thread>

#include "tests/plugins/testplugins/TestPlugin.h"
#include "tests/staged/TestHost.h"
#include "tests/support/Wait.h"

namespace tdkviz::test {
namespace {

using Calls = std::vector<std::string>;

class CallLog final : public StackObject<ITestLog> {
public:
    void Note(const char* text) override {
        {
            const std::lock_guard hold(mutex_);
            calls_.emplace_back(text);
        }
        if (OnCall) OnCall(text);
    }
    // What was told since the last time.
    Calls Take() {
        const std::lock_guard hold(mutex_);
        return std::exchange(calls_, {});
    }
    // On the thread of the call.
    std::function<void(const std::string&)> OnCall;

private:
    std::mutex mutex_;
    Calls calls_;
};

ptrdiff_t Count(const Calls& calls, const char* text) {
    return std::count(calls.begin(), calls.end(), text);
}

// Each call once, in the order of the first ones.
Calls InOrder(const Calls& calls) {
    Calls order;
    for (const std::string& call : calls) {
        if (std::find(order.begin(), order.end(), call) == order.end()) order.push_back(call);
    }
    return order;
}

class SharedPluginTest : public testing::Test {
protected:
    // Oscilloscope writes no log.
    SharedPluginTest() {
        TestHost::InstallPlugins({"Good2.tkv", "WindowMode.tkv", "Probe.tkv", "Oscilloscope.tkv"});
        host_ = std::make_unique<TestHost>();
        host_->log = &log_;
        host_->StartDevice(100, 441);
        host_->SetState(kEngineStatePlaying);
    }
    ~SharedPluginTest() override { host_.reset(); }

    IMPAVizWindow* MakeView(const char* plugin) {
        IMPAVizWindow* view = host_->MakeView(plugin, 64, 48);
        host_->Advance(100);
        return view;
    }
    static void Select(IMPAVizWindow* view, const char* plugin) {
        EXPECT_EQ(view->SelectPlugin(TestHost::PluginPath(plugin).c_str()), S_OK);
    }
    Calls NextCalls(uint32_t milliseconds = 200) {
        log_.Take();
        host_->Advance(milliseconds);
        return log_.Take();
    }
    // Does `act` on this thread while the worker stands in a plug-in, which sets `isInside`.
    void ActDuringFrame(const std::atomic<bool>& isInside, const std::function<void()>& act) {
        std::thread player([this] { host_->Advance(100); });
        EXPECT_TRUE(WaitUntil([&] { return isInside.load(); }));
        act();
        player.join();
    }

    CallLog log_;
    std::unique_ptr<TestHost> host_;
};

TEST_F(SharedPluginTest, StandsStillInOneViewWhenAnotherLeavesItUntilItIsSelected) {
    IMPAVizWindow* leaving = MakeView("Good2.tkv");
    IMPAVizWindow* staying = MakeView("Good2.tkv");
    EXPECT_GT(Count(NextCalls(), "Draw"), 0);
    Select(leaving, "Oscilloscope.tkv");
    EXPECT_EQ(NextCalls(), Calls()) << "nothing comes back by itself";
    Select(staying, "Good2.tkv");
    host_->Advance(200);
    EXPECT_EQ(InOrder(log_.Take()),
              (Calls{"Initialize", "GetInfo", "GetCapabilities", "SetPreferences", "SetActive 1", "Draw"}));
}

TEST_F(SharedPluginTest, IsTakenBackWhileItsEndIsOnTheWay) {
    IMPAVizWindow* leaving = MakeView("WindowMode.tkv");
    IMPAVizWindow* staying = MakeView("WindowMode.tkv");
    MakeView("Probe.tkv");
    std::atomic<bool> isInside{false}, mayGoOn{false};
    const auto watch = WatchProbe([&](const ProbeFrame&) {
        isInside = true;
        EXPECT_TRUE(WaitUntil([&] { return mayGoOn.load(); }));
    });
    ActDuringFrame(isInside, [&] {
        log_.Take();
        Select(leaving, "Oscilloscope.tkv");
        Select(staying, "WindowMode.tkv");
        mayGoOn = true;
    });
    host_->Advance(200);
    Calls calls = log_.Take();
    std::erase(calls, "Draw");
    EXPECT_EQ(InOrder(calls), (Calls{"SetWindow 0", "Close", "End", "Initialize", "GetInfo", "GetCapabilities",
                                     "SetPreferences", "SetActive 1", "SetWindow", "DrawToWindow"}));
    EXPECT_EQ(Count(calls, "Close"), 1);
    EXPECT_EQ(Count(calls, "Initialize"), 1);
}

TEST_F(SharedPluginTest, GetsNoFrameBeforeItsWindow) {
    IMPAVizWindow* view = MakeView("Good2.tkv");
    log_.Take();
    // In the middle of the change: the new one is there, and the old one is on its way out.
    log_.OnCall = [this](const std::string& call) {
        if (call == "SetActive 0") host_->Advance(100);
    };
    Select(view, "WindowMode.tkv");
    host_->Advance(100);
    log_.OnCall = {};
    Calls calls = InOrder(log_.Take());
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ((Calls{calls.end()[-2], calls.end()[-1]}), (Calls{"SetWindow", "DrawToWindow"}));
}

TEST_F(SharedPluginTest, IsClosedBehindItsFrameUnlessThatHangs) {
    IMPAVizWindow* view = MakeView("WindowMode.tkv");
    std::atomic<bool> hasBegun{false}, isPainting{false}, isOverlapped{false}, hasLeft{false};
    std::chrono::milliseconds longest{100};
    const auto leave = [&] {
        hasBegun = hasLeft = false;
        ActDuringFrame(hasBegun, [&] {
            Select(view, "WindowMode.tkv");  // it has that one already
            Select(view, "Oscilloscope.tkv");
            hasLeft = true;
        });
    };
    log_.OnCall = [&](const std::string& call) {
        if (call == "Close" || call == "SetWindow 0") isOverlapped = isOverlapped || isPainting;
        if (call != "DrawToWindow") return;
        isPainting = hasBegun = true;
        const auto end = std::chrono::steady_clock::now() + longest;
        WaitUntil([&] { return hasLeft || std::chrono::steady_clock::now() >= end; });
        isPainting = false;
    };
    leave();
    EXPECT_FALSE(isOverlapped);

    longest = kPatience;
    Select(view, "WindowMode.tkv");
    leave();
    EXPECT_TRUE(isOverlapped) << "nobody waits for a plug-in that hangs";
    log_.OnCall = {};
}

TEST_F(SharedPluginTest, KeepsTheWindowOfTheViewThatStays) {
    IMPAVizWindow* ending = MakeView("WindowMode.tkv");
    MakeView("WindowMode.tkv");
    const auto showsStill = [this] {
        host_->Advance(100);
        const Calls calls = log_.Take();
        const auto given = std::find(calls.rbegin(), calls.rend(), "SetWindow");
        return calls.back() == "DrawToWindow" && given < std::find(calls.rbegin(), calls.rend(), "SetWindow 0");
    };
    log_.Take();
    ending->Hide();
    EXPECT_TRUE(showsStill());
    ending->Show(64, 48);
    EXPECT_TRUE(showsStill());
    EXPECT_EQ(host_->Manager()->DestroyVizWindow(ending), S_OK);
    EXPECT_TRUE(showsStill());
    host_->ForgetViews();
}

}  // namespace
}  // namespace tdkviz::test
