// The file behind the registry: its form, its failures, and several processes on it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tdkplatform.h>
#include <unistd.h>
#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

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

// Each test has a folder of its own, and the variables as they were when it ends.
class RegistryFile : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/registryFileTestXXXXXX";
        folder_ = mkdtemp(name);
        for (const char* variable : {"TDKVIZ_REGISTRY", "XDG_CONFIG_HOME"}) {
            const char* value = std::getenv(variable);
            former_.emplace_back(variable, value != nullptr ? value : "");
        }
        file_ = folder_ / "r.db";
        Use(file_);
    }
    void TearDown() override {
        for (const auto& [variable, value] : former_)
            value.empty() ? unsetenv(variable) : setenv(variable, value.c_str(), 1);
        fs::permissions(folder_, fs::perms::owner_all);
        fs::remove_all(folder_);
    }
    static void Use(const fs::path& file) { setenv("TDKVIZ_REGISTRY", file.c_str(), 1); }

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

    fs::path folder_;
    fs::path file_;

private:
    std::vector<std::pair<const char*, std::string>> former_;
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
        // Enough to fill many pages.
        Output(file_,
               "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200)"
               " INSERT INTO vals SELECT 'HKEY_CURRENT_USER\\K1', 'n' || i, 3, zeroblob(100) FROM n");
        ASSERT_EQ(7, Number("K1", "v"));
        one.damage(file_);
        std::ifstream stream(file_);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        EXPECT_TRUE(SetNumber("New", "v", 3)) << one.name;
        EXPECT_EQ(3, Number("New", "v")) << one.name;
        EXPECT_EQ(-1, Number("K1", "v")) << one.name;
        std::ifstream aside(file_.string() + ".damaged-" + std::to_string(++number));
        EXPECT_EQ(bytes, std::string(std::istreambuf_iterator<char>(aside), {})) << one.name;
    }
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

TEST_F(RegistryFile, AKilledWriterLeavesWholeValues) {
    for (int round = 0; round < 15; ++round) {
        const pid_t child = Fork([] {
            for (DWORD i = 0;; ++i) SetNumber("Busy", ("v" + std::to_string(i % 50)).c_str(), i);
            return 0;
        });
        usleep(static_cast<useconds_t>(2000 + round * 1700));
        kill(child, SIGKILL);
        EXPECT_EQ(-SIGKILL, Await(child));
        EXPECT_TRUE(SetNumber("After", "v", static_cast<DWORD>(round)));
        EXPECT_EQ(round, Number("After", "v"));
    }
    EXPECT_EQ("ok\n", Output(file_, "PRAGMA integrity_check"));
    for (const auto& entry : fs::directory_iterator(folder_))
        EXPECT_EQ(std::string::npos, entry.path().string().find("damaged"));
}

}  // namespace
