#include "src/plugins/FolderScan.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

std::vector<std::string> Scan(const TemporaryFolder& folder) {
    std::vector<std::string> files;
    ScanFolder(folder.Path().c_str(), files);
    for (std::string& file : files) file = std::filesystem::path(file).lexically_relative(folder.Path()).string();
    return files;
}

TEST(FolderScan, FindsPlainFilesSortedWithoutCase) {
    const TemporaryFolder folder;
    EXPECT_TRUE(Scan(folder).empty());
    for (const char* name :
         {"C.tkv", "b.tkv", "readme.txt", "sub/deep/a.TKV", ".hidden.tkv", ".git/x.tkv", "no extension"}) {
        folder.Write(name, "");
    }
    EXPECT_EQ(Scan(folder),
              (std::vector<std::string>{"b.tkv", "C.tkv", "no extension", "readme.txt", "sub/deep/a.TKV"}));
    std::vector<std::string> files = {"kept"};
    ScanFolder(folder.File("missing").c_str(), files);
    EXPECT_EQ(files, std::vector<std::string>{"kept"});
}

TEST(FolderScan, GoesDeepAndNeverRoundInCircles) {
    const TemporaryFolder folder;
    std::string deep = "c/";
    for (int i = 0; i < 20; ++i) deep += "d/";
    for (const std::string& name : {std::string("a/f"), std::string("b/g"), deep + "h"}) folder.Write(name, "");
    for (const char* each : {"a", "b", ".."}) {
        std::filesystem::create_directory_symlink(folder.Path() / each,
                                                  folder.Path() / "a" / ("to " + std::string(each)));
        std::filesystem::create_directory_symlink(folder.Path() / each,
                                                  folder.Path() / "b" / ("to " + std::string(each)));
    }
    EXPECT_EQ(Scan(folder), (std::vector<std::string>{"a/f", "a/to b/g", "b/g", "b/to a/f", deep + "h"}));
}

TEST(FolderScan, PluginFiles) {
    for (const char* path : {"/x/a.tkv", "a.TKV", "C:\\x.y\\a.b.Tkv", "/x/.tkv"})
        EXPECT_TRUE(IsPluginFile(path)) << path;
    for (const char* path : {"/x/a.tkv2", "a.txt", "tkv", "/x.tkv/a", "a.tkv/", ""})
        EXPECT_FALSE(IsPluginFile(path)) << path;
}

}  // namespace
}  // namespace tdkviz
