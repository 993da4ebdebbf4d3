// What the layer adds to the interface it stands for: the stepped clock, libraries under their native names,
// and nothing left behind.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>

#include "platform/include/tdkplatform.h"
#include "tests/staged/NothingLeft.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"

namespace {

using Entries = std::vector<std::pair<DWORD, int>>;  // time and who

struct Sleeper {
    Entries* Journal;
    std::mutex* Guard;
    int Name;
    DWORD Period;
    int Turns;
};

DWORD WINAPI SleepInTurns(LPVOID argument) {
    const auto& sleeper = *static_cast<Sleeper*>(argument);
    for (int i = 0; i < sleeper.Turns; ++i) {
        Sleep(sleeper.Period);
        const std::lock_guard hold(*sleeper.Guard);
        sleeper.Journal->emplace_back(GetTickCount(), sleeper.Name);
    }
    return 0;
}

void SleepersFallDueInOrder() {
    Entries journal;
    std::mutex guard;
    Sleeper slow{&journal, &guard, 1, 30, 2};
    Sleeper quick{&journal, &guard, 2, 20, 3};
    const HANDLE threads[] = {CreateThread(nullptr, 0, SleepInTurns, &slow, 0, nullptr),
                              CreateThread(nullptr, 0, SleepInTurns, &quick, 0, nullptr)};
    const DWORD start = GetTickCount();
    TdkpAdvanceClock(19);
    EXPECT_TRUE(journal.empty());
    TdkpAdvanceClock(1);
    EXPECT_EQ(journal.size(), 1u);
    TdkpAdvanceClock(35);
    EXPECT_EQ(GetTickCount() - start, 55u);
    EXPECT_EQ(WaitForMultipleObjects(2, threads, TRUE, 0), WAIT_TIMEOUT);
    TdkpAdvanceClock(1000);
    EXPECT_EQ(WaitForMultipleObjects(2, threads, TRUE, 0), WAIT_OBJECT_0);
    for (auto& entry : journal) entry.first -= start;
    // Both are due at 60; which one began to wait first is told by what came before.
    EXPECT_EQ(journal, (Entries{{20, 2}, {30, 1}, {40, 2}, {60, 1}, {60, 2}}));
}

TEST(SteppedClock, WaitsFallDueInOrderAndOnlyIfItWasAskedForFirst) {
    // The clock is chosen once in a process.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            EXPECT_TRUE(TdkpUseSteppedClock());
            SleepersFallDueInOrder();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
    GetTickCount();
    EXPECT_FALSE(TdkpUseSteppedClock());
}

TEST(LayerLibrary, LoadsByWindowsNamesAndKeepsToTheModulesOwnExports) {
    // The system's mathematics library, under every spelling that is taken.
    const HMODULE library = LoadLibraryA("libm.so.6");
    ASSERT_NE(library, nullptr);
    char path[MAX_PATH];
    ASSERT_GT(GetModuleFileNameA(library, path, sizeof(path)), 0u);
    using Function = double (*)(double);
    const auto cosine = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, "cos")));
    ASSERT_NE(cosine, nullptr);
    EXPECT_EQ(cosine(0.0), 1.0);
    EXPECT_EQ(GetProcAddress(library, "malloc"), nullptr) << "an export of what it depends on";
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    std::string windowsPath(path);
    std::replace(windowsPath.begin(), windowsPath.end(), '/', '\\');
    EXPECT_EQ(LoadLibraryA(windowsPath.c_str()), library);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(FreeLibrary(library));
}

TEST(LayerLibrary, TheProgramCountsAsBeingWhereItIsSaidToBe) {
    const auto programPath = [](HMODULE program) {
        char path[MAX_PATH];
        return std::string(path, GetModuleFileNameA(program, path, sizeof(path)));
    };
    const std::string own = programPath(nullptr);
    const std::filesystem::path beside = std::filesystem::path(own).parent_path() / "beside.so";
    std::filesystem::copy_file(TestLibrary("NoExport.tkv"), beside, std::filesystem::copy_options::overwrite_existing);
    TdkpUseProgramPath("/elsewhere/program");
    EXPECT_EQ(programPath(nullptr), "/elsewhere/program");
    EXPECT_EQ(programPath(GetModuleHandleA(nullptr)), "/elsewhere/program");
    const HMODULE library = LoadLibraryA("beside");
    EXPECT_TRUE(FreeLibrary(library)) << "it lies beside the file itself";
    std::filesystem::remove(beside);
    TdkpUseProgramPath(nullptr);
    EXPECT_EQ(programPath(nullptr), own);
}

DWORD WINAPI ReturnAtOnce(LPVOID) {
    return 0;
}
DWORD WINAPI LoopForever(LPVOID) {
    static std::atomic<unsigned> turns{0};
    for (;;) turns.fetch_add(1, std::memory_order_relaxed);
}

DWORD WINAPI AllocateForever(LPVOID event) {
    for (size_t turn = 0;; ++turn) {
        std::vector<std::string> texts(20, std::string(turn * 37 % 5000 + 1, 'x'));
        SetEvent(event);
    }
}

// The heap's lock would stay with the thread that held it, and the next allocation never come back.
TEST(LayerThreads, TerminationKeepsClearOfTheHeap) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's heap has locks of its own, which a thread holds nearly all of the time";
#endif
    const HANDLE running = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    for (int round = 0; round < 20; ++round) {
        const HANDLE thread = CreateThread(nullptr, 0, AllocateForever, running, 0, nullptr);
        EXPECT_EQ(WaitForSingleObject(running, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(TerminateThread(thread, 0));
        CloseHandle(thread);
        std::vector<std::string> texts;
        for (size_t size = 1; size < 100; ++size) texts.emplace_back(size * 50, 'y');
    }
    CloseHandle(running);
}

TEST(LayerCounts, NothingIsLeftOfThreadsAndHandles) {
    const tdkviz::test::NothingLeft nothingLeft;
    const auto threadsBefore = tdkviz::test::ThreadsAtRest();
    for (int round = 0; round < 20; ++round) {
        for (const bool terminate : {false, true}) {
            const HANDLE thread = CreateThread(nullptr, 0, terminate ? LoopForever : ReturnAtOnce, nullptr, 0, nullptr);
            EXPECT_TRUE(!terminate || TerminateThread(thread, 0));
            EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
            EXPECT_EQ(tdkviz::test::ThreadsOfThisProcess(), threadsBefore);
            CloseHandle(thread);
        }
    }
}

}  // namespace
