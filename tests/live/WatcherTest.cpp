// Plug-in files that come and go beside a running host, on the machine's own clock.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// What the host is told, each time by the watcher's thread.
class ListReceiver final : public StackObject<IMPAListReceiver> {
public:
    IUnknown* Find(const GUID& id) override { return id == kIID_IUnknown ? this : nullptr; }
    HRESULT PluginAppeared(const char* path) override { return Note("+", path); }
    HRESULT PluginVanished(const char* path) override { return Note("-", path); }
    std::vector<std::string> Told() const {
        const std::lock_guard hold(mutex_);
        return told_;
    }
    std::function<void(const char*)> OnNews = [](const char*) {};

private:
    HRESULT Note(const char* sign, const char* path) {
        {
            const std::lock_guard hold(mutex_);
            told_.push_back(sign + fs::path(path).filename().string());
        }
        OnNews(path);
        return S_OK;
    }
    mutable std::mutex mutex_;
    std::vector<std::string> told_;
};

using News = std::vector<std::string>;

class WatcherTest : public testing::Test {
protected:
    void Start(const std::vector<std::string>& plugins) {
        TestHost::InstallPlugins({});
        for (const std::string& plugin : plugins) Add(plugin);
        host_ = std::make_unique<TestHost>();
        host_->Manager()->AddListReceiver(&receiver_);
        uint32_t ignored = 0;
        host_->Manager()->GetPluginIndex("", &ignored);  // has the list made
    }
    static void Add(const std::string& name) {
        fs::copy_file(fs::path(TEST_PLUGIN_DIR) / "Good2.tkv", TestHost::PluginPath(name));
    }
    static void Remove(const std::string& name) { fs::remove(TestHost::PluginPath(name)); }
    uint32_t Count() { return host_->Manager()->GetPluginCount(); }
    bool Soon(const std::function<bool()>& condition) { return host_->PlayUntil(condition); }
    static std::string Shown(IMPAVizWindow* view) {
        char path[MAX_PATH] = {};
        return view->GetCurrentPlugin(path, sizeof path) == S_OK ? fs::path(path).filename().string() : "none";
    }

    ListReceiver receiver_;
    std::unique_ptr<TestHost> host_;
};

TEST_F(WatcherTest, ViewsGoToANeighbourOfWhatIsTakenAway) {
    Start({"a.tkv", "b.tkv", "c.tkv"});
    IMPAVizWindow* first = host_->MakeView("c.tkv", 64, 48);
    IMPAVizWindow* second = host_->MakeView("b.tkv", 64, 48);
    ASSERT_TRUE(first && second);
    host_->StartDevice(120, 441);
    host_->SetState(kEngineStatePlaying);
    const struct { const char *removed, *shown; } steps[] = {{"b.tkv", "a.tkv"}, {"a.tkv", "c.tkv"}, {"c.tkv", "none"}};
    uint32_t count = 3;
    for (const auto& step : steps) {
        Remove(step.removed);
        --count;
        EXPECT_TRUE(Soon([&] { return Count() == count && Shown(first) == step.shown && Shown(second) == step.shown; }))
            << step.removed << ": " << Shown(first) << ", " << Shown(second);
        host_->PlayFor(milliseconds(60));
    }
    Add("d.tkv");
    EXPECT_TRUE(Soon([&] { return Count() == 1 && receiver_.Told().size() == 4; }));
    EXPECT_EQ(receiver_.Told(), (News{"-b.tkv", "-a.tkv", "-c.tkv", "+d.tkv"}));
    EXPECT_EQ(first->SelectPlugin(TestHost::PluginPath("d.tkv").c_str()), S_OK);
    EXPECT_EQ(Shown(first), "d.tkv");
}

TEST_F(WatcherTest, WithoutAViewNothingLeavesTheList) {
    Start({"a.tkv", "b.tkv", "c.tkv"});
    for (const char* name : {"b.tkv", "c.tkv"}) Remove(name);
    const News removals = {"-b.tkv", "-c.tkv"};
    EXPECT_TRUE(Soon([&] { return receiver_.Told() == removals; }));
    EXPECT_EQ(Count(), 3u);
    ASSERT_TRUE(host_->MakeView("a.tkv", 64, 48));
    std::ofstream(TestHost::PluginPath("t.txt")) << "";
    EXPECT_TRUE(Soon([&] { return Count() == 1; })) << "a view that came later takes them off";
    EXPECT_EQ(receiver_.Told(), removals) << "each is told once";
}

// A host that asks at once, while the file is half there, finds nothing to load and hears of it again.
TEST_F(WatcherTest, APluginThatIsStillBeingCopiedGetsAnotherChance) {
    std::atomic<int> refused{0};
    std::atomic<int> named{0};
    receiver_.OnNews = [&](const char* news) {
        uint32_t index = 0;
        char name[64] = {};
        char path[MAX_PATH] = {};
        const bool isNamed = host_->Manager()->GetPluginIndex(news, &index) == S_OK &&
                             host_->Manager()->GetPluginInfo(index, name, path, sizeof path) == S_OK;
        ++(isNamed ? named : refused);
    };
    Start({"a.tkv"});
    Add("c.tkv");
    EXPECT_TRUE(Soon([&] { return named == 1; })) << "the watcher is at its place";
    std::ifstream source(fs::path(TEST_PLUGIN_DIR) / "Good2.tkv", std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(source), {}};
    std::ofstream target(TestHost::PluginPath("b.tkv"), std::ios::binary);
    target << whole.substr(0, whole.size() / 2) << std::flush;
    EXPECT_TRUE(Soon([&] { return refused > 0; }));
    EXPECT_TRUE(Soon([&] { return Count() == 2; })) << "it leaves the list";
    target << whole.substr(whole.size() / 2);
    target.close();
    EXPECT_TRUE(Soon([&] { return named > 1 && Count() == 3; })) << refused << " refused";
    host_->Shutdown();
}

TEST_F(WatcherTest, ABurstOfFilesEndsWithTheListOfTheFolder) {
    const NothingLeft nothingLeft;
    Start({"a.tkv", "n0.tkv", "n1.tkv"});
    ASSERT_TRUE(host_->MakeView("a.tkv", 64, 48));
    ASSERT_TRUE(host_->MakeView("n0.tkv", 64, 48));
    host_->StartDevice(120, 441);
    host_->SetState(kEngineStatePlaying);
    std::mt19937 random(20261123);
    for (int i = 0; i < 1000; ++i) {
        const uint32_t number = static_cast<uint32_t>(random()) % 24;
        const std::string path = TestHost::PluginPath("n" + std::to_string(number) + ".tkv");
        if (fs::exists(path)) {
            fs::remove(path);
        } else if (number % 4 == 0) {
            fs::copy_file(fs::path(TEST_PLUGIN_DIR) / "Good2.tkv", path);
        } else {
            std::ofstream(path) << "no plug-in";
        }
        host_->PlayFor(milliseconds(i % 8 == 0 ? 5 : 0));
    }
    const fs::directory_iterator files(TestHost::PluginPath(""));
    const auto left = static_cast<uint32_t>(std::distance(begin(files), end(files)));
    EXPECT_TRUE(Soon([&] { return Count() == left; })) << Count() << " of " << left;
    EXPECT_GT(receiver_.Told().size(), 100u);
    host_.reset();
}

}  // namespace
}  // namespace tdkviz::test
