// Events and waits, as any system with this interface behaves.
#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/support/Wait.h"

namespace {

constexpr DWORD kLong = tdkviz::test::kPatienceMilliseconds;
constexpr DWORD kShort = 30;

HANDLE MakeEvent(bool manual, bool signalled) {
    return CreateEventA(nullptr, manual ? TRUE : FALSE, signalled ? TRUE : FALSE, nullptr);
}

void CloseAll(const std::vector<HANDLE>& handles) {
    for (HANDLE handle : handles) EXPECT_TRUE(CloseHandle(handle));
}

TEST(KernelWait, LowestIndexWinsAndOnlyThatOneIsConsumed) {
    const std::vector<HANDLE> events{MakeEvent(false, false), MakeEvent(false, true), MakeEvent(false, true)};
    EXPECT_EQ(WaitForMultipleObjects(3, events.data(), FALSE, kLong), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(WaitForMultipleObjects(3, events.data(), FALSE, kLong), WAIT_OBJECT_0 + 2);
    EXPECT_EQ(WaitForMultipleObjects(3, events.data(), FALSE, 0), WAIT_TIMEOUT);
    CloseAll(events);
}

TEST(KernelWait, WaitForAllTakesNothingUntilAllAreSignalled) {
    const std::vector<HANDLE> events{MakeEvent(false, true), MakeEvent(false, false)};
    EXPECT_EQ(WaitForMultipleObjects(2, events.data(), TRUE, kShort), WAIT_TIMEOUT);
    EXPECT_TRUE(SetEvent(events[1]));
    EXPECT_EQ(WaitForMultipleObjects(2, events.data(), TRUE, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForMultipleObjects(2, events.data(), FALSE, 0), WAIT_TIMEOUT);
    CloseAll(events);
}

TEST(KernelWait, TimeOutIsNotEarly) {
    LARGE_INTEGER frequency;
    LARGE_INTEGER before;
    LARGE_INTEGER after;
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
    const HANDLE event = MakeEvent(false, false);
    QueryPerformanceCounter(&before);
    EXPECT_EQ(WaitForSingleObject(event, kShort), WAIT_TIMEOUT);
    QueryPerformanceCounter(&after);
    // The system's timer may be a tick of 16 ms coarse.
    EXPECT_GE((after.QuadPart - before.QuadPart) * 1000, (kShort - 16) * frequency.QuadPart);
    CloseAll({event});
}

// Takes signals of one event and answers each on another.
struct Relay {
    HANDLE Stop;
    HANDLE Work;
    HANDLE Done;
    std::atomic<int> Taken{0};
};

DWORD WINAPI RelayMain(LPVOID argument) {
    auto& relay = *static_cast<Relay*>(argument);
    const HANDLE handles[] = {relay.Stop, relay.Work};
    while (WaitForMultipleObjects(2, handles, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
        relay.Taken.fetch_add(1, std::memory_order_relaxed);
        SetEvent(relay.Done);
    }
    return 0;
}

TEST(KernelWait, EachSignalServesExactlyOneOfManyWaiters) {
    constexpr int kRounds = 3000;
    constexpr int kThreads = 4;
    Relay relay{MakeEvent(true, false), MakeEvent(false, false), MakeEvent(false, false)};
    std::vector<HANDLE> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.push_back(CreateThread(nullptr, 0, RelayMain, &relay, 0, nullptr));
        ASSERT_NE(threads.back(), nullptr);
    }
    for (int i = 0; i < kRounds; ++i) {
        ASSERT_TRUE(SetEvent(relay.Work));
        // Waits that time out while their event is being set lose nothing.
        while (WaitForSingleObject(relay.Done, 1) == WAIT_TIMEOUT) {
        }
    }
    EXPECT_EQ(relay.Taken.load(), kRounds);
    SetEvent(relay.Stop);
    EXPECT_EQ(WaitForMultipleObjects(kThreads, threads.data(), TRUE, kLong), WAIT_OBJECT_0);
    CloseAll(threads);
    CloseAll({relay.Stop, relay.Work, relay.Done});
}

}  // namespace
