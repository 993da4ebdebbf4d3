// Starting, costing nothing at rest, and ending in time, on the machine's own clock.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"
#include "tests/support/Wait.h"

namespace tdkviz::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kThreadLimit{2000};  // of a wait for another thread
// Of what playing costs. While a view is hidden, the host's own deliveries go on and count.
constexpr double kCostOfPause = 0.1, kCostOfHiding = 0.25;

// Is a library of the add-on's or a plug-in still in the process's map of files?
bool AnyLibraryMapped() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.ends_with("/tdkviz.so") || line.ends_with(".tkv")) return true;
    }
    return false;
}

double ProcessorSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

TEST(Lifecycle, ShutdownWithEverythingRunningLeavesNothing) {
    TestHost::InstallPlugins({"Probe.tkv"});
    const ptrdiff_t threadsBefore = ThreadsAtRest();
    const NothingLeft nothingLeft;
    {
        const auto start = Clock::now();
        TestHost host;
        ASSERT_TRUE(host.MakeView("Probe.tkv", 640, 480));
        ASSERT_TRUE(host.MakeView("Probe.tkv", 320, 240));
        std::atomic<int> frames{0};
        auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
        host.StartDevice(120, 441);
        host.SetState(kEngineStatePlaying);
        EXPECT_TRUE(host.PlayUntil([&] { return frames > 0; }));
        const auto begin = Clock::now();
        EXPECT_TRUE(host.PlayUntil([&] { return frames >= 10; }));
        const auto end = Clock::now();
        host.Shutdown();
        // No thread ran into its time limit, however slow the machine is.
        EXPECT_LT(Clock::now() - end, kThreadLimit + (begin - start));
    }
    EXPECT_EQ(ThreadsOfThisProcess(), threadsBefore);
    EXPECT_FALSE(AnyLibraryMapped());
}

TEST(Lifecycle, PausedAndHiddenViewsCostNothing) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer costs something by itself";
#endif
    TestHost::InstallPlugins({"Probe.tkv"});
    TestHost host;
    IMPAVizWindow* view = host.MakeView("Probe.tkv", 640, 480);
    ASSERT_TRUE(view);
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    std::atomic<int> frames{0};
    const auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
    const auto costOfASecond = [] {
        const double begin = ProcessorSeconds();
        std::this_thread::sleep_for(milliseconds(1000));
        return ProcessorSeconds() - begin;
    };
    ASSERT_TRUE(host.PlayUntil([&] { return frames >= 5; }));
    const double playing = costOfASecond();
    host.SetState(kEngineStatePaused);
    EXPECT_LT(costOfASecond(), kCostOfPause * playing) << "paused";
    host.SetState(kEngineStatePlaying);
    view->Hide();
    EXPECT_LT(costOfASecond(), kCostOfHiding * playing) << "hidden";
}

TEST(Lifecycle, PluginThatHangsInDrawDoesNotHoldUpTheEnd) {
    TestHost::InstallPlugins({"HangsInDraw.tkv"});
    const auto start = Clock::now();
    TestHost host;
    ASSERT_TRUE(host.MakeView("HangsInDraw.tkv", 320, 240));
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    const std::string path = TestHost::PluginPath("HangsInDraw.tkv");
    HMODULE library = LoadLibraryA(path.c_str());
    auto countDraws = SymbolOf<int (*)()>(library, "CountDraws");
    ASSERT_TRUE(host.PlayUntil([&] { return countDraws() > 0; }));
    EXPECT_EQ(countDraws(), 1);
    const auto begin = Clock::now();
    host.Shutdown();
    // One wait for the view's window, one for the timer, one for the worker.
    EXPECT_LT(Clock::now() - begin, 3 * kThreadLimit + milliseconds(500) + (begin - start));
    FreeLibrary(library);
}

}  // namespace
}  // namespace tdkviz::test
