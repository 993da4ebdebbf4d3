// Searches, as any system with this interface behaves.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/support/TemporaryFolder.h"

namespace {

std::vector<std::string> FindAll(const std::string& pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    const HANDLE search = FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        names.emplace_back(data.cFileName);
    } while (FindNextFileA(search, &data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(search));
    return names;
}

TEST(KernelFile, SearchByPatternAndByNameWithDotsFirst) {
    const TemporaryFolder folder;
    const std::string base = folder.Path().string();
    std::filesystem::create_directories(folder.Path() / "sub");
    for (const char* name : {"b.tkv", "C.TKV", "plain", ".hidden"}) folder.Write(name, "12345");
    for (const char* tail : {"\\*.*", "/*.*", "\\*"}) {
        std::vector<std::string> names = FindAll(base + tail);
        ASSERT_EQ(names.size(), 7u) << tail;
        EXPECT_EQ(names[0], ".");
        EXPECT_EQ(names[1], "..");
        std::sort(names.begin() + 2, names.end());
        EXPECT_EQ(names, (std::vector<std::string>{".", "..", ".hidden", "C.TKV", "b.tkv", "plain", "sub"})) << tail;
    }
    EXPECT_EQ(FindAll(base + "\\b.tkv"), (std::vector<std::string>{"b.tkv"}));
    WIN32_FIND_DATAA data;
    EXPECT_TRUE(FindClose(FindFirstFileA((base + "\\sub").c_str(), &data)));
    EXPECT_TRUE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_TRUE(FindClose(FindFirstFileA((base + "\\plain").c_str(), &data)));
    EXPECT_FALSE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(data.nFileSizeLow, 5u);
    EXPECT_EQ(FindFirstFileA((base + "\\none\\*.*").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileA((base + "\\none").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

}  // namespace
