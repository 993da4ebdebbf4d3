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
        for (const char* name : {"b.tkv", "C.TKV", "plain", ".hidden"}) {
            std::ofstream(folder / name) << "12345";
        }
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string Path(const char* tail) const { return folder.string() + tail; }

    fs::path folder;
};

std::vector<std::string> FindAll(const std::string& pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    const HANDLE search = FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.emplace_back(data.cFileName);
    } while (FindNextFileA(search, &data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(search));
    return names;
}

TEST_F(KernelFile, SearchGivesDotsFirstAndThenEveryName) {
    for (const char* tail : {"\\*.*", "/*.*", "\\*"}) {
        std::vector<std::string> names = FindAll(Path(tail));
        ASSERT_EQ(names.size(), 7u) << tail;
        EXPECT_EQ(names[0], ".");
        EXPECT_EQ(names[1], "..");
        std::sort(names.begin() + 2, names.end());
        EXPECT_EQ(names, (std::vector<std::string>{".", "..", ".hidden", "C.TKV", "b.tkv", "plain", "sub"})) << tail;
    }
}

TEST_F(KernelFile, SearchByPatternAndByName) {
    EXPECT_EQ(FindAll(Path("\\*.tkv")).size(), 2u);
    EXPECT_EQ(FindAll(Path("\\?.tkv")).size(), 2u);
    EXPECT_EQ(FindAll(Path("\\p*n")), (std::vector<std::string>{"plain"}));
    EXPECT_EQ(FindAll(Path("\\b.tkv")), (std::vector<std::string>{"b.tkv"}));
    EXPECT_EQ(FindAll(Path("\\??")).size(), 0u + FindAll(Path("\\..")).size());
}

TEST_F(KernelFile, SearchTellsFoldersSizesAndFailures) {
    WIN32_FIND_DATAA data;
    HANDLE search = FindFirstFileA(Path("\\sub").c_str(), &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_TRUE(FindClose(search));
    search = FindFirstFileA(Path("\\plain").c_str(), &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(data.nFileSizeLow, 5u);
    EXPECT_TRUE(FindClose(search));

    EXPECT_EQ(FindFirstFileA(Path("\\none\\*.*").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileA(Path("\\none").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(KernelFile, StatusRecordIsStableAndTellsChanges) {
    const std::string path = Path("\\plain");
    struct _stat32 before;
    struct _stat32 after;
    std::memset(&before, 0, sizeof(before));
    std::memset(&after, 0, sizeof(after));
    ASSERT_EQ(sizeof(before), 36u);
    ASSERT_EQ(_stat32(path.c_str(), &before), 0);
    EXPECT_EQ(before.st_size, 5);
    {
        std::ifstream reader(folder / "plain");
        std::string text;
        reader >> text;
    }
    ASSERT_EQ(_stat32(path.c_str(), &after), 0);
    EXPECT_EQ(std::memcmp(&before, &after, sizeof(before)), 0);
    fs::last_write_time(folder / "plain", fs::last_write_time(folder / "plain") - std::chrono::hours(5));
    ASSERT_EQ(_stat32(path.c_str(), &after), 0);
    EXPECT_EQ(before.st_mtime - after.st_mtime, 5 * 3600);
    EXPECT_EQ(_stat32(Path("\\none").c_str(), &after), -1);
}

TEST(KernelPath, SplitAndComparison) {
    const struct {
        const char* path;
        const char* parts[4];
    } cases[] = {
        {"C:\\a\\b.c.tkv", {"C:", "\\a\\", "b.c", ".tkv"}},
        {"/usr/lib\\x", {"", "/usr/lib\\", "x", ""}},
        {"name", {"", "", "name", ""}},
        {"/a.b/", {"", "/a.b/", "", ""}},
        {".tkv", {"", "", "", ".tkv"}},
        {"", {"", "", "", ""}},
    };
    for (const auto& entry : cases) {
        char parts[4][_MAX_DIR];
        _splitpath(entry.path, parts[0], parts[1], parts[2], parts[3]);
        for (int i = 0; i < 4; ++i) {
            EXPECT_STREQ(parts[i], entry.parts[i]) << entry.path;
        }
        char name[_MAX_FNAME];
        _splitpath(entry.path, nullptr, nullptr, name, nullptr);
        EXPECT_STREQ(name, entry.parts[2]);
    }
    EXPECT_EQ(_stricmp(".TKV", ".tkv"), 0);
    EXPECT_LT(_stricmp("a", "B"), 0);
    EXPECT_GT(_stricmp("ab", "A"), 0);
    EXPECT_LT(_stricmp("_", "a"), 0);
    EXPECT_EQ(_strnicmp("ABCd", "abcE", 3), 0);
    EXPECT_LT(_strnicmp("ABCd", "abcE", 4), 0);
    char text[] = "ab";
    EXPECT_EQ(CharNextA(text), text + 1);
    EXPECT_EQ(CharNextA(text + 2), text + 2);
}

TEST(KernelMapping, ViewsShareTheBytesAndOutliveTheHandle) {
    const DWORD size = 3 * 65536;
    const HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, nullptr);
    ASSERT_NE(mapping, nullptr);
    auto* whole = static_cast<BYTE*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    auto* part = static_cast<BYTE*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 65536, 100));
    ASSERT_NE(whole, nullptr);
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(whole[size - 1], 0);
    whole[65536 + 99] = 7;
    EXPECT_EQ(part[99], 7);
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_READ, 0, 4096, 0), nullptr) << "offset inside a block";
    EXPECT_EQ(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, size + 65536), nullptr) << "beyond the end";
    EXPECT_TRUE(CloseHandle(mapping));
    whole[65536] = 9;
    EXPECT_EQ(part[0], 9);
    EXPECT_TRUE(UnmapViewOfFile(whole));
    EXPECT_TRUE(UnmapViewOfFile(part));
    EXPECT_FALSE(UnmapViewOfFile(part));
    EXPECT_EQ(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(KernelLibrary, MissingLibraryAndForeignHandlesFail) {
    EXPECT_EQ(LoadLibraryA("no-such-library-here.dll"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    EXPECT_FALSE(FreeLibrary(nullptr));
}

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
}

int addressInThisModule = 0;

TEST(KernelLibrary, ModuleOfAnAddress) {
    HMODULE module = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    ASSERT_TRUE(GetModuleHandleExA(flags, reinterpret_cast<LPCSTR>(&addressInThisModule), &module));
    EXPECT_EQ(module, GetModuleHandleA(nullptr));
    EXPECT_FALSE(GetModuleHandleExA(flags, reinterpret_cast<LPCSTR>(static_cast<UINT_PTR>(16)), &module));
}

TEST(KernelLibrary, ErrorModeIsGivenBack) {
    const UINT before = SetErrorMode(SEM_FAILCRITICALERRORS);
    EXPECT_EQ(SetErrorMode(before), static_cast<UINT>(SEM_FAILCRITICALERRORS));
}

}  // namespace
