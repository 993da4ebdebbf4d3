// What the layer's change notifications do beyond the interface that they stand for: whole folders that come and
// go, files that are still being written, the end of the watched folder, and nothing left behind.
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/platform/changeSupport.h"
#include "tests/staged/NothingLeft.h"

namespace {

namespace fs = std::filesystem;

using changetest::AwaitNews;
using changetest::Changed;
using changetest::Watch;
using tdkviz::test::ThreadsOfThisProcess;

TEST(KernelChangeLayer, FoldersBringTheirFilesAndTakeThemAway) {
    const TemporaryFolder base;
    base.Write("elsewhere/full/deep/file", "");
    fs::create_directory(base.Path() / "watched");
    const HANDLE change = Watch(base.Path() / "watched");
    const fs::path inside = base.Path() / "watched" / "full";
    const fs::path outside = base.Path() / "elsewhere" / "full";
    for (int round = 0; round < 2; ++round) {
        fs::rename(outside, inside);
        EXPECT_TRUE(Changed(change)) << "in";
        fs::create_directory_symlink("..", inside / "deep" / "up");
        EXPECT_TRUE(Changed(change)) << "a link is a file here, wherever it leads";
        fs::remove(inside / "deep" / "up");
        EXPECT_TRUE(Changed(change)) << "the folder that came in is followed";
        fs::rename(inside, outside);
        EXPECT_TRUE(Changed(change)) << "out";
        base.Write("elsewhere/full/deep/other", "");
        EXPECT_FALSE(Changed(change)) << "and no more once it is out";
    }
    EXPECT_TRUE(FindCloseChangeNotification(change));
}

TEST(KernelChangeLayer, AFileThatIsBeingCopiedSignalsAgainWhenItIsWhole) {
    const TemporaryFolder base;
    const HANDLE change = Watch(base.Path());
    std::ofstream file(base.File("growing"));
    EXPECT_TRUE(Changed(change));
    file << "first half" << std::flush;
    EXPECT_FALSE(Changed(change));
    file.close();
    EXPECT_TRUE(Changed(change));
    std::ofstream(base.File("growing"), std::ios::app) << "more";
    EXPECT_FALSE(Changed(change)) << "it stood";
    EXPECT_TRUE(FindCloseChangeNotification(change));
}

TEST(KernelChangeLayer, AHardLinkIsNeverWaitedFor) {
    const TemporaryFolder base;
    base.Write("elsewhere/old", "");
    fs::create_directory(base.Path() / "watched");
    const HANDLE change = Watch(base.Path() / "watched");
    fs::create_hard_link(base.Path() / "elsewhere" / "old", base.Path() / "watched" / "old");
    EXPECT_TRUE(Changed(change));
    std::ofstream(base.File("watched/old"), std::ios::app) << "more";
    EXPECT_FALSE(Changed(change)) << "it stood";
    EXPECT_TRUE(FindCloseChangeNotification(change));
}

TEST(KernelChangeLayer, LinkedFoldersAreFollowedWhileALinkIsThere) {
    const TemporaryFolder base;
    const fs::path watched = base.Path() / "watched";
    const fs::path linked = base.Path() / "elsewhere" / "linked";
    base.Write("elsewhere/linked/below/file", "");
    fs::create_directory(watched);
    fs::create_directory_symlink(linked, watched / "early");
    fs::create_directory_symlink(base.Path(), linked / "upwards");
    fs::create_directory_symlink(watched, linked / "round");
    const HANDLE change = Watch(watched);
    const struct {
        const char* what;
        std::function<void()> change;
        bool signals;
    } steps[] = {
        {"behind the link", [&] { base.Write("elsewhere/linked/below/a", ""); }, true},
        {"the link leads no further up", [&] { base.Write("elsewhere/b", ""); }, false},
        {"a second link", [&] { fs::create_directory_symlink(linked / "below", watched / "late"); }, true},
        {"the first goes", [&] { fs::remove(watched / "early"); }, true},
        {"not behind the second", [&] { base.Write("elsewhere/linked/c", ""); }, false},
        {"behind the second", [&] { base.Write("elsewhere/linked/below/d", ""); }, true},
        {"the second goes", [&] { fs::remove(watched / "late"); }, true},
        {"behind none", [&] { base.Write("elsewhere/linked/below/e", ""); }, false},
        {"one more", [&] { fs::create_directory_symlink(linked, watched / "more"); }, true},
        {"behind that", [&] { base.Write("elsewhere/linked/below/f", ""); }, true},
    };
    for (const auto& step : steps) {
        step.change();
        EXPECT_EQ(Changed(change), step.signals) << step.what;
    }
    EXPECT_TRUE(FindCloseChangeNotification(change));
}

TEST(KernelChangeLayer, TheEndOfTheFolderSignalsAndIsTold) {
    const TemporaryFolder base;
    for (const bool moved : {false, true}) {
        const fs::path folder = base.Path() / "watched";
        fs::create_directory(folder);
        const HANDLE change = Watch(folder);
        moved ? fs::rename(folder, base.Path() / "gone") : static_cast<void>(fs::remove(folder));
        AwaitNews();
        EXPECT_EQ(WaitForSingleObject(change, 0), WAIT_OBJECT_0) << moved;
        EXPECT_FALSE(FindNextChangeNotification(change)) << moved;
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        EXPECT_EQ(WaitForSingleObject(change, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(FindCloseChangeNotification(change));
    }
}

auto DescriptorsOfThisProcess() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

TEST(KernelChangeLayer, OneThreadServesAllAndNothingIsLeft) {
    const TemporaryFolder base;
    AwaitNews();
    const tdkviz::test::NothingLeft nothingLeft;
    const auto threads = tdkviz::test::ThreadsAtRest();
    const auto descriptors = DescriptorsOfThisProcess();
    for (int round = 0; round < 4; ++round) {
        const HANDLE first = Watch(base.Path());
        const HANDLE second = Watch(base.Path());
        base.Write("file" + std::to_string(round), "");
        EXPECT_EQ(ThreadsOfThisProcess(), threads + 1);
        EXPECT_TRUE(Changed(first));
        EXPECT_TRUE(round % 2 == 0 ? FindCloseChangeNotification(first) : CloseHandle(first));
        EXPECT_TRUE(Changed(second));
        EXPECT_TRUE(FindCloseChangeNotification(second));
        EXPECT_EQ(ThreadsOfThisProcess(), threads);
    }
    EXPECT_EQ(DescriptorsOfThisProcess(), descriptors);
}

}  // namespace
