#include "src/support/PathName.h"

#include <gtest/gtest.h>

#include <string>

namespace tdkviz {
namespace {

TEST(PathName, Directories) {
    const struct {
        const char* path;
        const char* directory;
    } cases[] = {
        {"C:\\a\\file.txt", "C:\\a"},
        {"C:\\file.txt", "C:\\"},
        {"C:\\", "C:\\"},
        {"C:file.txt", "C:"},
        {"C:\\a\\b\\", "C:\\a"},
        {"C:/a\\\\b/file", "C:/a\\\\b"},
        {"\\\\server\\share\\file", "\\\\server\\share"},
        {"\\\\server\\share", "\\\\server\\"},
        {"\\\\server", "\\\\server"},
        {"/usr/bin/player", "/usr/bin"},
        {"/player", "/"},
        {"/", "/"},
        {"folder/file", "folder"},
        {"file", ""},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(PathName(c.path).GetDirectory().ToString().GetText(), c.directory) << c.path;
    EXPECT_TRUE(PathName(nullptr).IsEmpty());
    EXPECT_TRUE(PathName("file").GetDirectory().IsEmpty());
}

TEST(PathName, AppendWritesTheSeparatorOfThePath) {
    const std::string own(1, PathSeparator());
    EXPECT_STREQ(PathName("C:\\a").Append("b").ToString().GetText(), "C:\\a\\b");
    EXPECT_STREQ(PathName("C:\\a\\").Append("b").ToString().GetText(), "C:\\a\\b");
    EXPECT_STREQ(PathName("/a/").Append("b").ToString().GetText(), "/a/b");
    EXPECT_STREQ(PathName("a").Append("b").ToString().GetText(), ("a" + own + "b").c_str());
    EXPECT_STREQ(PathName("").Append("b").ToString().GetText(), "b");
}

TEST(PathName, MoreComponentsThanAreCounted) {
    std::string path;
    for (int i = 0; i < 300; ++i) path += "/a";
    EXPECT_EQ(PathName(path.c_str()).GetDirectory().ToString().GetLength(), 2 * 255);
}

TEST(PathName, FileNames) {
    EXPECT_STREQ(FileNamePart("/a\\b/c.tkv"), "c.tkv");
    EXPECT_STREQ(FileNamePart("C:c.tkv"), "c.tkv");
    EXPECT_STREQ(FileNamePart("/a/"), "");
    EXPECT_STREQ(FileNamePart(""), "");
}

}  // namespace
}  // namespace tdkviz
