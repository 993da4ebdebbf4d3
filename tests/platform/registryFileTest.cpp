// The file behind the registry: its form, its failures, and several processes on it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tdkplatform.h>
#include <unistd.h>
#include <windows.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr LSTATUS kSuccess = ERROR_SUCCESS;

std::string Output(const fs::path& file, const char* sql) {
    sqlite3* database = nullptr;
    std::string rows;
    sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
    const auto take = [](void* out, int count, char** values, char**) {
        for (int i = 0; i < count; ++i) {
            *static_cast<std::string*>(out) += values[i] != nullptr ? values[i] : "null";
            *static_cast<std::string*>(out) += i + 1 < count ? "|" : "\n";
        }
        return 0;
    };
    sqlite3_exec(database, sql, take, &rows, nullptr);
    sqlite3_close(database);
    return rows;
}

std::string BytesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool SetNumber(const char* subKey, const char* name, DWORD number) {
    HKEY key = nullptr;
    constexpr REGSAM kAccess = KEY_READ | KEY_WRITE;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, subKey, 0, nullptr, 0, kAccess, nullptr, &key, nullptr) != kSuccess)
        return false;
    const bool done =
        RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number)) == kSuccess;
    RegCloseKey(key);
    return done;
}

// -1 if there is none.
int64_t Number(const char* subKey, const char* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, subKey, 0, KEY_READ, &key) != kSuccess) return -1;
    DWORD number = 0, size = sizeof(number);
    const LSTATUS result = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size);
    RegCloseKey(key);
    return result == kSuccess ? int64_t{number} : -1;
}

// Each test has a folder of its own.
class RegistryFile : public testing::Test {
protected:
    RegistryFile() { Use(file_); }
    ~RegistryFile() override {
        unsetenv("XDG_CONFIG_HOME");
        fs::permissions(folder_, fs::perms::owner_all);
    }
    static void Use(const fs::path& file) { setenv("TDKVIZ_REGISTRY", file.c_str(), 1); }

    // Gives the key K1 so many values of a hundred bytes.
    void FillPages(int values) const {
        const std::string rows =
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(values) + ")";
        Output(file_,
               (rows + " INSERT INTO vals SELECT 'HKEY_CURRENT_USER\\K1', 'n' || i, 3, zeroblob(100) FROM n").c_str());
    }

