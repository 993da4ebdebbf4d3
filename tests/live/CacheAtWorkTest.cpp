// Starts with many plug-ins: what the cache saves, seen from outside. Each start is a process of its own, a copy
// of this program beside a plug-in folder.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/staged/TestHost.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"

namespace {

std::atomic<int> keysOpened{0};
std::atomic<int> statusCalls{0};

}  // namespace

// The add-on finds these before those of the platform layer.
TDKP_API LSTATUS RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                                 const SECURITY_ATTRIBUTES* security, HKEY* out, DWORD* disposition) {
    static const auto original = reinterpret_cast<decltype(&RegCreateKeyExA)>(dlsym(RTLD_NEXT, "RegCreateKeyExA"));
    ++keysOpened;
    return original(key, subKey, reserved, keyClass, options, access, security, out, disposition);
}

TDKP_API int _stat32(const char* path, struct _stat32* record) {
    using Function = int (*)(const char*, struct _stat32*);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_stat32"));
    ++statusCalls;
    return original(path, record);
}

namespace tdkviz::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRegistryVariable = "CACHE_AT_WORK_REGISTRY";
constexpr const char* kReportVariable = "CACHE_AT_WORK_REPORT";

// What one start says of itself.
struct Report {
    int plugins = 0;      // listed
    int loaded = 0;       // libraries in the process when the list stands
    int keysOpened = 0;   // while the list was made
    int statusCalls = 0;  // the same
    double cost = 0;      // milliseconds of the processor from the add-on's load to the first frame
};

int CountLoadedPlugins() {
    std::ifstream maps("/proc/self/maps");
    std::set<std::string> files;
    for (std::string line; std::getline(maps, line);) {
        if (line.ends_with(".tkv")) files.insert(line.substr(line.find('/')));
    }
    return static_cast<int>(files.size());
}

// The child's part, which the tests below run.
TEST(CacheAtWork, DISABLED_Start) {
    const char* registry = std::getenv(kRegistryVariable);
    ASSERT_TRUE(registry);
    setenv("TDKVIZ_REGISTRY", registry, 1);
    Report report;
    const std::clock_t costBefore = std::clock();
    TestHost host;
    keysOpened = statusCalls = 0;
    uint32_t index = 0;
    ASSERT_EQ(host.Manager()->GetPluginIndex(TestHost::PluginPath("Probe.tkv").c_str(), &index), S_OK);
    report.keysOpened = keysOpened;
    report.statusCalls = statusCalls;
    report.plugins = static_cast<int>(host.Manager()->GetPluginCount());
    report.loaded = CountLoadedPlugins();
    std::atomic<bool> seen{false};
    auto watch = WatchProbe([&](const ProbeFrame&) {
        if (seen) return;
        report.cost = 1000.0 * static_cast<double>(std::clock() - costBefore) / CLOCKS_PER_SEC;
        seen = true;
    });
    ASSERT_TRUE(host.MakeView("Probe.tkv", 320, 240));
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    ASSERT_TRUE(WaitUntil([&] { return seen.load(); },
                          [&] {
                              host.ServeMessages();
                              std::this_thread::sleep_for(std::chrono::microseconds(500));
                          }));
    std::ofstream(std::getenv(kReportVariable)) << report.plugins << ' ' << report.loaded << ' ' << report.keysOpened
                                                << ' ' << report.statusCalls << ' ' << report.cost;
}

// An installed copy in miniature.
class Installation {
public:
    explicit Installation(int plugins) {
        fs::copy_file(fs::canonical("/proc/self/exe"), folder_.File("host"));
        Add("Probe.tkv");
        for (int number = 1; number < plugins; ++number) {
            const char* const places[] = {"", "", "sub/", "sub/deeper/"};
            Add(places[number % std::size(places)] + std::string("p") + std::to_string(number) + ".tkv");
        }
    }
    std::string PluginFile(const std::string& name) const { return folder_.File("Visualizations/" + name); }

    Report Start() const {
        const std::string report = folder_.File("report");
        const std::string output = folder_.File("output");
        fs::remove(report);
        const std::string command =
            "LD_LIBRARY_PATH='" STAGE_DIR "' " + std::string(kRegistryVariable) + "='" + memory_.File("r.db") + "' " +
            kReportVariable + "='" + report + "' '" + folder_.File("host") +
            "' --gtest_also_run_disabled_tests --gtest_filter=CacheAtWork.DISABLED_Start >'" + output + "' 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << std::ifstream(output).rdbuf();
        Report result;
        std::ifstream(report) >> result.plugins >> result.loaded >> result.keysOpened >> result.statusCalls >>
            result.cost;
        return result;
    }

private:
    void Add(const std::string& name) {
        fs::create_directories(fs::path(PluginFile(name)).parent_path());
        fs::copy_file(fs::path(TEST_PLUGIN_DIR) / "Probe.tkv", PluginFile(name));
    }

    TemporaryFolder folder_;
    TemporaryFolder memory_{FolderInMemory()};
};

constexpr int kMany = 200;
constexpr int kFew = 3;

// Started once: that takes some thousand writes.
struct KnownInstallation : Installation {
    explicit KnownInstallation(int plugins) : Installation(plugins), first(Start()) {}
    const Report first;
};
const KnownInstallation& Many() {
    static const KnownInstallation installation(kMany);
    return installation;
}

TEST(CacheAtWork, AKnownPluginCostsOneStatusCallAndOneKeyAndIsNotLoaded) {
    const KnownInstallation& installation = Many();
    EXPECT_EQ(installation.first.plugins, kMany);
    EXPECT_EQ(installation.first.loaded, kMany);
    const auto expectAllKnown = [](const Report& start) {
        EXPECT_EQ(start.plugins, kMany);
        EXPECT_EQ(start.loaded, 0);
        EXPECT_EQ(start.keysOpened, kMany);
        EXPECT_EQ(start.statusCalls, kMany);
    };
    expectAllKnown(installation.Start());
    fs::last_write_time(installation.PluginFile("sub/p6.tkv"),
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(installation.Start().loaded, 1);
    expectAllKnown(installation.Start());
}

// By what they cost the processor, which a busy machine changes little.
TEST(CacheAtWork, ManyKnownPluginsHardlyDelayTheFirstFrame) {
    constexpr size_t kRuns = 7;
    const KnownInstallation few(kFew);
    const KnownInstallation& many = Many();
    std::vector<double> withFew, withMany;
    for (size_t run = 0; run < kRuns; ++run) {
        withFew.push_back(few.Start().cost);
        withMany.push_back(many.Start().cost);
    }
    const auto median = [](std::vector<double>& costs) {
        std::sort(costs.begin(), costs.end());
        return costs[costs.size() / 2];
    };
    EXPECT_LE(median(withMany), 3 * median(withFew));
    RecordProperty("few", std::to_string(median(withFew)));
    RecordProperty("many", std::to_string(median(withMany)));
}

}  // namespace
}  // namespace tdkviz::test
