// Searches, file status, paths, file mappings and libraries, as any system with this interface behaves.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace {

namespace fs = std::filesystem;

class KernelFile : public testing::Test {
protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("kernelFileTest" + std::to_string(GetTickCount()));
        fs::create_directories(folder / "sub");
        for (const char* name : {"b.tkv", "C.TKV", "plain", ".hidden"}) std::ofstream(folder / name) << "12345";
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string Path(const char* tail) const { return folder.string() + tail; }

    fs::path folder;
};

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

TEST_F(KernelFile, SearchByPatternAndByNameWithDotsFirst) {
    for (const char* tail : {"\\*.*", "/*.*", "\\*"}) {
        std::vector<std::string> names = FindAll(Path(tail));
        ASSERT_EQ(names.size(), 7u) << tail;
        EXPECT_EQ(names[0], ".");
        EXPECT_EQ(names[1], "..");
        std::sort(names.begin() + 2, names.end());
        EXPECT_EQ(names, (std::vector<std::string>{".", "..", ".hidden", "C.TKV", "b.tkv", "plain", "sub"})) << tail;
    }
    EXPECT_EQ(FindAll(Path("\\*.tkv")).size(), 2u);
    EXPECT_EQ(FindAll(Path("\\?.tkv")).size(), 2u);
    EXPECT_EQ(FindAll(Path("\\p*n")), (std::vector<std::string>{"plain"}));
    EXPECT_EQ(FindAll(Path("\\b.tkv")), (std::vector<std::string>{"b.tkv"}));
    WIN32_FIND_DATAA data;
    EXPECT_TRUE(FindClose(FindFirstFileA(Path("\\sub").c_str(), &data)));
    EXPECT_TRUE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_TRUE(FindClose(FindFirstFileA(Path("\\plain").c_str(), &data)));
    EXPECT_FALSE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(data.nFileSizeLow, 5u);
    EXPECT_EQ(FindFirstFileA(Path("\\none\\*.*").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileA(Path("\\none").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(KernelMapping, ViewsShareTheBytesAndOutliveTheHandle) {
    const DWORD size = 3 * 65536;
    const HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, nullptr);
    ASSERT_NE(mapping, nullptr);
    auto* whole = static_cast<BYTE*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    auto* part = static_cast<BYTE*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 65536, 100));
    ASSERT_TRUE(whole && part);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_READ, 0, 4096, 0), nullptr) << "offset inside a block";
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, size + 65536), nullptr) << "beyond the end";
    EXPECT_TRUE(CloseHandle(mapping));
    whole[65536 + 99] = 7;
    EXPECT_EQ(part[99], 7);
    EXPECT_TRUE(UnmapViewOfFile(whole) && UnmapViewOfFile(part));
    EXPECT_FALSE(UnmapViewOfFile(part));
    EXPECT_EQ(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, nullptr), nullptr);
}

int addressInThisModule = 0;

TEST(KernelLibrary, ExecutableHasAHandleAndAPath) {
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof(path));
    ASSERT_GT(length, 4u);
    ASSERT_LT(length, sizeof(path));
    EXPECT_TRUE(fs::exists(path));
    char same[MAX_PATH];
    EXPECT_NE(GetModuleHandleA(nullptr), nullptr);
    EXPECT_EQ(GetModuleHandleA(nullptr), GetModuleHandleA(nullptr));
    EXPECT_EQ(GetModuleFileNameA(GetModuleHandleA(nullptr), same, sizeof(same)), length);
    EXPECT_STREQ(same, path);
    EXPECT_EQ(GetModuleFileNameA(nullptr, path, 4), 4u);
    EXPECT_EQ(std::strlen(path), 3u);
    HMODULE module = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    ASSERT_TRUE(GetModuleHandleExA(flags, reinterpret_cast<LPCSTR>(&addressInThisModule), &module));
    EXPECT_EQ(module, GetModuleHandleA(nullptr));
    EXPECT_FALSE(GetModuleHandleExA(flags, reinterpret_cast<LPCSTR>(static_cast<UINT_PTR>(16)), &module));
    EXPECT_EQ(LoadLibraryA("no-such-library-here.dll"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    EXPECT_FALSE(FreeLibrary(nullptr));
}

}  // namespace
