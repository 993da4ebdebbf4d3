// Starting, costing nothing at rest, and ending in time, on the machine's own clock.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

ptrdiff_t ThreadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

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

// Lets the machine's clock run while audio is heard.
void Play(TestHost& host, milliseconds duration) {
    const auto end = Clock::now() + duration;
    while (Clock::now() < end) {
        std::this_thread::sleep_for(milliseconds(10));
        host.heard += kRate / 100;
        host.FeedDevice();
        host.ServeMessages();
    }
}

TEST(Lifecycle, ShutdownWithEverythingRunningLeavesNothing) {
    TestHost::InstallPlugins({"Probe.tkv"});
    // A sanitizer makes a thread of its own beside the first.
    std::thread([] {}).join();
    const ptrdiff_t threadsBefore = ThreadCount();
    const NothingLeft nothingLeft;
    {
        TestHost host;
        ASSERT_TRUE(host.MakeView("Probe.tkv", 640, 480));
        ASSERT_TRUE(host.MakeView("Probe.tkv", 320, 240));
        std::atomic<int> frames{0};
        auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
        host.StartDevice(120, 441);
        host.SetState(kEngineStatePlaying);
        Play(host, milliseconds(600));
        EXPECT_GE(frames, 10);
        const auto begin = Clock::now();
        host.Shutdown();
        EXPECT_LT(Clock::now() - begin, milliseconds(3000));
    }
    EXPECT_EQ(ThreadCount(), threadsBefore);
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
    Play(host, milliseconds(300));
    const auto costOfRest = [] {
        const double begin = ProcessorSeconds();
        std::this_thread::sleep_for(milliseconds(2000));
        return (ProcessorSeconds() - begin) / 2.0;
    };
    host.SetState(kEngineStatePaused);
    EXPECT_LT(costOfRest(), 0.002) << "paused";
    host.SetState(kEngineStatePlaying);
    view->Hide();
    EXPECT_LT(costOfRest(), 0.002) << "hidden";
}

TEST(Lifecycle, PluginThatHangsInDrawDoesNotHoldUpTheEnd) {
    TestHost::InstallPlugins({"HangsInDraw.tkv"});
    TestHost host;
    ASSERT_TRUE(host.MakeView("HangsInDraw.tkv", 320, 240));
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    const std::string path = TestHost::PluginPath("HangsInDraw.tkv");
    HMODULE library = LoadLibraryA(path.c_str());
    auto countDraws = SymbolOf<int (*)()>(library, "CountDraws");
    const auto patience = Clock::now() + milliseconds(5000);
    while (countDraws() == 0 && Clock::now() < patience) Play(host, milliseconds(20));
    ASSERT_EQ(countDraws(), 1);
    const auto begin = Clock::now();
    host.Shutdown();
    // One wait for the view's window, one for the timer, one for the worker, each 2000 ms at most.
    EXPECT_LT(Clock::now() - begin, milliseconds(6500));
    FreeLibrary(library);
}

}  // namespace
}  // namespace tdkviz::test
