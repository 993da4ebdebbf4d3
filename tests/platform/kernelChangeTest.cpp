// Change notifications, as any system with this interface behaves.
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr DWORD kLong = 10000;  // milliseconds; a wait that should end never takes this long
constexpr DWORD kShort = 50;

class KernelChange : public testing::Test {
protected:
    KernelChange() {
        fs::create_directories(folder / "sub");
        fs::create_directories(base / "elsewhere" / "empty");
        for (const char* file : {"watched/old", "watched/sub/old", "elsewhere/file"}) Write(base / file);
    }

    static void Write(const fs::path& path) { std::ofstream(path) << "12345"; }
    HANDLE Watch(bool subtree) const {
        return FindFirstChangeNotificationA(folder.string().c_str(), subtree ? TRUE : FALSE,
                                            FILE_NOTIFY_CHANGE_FILE_NAME);
    }
    // Arms it until nothing more comes: one change may signal several times.
    static void Drain(HANDLE change) {
        while (WaitForSingleObject(change, kShort) == WAIT_OBJECT_0) ASSERT_TRUE(FindNextChangeNotification(change));
    }

    const TemporaryFolder temporary;
    const fs::path base = temporary.Path(), folder = base / "watched";
};

TEST_F(KernelChange, WhatSignalsWithAndWithoutSubfolders) {
    const fs::path away = base / "elsewhere";
    const struct {
        const char* what;
        bool inFolder, inSubtree;
        std::function<void()> change;
    } cases[] = {
        {"a file is made", true, true, [&] { Write(folder / "new"); }},
        {"a file is written where it stands", false, false, [&] { Write(folder / "old"); }},
        {"a file is renamed", true, true, [&] { fs::rename(folder / "new", folder / "newer"); }},
        {"a file is deleted", true, true, [&] { fs::remove(folder / "newer"); }},
        {"a file is moved in", true, true, [&] { fs::rename(away / "file", folder / "file"); }},
        {"a file is moved out", true, true, [&] { fs::rename(folder / "file", away / "file"); }},
        {"a file is made below", false, true, [&] { Write(folder / "sub" / "new"); }},
        {"a file is deleted below", false, true, [&] { fs::remove(folder / "sub" / "new"); }},
        {"an empty folder is made", false, false, [&] { fs::create_directory(folder / "later"); }},
        {"a file is made in it", false, true, [&] { Write(folder / "later" / "file"); }},
        {"folders with a file are made", false, true,
         [&] {
             fs::create_directories(folder / "a" / "b" / "c");
             Write(folder / "a" / "b" / "c" / "file");
         }},
        {"a file is made in a folder that was renamed", false, true,
         [&] {
             fs::rename(folder / "a" / "b", folder / "later" / "b");
             Write(folder / "later" / "b" / "c" / "other");
         }},
        {"an empty folder is moved in", false, false, [&] { fs::rename(away / "empty", folder / "empty"); }},
        {"a file is made in that one", false, true, [&] { Write(folder / "empty" / "file"); }},
    };
    const HANDLE flat = Watch(false);
    const HANDLE deep = Watch(true);
    ASSERT_NE(flat, INVALID_HANDLE_VALUE);
    ASSERT_NE(deep, INVALID_HANDLE_VALUE);
    for (const auto& each : cases) {
        each.change();
        EXPECT_EQ(WaitForSingleObject(deep, each.inSubtree ? kLong : kShort),
                  each.inSubtree ? WAIT_OBJECT_0 : WAIT_TIMEOUT)
            << each.what;
        EXPECT_EQ(WaitForSingleObject(flat, each.inFolder ? kLong : 0), each.inFolder ? WAIT_OBJECT_0 : WAIT_TIMEOUT)
            << each.what;
        Drain(deep);
        Drain(flat);
    }
    EXPECT_TRUE(FindCloseChangeNotification(flat));
    EXPECT_TRUE(FindCloseChangeNotification(deep));
}

TEST_F(KernelChange, StaysSignalledUntilNextAndKeepsWhatCameBefore) {
    const HANDLE stop = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    const HANDLE pair[] = {stop, Watch(true)};
    ASSERT_NE(pair[1], INVALID_HANDLE_VALUE);
    EXPECT_EQ(WaitForMultipleObjects(2, pair, FALSE, kShort), WAIT_TIMEOUT);
    fs::remove(folder / "old");
    EXPECT_EQ(WaitForMultipleObjects(2, pair, FALSE, kLong), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(WaitForMultipleObjects(2, pair, FALSE, 0), WAIT_OBJECT_0 + 1) << "a wait takes nothing";
    EXPECT_TRUE(FindNextChangeNotification(pair[1]));
    EXPECT_EQ(WaitForMultipleObjects(2, pair, FALSE, kShort), WAIT_TIMEOUT);

    Write(folder / "first");
    EXPECT_EQ(WaitForSingleObject(pair[1], kLong), WAIT_OBJECT_0);
    fs::remove(folder / "sub" / "old");
    Sleep(kShort);
    EXPECT_TRUE(FindNextChangeNotification(pair[1]));
    EXPECT_EQ(WaitForSingleObject(pair[1], kLong), WAIT_OBJECT_0) << "it came before the handle was armed";
    SetEvent(stop);
    EXPECT_EQ(WaitForMultipleObjects(2, pair, FALSE, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(FindCloseChangeNotification(pair[1]));
    EXPECT_FALSE(FindNextChangeNotification(pair[1]));
    EXPECT_EQ(WaitForSingleObject(pair[1], 0), WAIT_FAILED);
    CloseHandle(stop);
}

}  // namespace
