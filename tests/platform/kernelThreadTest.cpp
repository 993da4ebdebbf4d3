// Threads, their ends, and the locks between them, as any system with this interface behaves.
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/support/Wait.h"

namespace {

constexpr DWORD kLong = tdkviz::test::kPatienceMilliseconds;

std::atomic<bool> entered{false};

struct SetsFlagWhenGone {
    ~SetsFlagWhenGone() { gone.store(true, std::memory_order_relaxed); }
    static std::atomic<bool> gone;
};
std::atomic<bool> SetsFlagWhenGone::gone{false};

DWORD WINAPI SpinForever(LPVOID) {
    SetsFlagWhenGone onStack;
    entered.store(true);
    static std::atomic<unsigned> turns{0};
    for (;;) turns.fetch_add(1, std::memory_order_relaxed);
}

DWORD WINAPI WaitForever(LPVOID event) {
    entered.store(true);
    return WaitForSingleObject(event, INFINITE);
}

DWORD WINAPI BlockInTheRuntime(LPVOID) {
    entered.store(true);
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

DWORD WINAPI SetForever(LPVOID event) {
    entered.store(true);
    for (;;) {
        SetEvent(event);
        ResetEvent(event);
    }
}

HANDLE Start(LPTHREAD_START_ROUTINE entry, LPVOID argument) {
    entered.store(false);
    const HANDLE thread = CreateThread(nullptr, 0, entry, argument, 0, nullptr);
    while (thread != nullptr && !entered.load()) Sleep(1);
    return thread;
}

TEST(KernelThread, TerminatedWhereverItStands) {
    const HANDLE never = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    const HANDLE busy = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const struct {
        const char* what;
        LPTHREAD_START_ROUTINE entry;
        HANDLE argument;
        int rounds;
    } cases[] = {
        {"a loop", SpinForever, nullptr, 1},
        {"a wait", WaitForever, never, 1},
        {"a call of the runtime", BlockInTheRuntime, nullptr, 1},
        {"in and out of the system, which stays usable every time", SetForever, busy, 21},
    };
    for (const auto& entry : cases) {
        for (int round = 0; round < entry.rounds; ++round) {
            const HANDLE thread = Start(entry.entry, entry.argument);
            ASSERT_NE(thread, nullptr) << entry.what;
            DWORD code = 0;
            EXPECT_TRUE(GetExitCodeThread(thread, &code));
            EXPECT_EQ(code, STILL_ACTIVE) << entry.what;
            EXPECT_TRUE(TerminateThread(thread, static_cast<DWORD>(-1))) << entry.what;
            ASSERT_EQ(WaitForSingleObject(thread, kLong), WAIT_OBJECT_0) << entry.what;
            EXPECT_TRUE(GetExitCodeThread(thread, &code));
            EXPECT_EQ(code, static_cast<DWORD>(-1)) << entry.what;
            EXPECT_TRUE(CloseHandle(thread));
        }
    }
    EXPECT_FALSE(SetsFlagWhenGone::gone.load()) << "the stack was unwound";
    // What it waited for is not consumed by a thread that is no more.
    EXPECT_TRUE(SetEvent(never));
    EXPECT_EQ(WaitForSingleObject(never, 0), WAIT_OBJECT_0);
    CloseHandle(never);
    CloseHandle(busy);
}

}  // namespace
