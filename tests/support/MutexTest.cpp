#include "src/support/Mutex.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace tdkviz {
namespace {

TEST(KVAMutex, IsRecursiveAndRefusesOtherThreads) {
    KVAMutex* made = nullptr;
    ASSERT_EQ(CreateInstanceMutex(&made), S_OK);
    const std::unique_ptr<KVAMutex> mutex(made);
    const auto tryElsewhere = [&mutex] {
        HRESULT result = S_OK;
        std::thread([&] {
            result = mutex->TryLock();
            if (result == S_OK) mutex->Unlock();
        }).join();
        return result;
    };
    EXPECT_EQ(mutex->Lock(), S_OK);
    EXPECT_EQ(mutex->TryLock(), S_OK);
    EXPECT_EQ(tryElsewhere(), E_FAIL);
    EXPECT_EQ(mutex->Unlock(), S_OK);
    EXPECT_EQ(tryElsewhere(), E_FAIL) << "locked twice, unlocked once";
    mutex->Unlock();
    EXPECT_EQ(tryElsewhere(), S_OK);
}

TEST(MutexLock, TakesNothingFromNull) {
    const MutexLock hold(nullptr);
}

}  // namespace
}  // namespace tdkviz