    // Runs in a process of its own; its answer is the exit code.
    static pid_t Fork(const std::function<int()>& work) {
        const pid_t child = fork();
        if (child == 0) _exit(work());
        return child;
    }
    static int Await(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    const TemporaryFolder temporary_;
    const fs::path folder_ = temporary_.Path(), file_ = folder_ / "r.db";
};

TEST_F(RegistryFile, HasThePublishedFormAndIsLetGoWithTheLastKey) {
    const auto openFiles = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto filesBefore = openFiles();
    ASSERT_TRUE(SetNumber("Software\\Corvane\\Visualizations", "X", 0x01020304));
    EXPECT_EQ(filesBefore, openFiles());
    EXPECT_EQ("1\n", Output(file_, "PRAGMA user_version"));
    EXPECT_EQ("delete\n", Output(file_, "PRAGMA journal_mode"));
    EXPECT_EQ(
        "HKEY_CURRENT_USER\nHKEY_CURRENT_USER\\Software\nHKEY_CURRENT_USER\\Software\\Corvane\n"
        "HKEY_CURRENT_USER\\Software\\Corvane\\Visualizations\n",
        Output(file_, "SELECT path FROM keys ORDER BY path"));
    EXPECT_EQ("X|4|04030201|blob\n", Output(file_, "SELECT name, type, hex(data), typeof(data) FROM vals"));
    EXPECT_EQ("1\n", Output(file_, "SELECT count(*) FROM keys WHERE path = 'hkey_current_user\\SOFTWARE'"));
    // What somebody else writes is read.
    Output(file_, "UPDATE vals SET data = x'05000000'");
    EXPECT_EQ(5, Number("Software\\Corvane\\Visualizations", "X"));
}

TEST_F(RegistryFile, LiesWhereTheVariablesSay) {
    unsetenv("TDKVIZ_REGISTRY");
    setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    ASSERT_TRUE(SetNumber("K", "v", 1));
    EXPECT_TRUE(fs::exists(folder_ / "config/corvane/registry.db"));
    Use(folder_ / "deep/er/other %3f?.db");
    EXPECT_EQ(-1, Number("K", "v"));
    ASSERT_TRUE(SetNumber("K", "v", 2));
    EXPECT_TRUE(fs::exists(folder_ / "deep/er/other %3f?.db"));
}

TEST_F(RegistryFile, ADamagedOneIsSetAsideAndANewOneBegun) {
    struct Case {
        const char* name;
        std::function<void(const fs::path&)> damage;
    };
    const Case cases[] = {
        {"no database", [](const fs::path& file) { std::ofstream(file) << std::string(5000, 'x'); }},
        {"a few bytes", [](const fs::path& file) { std::ofstream(file) << "hello"; }},
        {"cut short", [](const fs::path& file) { fs::resize_file(file, fs::file_size(file) / 2); }},
        {"broken pages",
         [](const fs::path& file) {
             std::fstream stream(file, std::ios::in | std::ios::out);
             stream.seekp(4096);
             stream << std::string(static_cast<size_t>(fs::file_size(file)) - 4096, '\x5A');
         }},
    };
    int number = 0;
    for (const Case& one : cases) {
        SetNumber("K1", "v", 7);
        FillPages(200);
        ASSERT_EQ(7, Number("K1", "v"));
        one.damage(file_);
        const std::string bytes = BytesOf(file_);
        EXPECT_TRUE(SetNumber("New", "v", 3)) << one.name;
        EXPECT_EQ(3, Number("New", "v")) << one.name;
        EXPECT_EQ(-1, Number("K1", "v")) << one.name;
        EXPECT_EQ(bytes, BytesOf(file_.string() + ".damaged-" + std::to_string(++number))) << one.name;
    }
}

// One byte at a time, in the header and in the head of every page: damage that SQLite finds when it opens the
// file, when it reads, or not before it writes.
TEST_F(RegistryFile, AnyDamagedByteLeavesARegistryThatTakesValues) {
    constexpr size_t kPageSize = 4096, kHeaderSize = 100, kPageHeadSize = 8;
    for (DWORD i = 0; i < 8; ++i) SetNumber(("K" + std::to_string(i)).c_str(), "v", i);
    FillPages(100);
    const std::string whole = BytesOf(file_);
    ASSERT_GT(whole.size(), 3 * kPageSize);
    const TemporaryFolder memory(FolderInMemory());
    const fs::path file = memory.Path() / "d" / "r.db";
    std::vector<size_t> places;
    for (size_t place = 0; place < kHeaderSize; ++place) places.push_back(place);
    for (size_t page = 0; page < whole.size(); page += kPageSize) {
        const size_t head = page == 0 ? kHeaderSize : page;
        for (size_t place = head; place < head + kPageHeadSize; ++place) places.push_back(place);
    }
    for (const size_t place : places) {
        for (const char flip : {'\x03', '\xFF'}) {
            SCOPED_TRACE(std::to_string(place) + (flip == '\x03' ? " two bits" : " all bits"));
            std::string damaged = whole;
            damaged[place] = static_cast<char>(damaged[place] ^ flip);
            fs::remove_all(file.parent_path());
            fs::create_directories(file.parent_path());
            std::ofstream(file, std::ios::binary) << damaged;
            Use(file);
            const int64_t known = Number("K5", "v");
            EXPECT_TRUE(SetNumber("New", "v", 3));
            // A value that was written before the damage was met went aside with the file.
            EXPECT_TRUE(Number("New", "v") == 3 || SetNumber("New", "v", 3));
            EXPECT_EQ(3, Number("New", "v"));
            const fs::path aside = file.string() + ".damaged-1";
            if (fs::exists(aside)) {
                EXPECT_TRUE(known != -1 || BytesOf(aside) == damaged);
            } else if (place < kHeaderSize) {
                EXPECT_EQ(5, known);
                EXPECT_EQ(5, Number("K5", "v"));
            }
        }
    }
}

TEST_F(RegistryFile, AFullDiskLosesNoOldValueAndTakesNewOnesWhenThereIsRoom) {
    const fs::path disk = folder_ / "disk";
    fs::create_directory(disk);
    Use(disk / "r.db");
    const int result = Await(Fork([&] {
        constexpr rlim_t kRoom = 96 * 1024;
        // A small disk of this process's own, or what is as good as one.
        const bool mounted = unshare(CLONE_NEWNS) == 0 &&
                             mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             mount("none", disk.c_str(), "tmpfs", 0, ("size=" + std::to_string(kRoom)).c_str()) == 0;
        if (!mounted) {
            signal(SIGXFSZ, SIG_IGN);
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = kRoom / 2;
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        constexpr DWORD kMost = 3000;
        DWORD written = 0;
        while (written < kMost && SetNumber("Full", std::to_string(written).c_str(), written)) ++written;
        int faults = 0;
        faults += written < 50 || written == kMost;
        for (int again = 0; again < 3; ++again) faults += SetNumber("Full", std::to_string(written).c_str(), written);
        for (DWORD i = 0; i < written; ++i) faults += Number("Full", std::to_string(i).c_str()) != int64_t{i};
        faults += Number("Full", std::to_string(written).c_str()) != -1;
        faults += Output(disk / "r.db", "PRAGMA integrity_check") != "ok\n";
        if (mounted) {
            mount("none", disk.c_str(), "tmpfs", MS_REMOUNT, ("size=" + std::to_string(4 * kRoom)).c_str());
        } else {
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = limit.rlim_max;
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        faults += !SetNumber("Full", "after", 1);
        faults += Number("Full", "after") != 1;
        return std::min(faults, 99);
    }));
    EXPECT_EQ(0, result);
}

TEST_F(RegistryFile, AFileThatStaysLockedHoldsUpOnlyTheFirstWrite) {
    ASSERT_TRUE(SetNumber("K", "v", 1));
    sqlite3* holder = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(file_.c_str(), &holder));
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(holder, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr));
    const pid_t child = Fork([] {
        const auto timeOf = [](DWORD from, DWORD to) {
            const auto begin = std::chrono::steady_clock::now();
            for (DWORD i = from; i < to; ++i) {
                if (SetNumber("K", ("n" + std::to_string(i)).c_str(), i)) _exit(1);
            }
            return std::chrono::steady_clock::now() - begin;
        };
        const auto first = timeOf(0, 1), others = timeOf(1, 19);
        return Number("K", "v") != 1 ? 1 : others < first ? 0 : 2;
    });
    EXPECT_EQ(0, Await(child));
    sqlite3_close(holder);
    EXPECT_TRUE(SetNumber("K", "v", 2));
}

TEST_F(RegistryFile, AnOpenKeyGoesOnInTheFileThatTookTheOthersPlace) {
    SetNumber("K", "v", 1);
    HKEY key = nullptr;
    ASSERT_EQ(kSuccess,
              RegCreateKeyExA(HKEY_CURRENT_USER, "K", 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key, nullptr));
    const DWORD two = 2, three = 3;
    const auto set = [&](const DWORD& number) {
        return RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
    };
    EXPECT_EQ(kSuccess, set(two));
    fs::copy_file(file_, folder_ / "copy.db");
    fs::rename(folder_ / "copy.db", file_);
    EXPECT_EQ(kSuccess, set(three));
    RegCloseKey(key);
    EXPECT_EQ("03000000\n", Output(file_, "SELECT hex(data) FROM vals"));
}

TEST_F(RegistryFile, ReadsOnWhereItCantBeWritten) {
    ASSERT_TRUE(SetNumber("Known", "v", 5));
    fs::permissions(file_, static_cast<fs::perms>(0444));
    for (const bool writerWasKilled : {false, true}) {
        fs::permissions(folder_, fs::perms::owner_all);
        if (writerWasKilled) std::ofstream(file_.string() + "-journal") << "not a journal that can be played back";
        fs::permissions(folder_, static_cast<fs::perms>(0555));
        const int result = Await(Fork([] {
            // Root may write anywhere.
            constexpr uid_t kNobody = 65534;
            if (geteuid() == 0 && seteuid(kNobody) != 0) return 100;
            int faults = 0;
            faults += Number("Known", "v") != 5;
            faults += SetNumber("Known", "v", 6);
            faults += !SetNumber("Known", "v", 5);  // what stands already needs no write
            faults += SetNumber("Unknown", "v", 6);
            faults += Number("Known", "v") != 5;
            return faults;
        }));
        EXPECT_EQ(0, result) << writerWasKilled;
    }
}

TEST_F(RegistryFile, DeletingATreeTakesNoNeighbour) {
    for (const char* subKey : {"Base\\tree\\leaf\\x", "Base\\tree2", "Base\\tree]"}) SetNumber(subKey, "v", 2);
    HKEY gone = nullptr;
    ASSERT_EQ(kSuccess, RegOpenKeyExA(HKEY_CURRENT_USER, "Base\\tree", 0, KEY_READ | KEY_WRITE, &gone));
    EXPECT_EQ(kSuccess, RegDeleteTreeA(HKEY_CURRENT_USER, "Base\\TREE"));
    EXPECT_EQ(-1, Number("Base\\tree\\leaf\\x", "v"));
    for (const char* subKey : {"Base\\tree2", "Base\\tree]"}) EXPECT_EQ(2, Number(subKey, "v")) << subKey;
    const DWORD one = 1;
    EXPECT_NE(kSuccess, RegSetValueExA(gone, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&one), sizeof(one)));
    RegCloseKey(gone);
    EXPECT_EQ(-1, Number("Base\\tree", "v"));
}

TEST_F(RegistryFile, ThreadsKeepEachOthersValues) {
    const char* const names[] = {"0", "1", "2", "3"};
    std::vector<std::thread> threads;
    for (const char* name : names)
        threads.emplace_back([name] {
            for (DWORD i = 0; i < 20; ++i) SetNumber("shared", name, i);
        });
    for (std::thread& thread : threads) thread.join();
    for (const char* name : names) EXPECT_EQ(19, Number("shared", name)) << name;
}

TEST_F(RegistryFile, ProcessesWaitForEachOther) {
    constexpr int kProcesses = 3;
    constexpr DWORD kWrites = 30;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(Fork([process] {
            int faults = 0;
            for (DWORD i = 0; i < kWrites; ++i)
                faults += !SetNumber("Shared", (std::to_string(process) + "." + std::to_string(i)).c_str(), i);
            return faults;
        }));
    }
    for (const pid_t child : children) EXPECT_EQ(0, Await(child));
    for (int process = 0; process < kProcesses; ++process) {
        for (DWORD i = 0; i < kWrites; ++i)
            EXPECT_EQ(int64_t{i}, Number("Shared", (std::to_string(process) + "." + std::to_string(i)).c_str()));
    }
}

}  // namespace
