// What the tests of change notifications share. Only the published interface.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"

namespace changetest {

inline HANDLE Watch(const std::filesystem::path& folder, bool subtree = true) {
    return FindFirstChangeNotificationA(folder.string().c_str(), subtree ? TRUE : FALSE, FILE_NOTIFY_CHANGE_FILE_NAME);
}

// Comes back when all that happened to files before has reached its notifications: news are told in their order.
inline void AwaitNews() {
    const TemporaryFolder folder;
    const HANDLE change = Watch(folder.Path());
    folder.Write("last", "");
    EXPECT_EQ(WaitForSingleObject(change, tdkviz::test::kPatienceMilliseconds), WAIT_OBJECT_0);
    EXPECT_TRUE(FindCloseChangeNotification(change));
}

// Whether something has changed since the last look. Arms it again: one change may signal several times.
inline bool Changed(HANDLE change) {
    AwaitNews();
    bool any = false;
    while (WaitForSingleObject(change, 0) == WAIT_OBJECT_0) {
        any = true;
        if (!FindNextChangeNotification(change)) break;
    }
    return any;
}

}  // namespace changetest
