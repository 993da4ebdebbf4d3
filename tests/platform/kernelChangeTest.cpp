// Change notifications, as any system with this interface behaves.
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/platform/changeSupport.h"

namespace {

namespace fs = std::filesystem;

using changetest::AwaitNews;
using changetest::Changed;
using changetest::Watch;

class KernelChange : public testing::Test {
protected:
    KernelChange() {
        fs::create_directories(folder / "sub");
        fs::create_directories(base / "elsewhere" / "empty");
        for (const char* file : {"watched/old", "watched/sub/old", "elsewhere/file"}) Write(base / file);
    }

    static void Write(const fs::path& path) { std::ofstream(path) << "12345"; }

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
    const HANDLE flat = Watch(folder, false);
    const HANDLE deep = Watch(folder);
    ASSERT_NE(flat, INVALID_HANDLE_VALUE);
    ASSERT_NE(deep, INVALID_HANDLE_VALUE);
    for (const auto& each : cases) {
        each.change();
        EXPECT_EQ(Changed(deep), each.inSubtree) << each.what;
        EXPECT_EQ(Changed(flat), each.inFolder) << each.what;
    }
    EXPECT_TRUE(FindCloseChangeNotification(flat));
    EXPECT_TRUE(FindCloseChangeNotification(deep));
}

TEST_F(KernelChange, StaysSignalledUntilNextAndKeepsWhatCameBefore) {
    const HANDLE stop = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    const HANDLE pair[] = {stop, Watch(folder)};
    ASSERT_NE(pair[1], INVALID_HANDLE_VALUE);
    const auto wait = [&pair] { return WaitForMultipleObjects(2, pair, FALSE, 0); };
    EXPECT_EQ(wait(), DWORD{WAIT_TIMEOUT});
    fs::remove(folder / "old");
    AwaitNews();
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1) << "a wait takes nothing";
    EXPECT_TRUE(FindNextChangeNotification(pair[1]));
    EXPECT_EQ(wait(), DWORD{WAIT_TIMEOUT});

    fs::rename(base / "elsewhere" / "file", folder / "first");
    AwaitNews();
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1);
    fs::remove(folder / "sub" / "old");
    AwaitNews();
    EXPECT_TRUE(FindNextChangeNotification(pair[1]));
    EXPECT_EQ(wait(), WAIT_OBJECT_0 + 1) << "it came before the handle was armed";
    SetEvent(stop);
    EXPECT_EQ(wait(), WAIT_OBJECT_0);
    EXPECT_TRUE(FindCloseChangeNotification(pair[1]));
    EXPECT_FALSE(FindNextChangeNotification(pair[1]));
    EXPECT_EQ(WaitForSingleObject(pair[1], 0), WAIT_FAILED);
    CloseHandle(stop);
}

}  // namespace
