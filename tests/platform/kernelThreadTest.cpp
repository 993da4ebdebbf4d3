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
    } cases[] = {
        {"a loop", SpinForever, nullptr},
        {"a wait", WaitForever, never},
        {"a call of the runtime", BlockInTheRuntime, nullptr},
        {"in and out of the system", SetForever, busy},
    };
    for (const auto& entry : cases) {
        const HANDLE thread = Start(entry.entry, entry.argument);
        ASSERT_NE(thread, nullptr) << entry.what;
        DWORD code = 0;
        EXPECT_TRUE(GetExitCodeThread(thread, &code));
        EXPECT_EQ(code, STILL_ACTIVE) << entry.what;
        EXPECT_TRUE(TerminateThread(thread, static_cast<DWORD>(-1))) << entry.what;
        EXPECT_EQ(WaitForSingleObject(thread, kLong), WAIT_OBJECT_0) << entry.what;
        EXPECT_TRUE(GetExitCodeThread(thread, &code));
        EXPECT_EQ(code, static_cast<DWORD>(-1)) << entry.what;
        EXPECT_TRUE(CloseHandle(thread));
    }
    EXPECT_FALSE(SetsFlagWhenGone::gone.load()) << "the stack was unwound";
    // What it waited for is not consumed by a thread that is no more.
    EXPECT_TRUE(SetEvent(never));
    EXPECT_EQ(WaitForSingleObject(never, 0), WAIT_OBJECT_0);
    CloseHandle(never);
    CloseHandle(busy);
}

// A thread that is ended in the middle of the system's calls leaves them usable, every time.
TEST(KernelThread, TerminationLeavesTheSystemUsable) {
    const HANDLE busy = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE own = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    for (int round = 0; round < 20; ++round) {
        const HANDLE thread = Start(SetForever, busy);
        EXPECT_TRUE(TerminateThread(thread, 1));
        SetEvent(own);
        ASSERT_EQ(WaitForSingleObject(own, kLong), WAIT_OBJECT_0);
        EXPECT_TRUE(CloseHandle(thread));
    }
    CloseHandle(own);
    CloseHandle(busy);
}

}  // namespace
