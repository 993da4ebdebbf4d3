#include "src/plugins/DirectoryWatcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <mutex>
#include <thread>

#include "src/plugins/FileStamp.h"
#include "src/plugins/PluginCache.h"
#include "src/plugins/PluginDirChangeReceiver.h"
#include "src/plugins/PluginRetriever.h"
#include "tests/plugins/TestContext.h"
#include "tests/support/Wait.h"

namespace tdkviz {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

using test::WaitUntil;

constexpr milliseconds kQuiet{150};
constexpr milliseconds kStopLimit{2000};

milliseconds TimeOf(const std::function<void()>& action) {
    const auto begin = Clock::now();
    action();
    return std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
}

// Takes what has gone off the list, as a view does.
class Receiver final : public IPluginDirChangeReceiver {
public:
    void OnPluginAdded(CVizPlugin* plugin) override { Note("+", plugin); }
    void OnPluginRemoved(CVizPlugin* plugin) override {
        Note("-", plugin);
        if (PluginList* list = List) list->TakeOut(plugin);
    }
    void OnPluginStillGone(CVizPlugin* plugin) override { Note("still -", plugin); }
    CallLog Calls() const {
        const std::lock_guard hold(mutex_);
        return calls_;
    }

    std::atomic<PluginList*> List{nullptr};
    std::function<void()> OnCall = [] {};

private:
    void Note(const char* sign, CVizPlugin* plugin) {
        {
            const std::lock_guard hold(mutex_);
            calls_.push_back(sign + fs::path(plugin->GetPath()).filename().string());
        }
        OnCall();
    }
    mutable std::mutex mutex_;
    CallLog calls_;
};

class DirectoryWatcherTest : public PluginCacheTest {
protected:
    // What can't be loaded is listed like any other plug-in.
    void Add(const std::string& name) const { folder_.Write("plugins/" + name, "no plug-in"); }
    fs::path At(const std::string& name) const { return folder_.Path() / "plugins" / name; }
    std::unique_ptr<CTKVPluginRetriever> Watch(IPluginDirChangeReceiver* receiver) const {
        return std::make_unique<CTKVPluginRetriever>(receiver, nullptr, At("").parent_path().c_str());
    }

    TemporaryFolder folder_;
};

TEST_F(DirectoryWatcherTest, NumbersDecideWhatIsReported) {
    const struct {
        const char* what;
        std::vector<const char*> before;
        std::function<void()> change;
        CallLog calls;
        size_t count;
    } cases[] = {
        {"two at once, in sorted order",
         {"m.tkv"},
         [&] {
             folder_.Write("set/b.TKV", "");
             folder_.Write("set/C.tkv", "");
             folder_.Write("set/note.txt", "");
             fs::rename(folder_.Path() / "set", At("a"));
         },
         {"+b.TKV", "+C.tkv"},
         3},
        {"one gone of plug-ins alone", {"a.tkv", "b.tkv", "c.tkv"}, [&] { fs::remove(At("b.tkv")); }, {"-b.tkv"}, 2},
        {"one gone beside another file", {"a.tkv", "b.tkv", "t.txt"}, [&] { fs::remove(At("b.tkv")); }, {}, 2},
        {"renamed among plug-ins alone", {"a.tkv"}, [&] { fs::rename(At("a.tkv"), At("b.tkv")); }, {}, 1},
        {"renamed beside other files",
         {"a.tkv", "t.txt", "u.txt"},
         [&] { fs::rename(At("a.tkv"), At("b.tkv")); },
         {"+b.tkv"},
         2},
        {"written where it stands", {"a.tkv"}, [&] { Add("a.tkv"); }, {}, 1},
        {"another file", {"a.tkv"}, [&] { Add("t.txt"); }, {}, 1},
        {"hidden", {"a.tkv"}, [&] { Add(".b.tkv"); }, {}, 1},
    };
    for (const auto& each : cases) {
        fs::remove_all(At(""));
        for (const char* name : each.before) Add(name);
        Receiver receiver;
        const auto retriever = Watch(&receiver);
        receiver.List = retriever->GetList();
        std::this_thread::sleep_for(kQuiet);
        each.change();
        if (!each.calls.empty()) WaitUntil([&] { return receiver.Calls().size() >= each.calls.size(); });
        std::this_thread::sleep_for(kQuiet);
        EXPECT_EQ(receiver.Calls(), each.calls) << each.what;
        EXPECT_EQ(retriever->GetList()->Count(), each.count) << each.what;
    }
}

TEST_F(DirectoryWatcherTest, AnAddedPluginIsLoadedByTheFirstQuestionAlone) {
    Add("t.txt");
    TestContext context;
    Receiver receiver;
    const auto retriever = Watch(&receiver);
    fs::copy_file(TestPluginPath("Good2.tkv"), At("good.tkv"));
    ASSERT_TRUE(WaitUntil([&] { return retriever->GetList()->Count() == 1; }));
    std::this_thread::sleep_for(kQuiet);
    EXPECT_TRUE(context.Take().empty());
    CVizPlugin* plugin = retriever->GetList()->At(0);
    EXPECT_STREQ(plugin->GetChecksum(), "") << "no entry";
    EXPECT_STREQ(plugin->GetName(), "Good two");
    EXPECT_FALSE(plugin->IsLoaded());

    const std::string path = At("good.tkv").string();
    CVizPlugin known(path.c_str());
    RefreshFromCache(known);
    EXPECT_EQ(std::string(known.GetChecksum()).size(), 32u);
    EXPECT_FALSE(known.IsInfoValid());
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
    CVizPlugin changed(path.c_str());
    RefreshFromCache(changed);
    EXPECT_STREQ(changed.GetChecksum(), "") << "the entry is of another file";
}

TEST_F(DirectoryWatcherTest, AFolderMayComeLateAndGoAndComeAgain) {
    Receiver receiver;
    const auto retriever = Watch(&receiver);
    receiver.List = retriever->GetList();
    for (int round = 0; round < 2; ++round) {
        Add("a.tkv");
        EXPECT_TRUE(WaitUntil([&] { return retriever->GetList()->Count() == 1; })) << round;
        fs::remove_all(At(""));
        EXPECT_TRUE(WaitUntil([&] { return retriever->GetList()->Count() == 0; })) << round;
    }
}

TEST_F(DirectoryWatcherTest, AStopIsHonouredInEveryState) {
    Receiver receiver;
    auto missing = Watch(&receiver);
    std::this_thread::sleep_for(kQuiet);
    EXPECT_LT(TimeOf([&] { missing.reset(); }), kStopLimit) << "no folder";
    Add("a.tkv");
    auto waiting = Watch(&receiver);
    std::this_thread::sleep_for(kQuiet);
    EXPECT_LT(TimeOf([&] { waiting.reset(); }), kStopLimit) << "waiting";
    EXPECT_LT(TimeOf([&] { Watch(&receiver); }), kStopLimit) << "at the start";

    receiver.OnCall = [] { std::this_thread::sleep_for(milliseconds(50)); };
    auto reporting = Watch(&receiver);
    for (int i = 0; i < 100; ++i) Add("many" + std::to_string(i) + ".tkv");
    ASSERT_TRUE(WaitUntil([&] { return receiver.Calls().size() >= 2; }));
    EXPECT_LT(TimeOf([&] { reporting.reset(); }), kStopLimit) << "in the middle of a pass";
    const size_t told = receiver.Calls().size();
    Add("late.tkv");
    std::this_thread::sleep_for(kQuiet);
    EXPECT_EQ(receiver.Calls().size(), told) << "no call behind the end";
}

// A list that was made of the files as they are stays as it is, whatever its owner took out of it since.
TEST_F(DirectoryWatcherTest, ItsStartIsNoChange) {
    for (int round = 0; round < 10; ++round) {
        for (const char* name : {"a.tkv", "b.tkv", "c.tkv"}) Add(name);
        Receiver receiver;
        const auto retriever = Watch(&receiver);
        receiver.List = retriever->GetList();
        if (round % 2 == 0) {
            retriever->GetList()->TakeOut(retriever->GetList()->At(1));
            std::this_thread::sleep_for(milliseconds(30));
            EXPECT_EQ(receiver.Calls(), CallLog{});
        } else {
            fs::remove(At("b.tkv"));
            EXPECT_TRUE(WaitUntil([&] { return receiver.Calls() == CallLog{"-b.tkv"}; })) << "gone since the scan";
        }
    }
}

TEST_F(DirectoryWatcherTest, EachRemovalIsToldOnceUntilTheFileReturns) {
    for (const char* name : {"a.tkv", "b.tkv", "c.tkv", "d.tkv"}) Add(name);
    Receiver receiver;
    const auto retriever = Watch(&receiver);
    std::this_thread::sleep_for(kQuiet);
    const struct {
        const char* what;
        std::function<void()> change;
        CallLog calls;
    } steps[] = {
        {"removed", [&] { fs::remove(At("b.tkv")); }, {"-b.tkv"}},
        {"still listed", [&] { fs::remove(At("c.tkv")); }, {"still -b.tkv", "-c.tkv"}},
        {"back", [&] { fs::rename(folder_.Write("b", ""), At("b.tkv")); }, {"still -c.tkv"}},
        {"removed again", [&] { fs::remove(At("b.tkv")); }, {"-b.tkv", "still -c.tkv"}},
    };
    CallLog expected;
    for (const auto& step : steps) {
        step.change();
        expected.insert(expected.end(), step.calls.begin(), step.calls.end());
        EXPECT_TRUE(WaitUntil([&] { return receiver.Calls().size() >= expected.size(); })) << step.what;
        std::this_thread::sleep_for(milliseconds(30));
        EXPECT_EQ(receiver.Calls(), expected) << step.what;
    }
}

// Doesn't answer the watcher before it may.
struct SlowContext final : test::StackObject<IUnknown> {
    IUnknown* Find(const GUID&) override {
        WaitForSingleObject(GoOn.Get(), INFINITE);
        return nullptr;
    }
    const Handle GoOn = Handle::ManualResetEvent();
};

TEST_F(DirectoryWatcherTest, AContextThatIsBeingAskedIsHeld) {
    SlowContext context;
    Receiver receiver;
    Add("t.txt");
    auto retriever = Watch(&receiver);
    HostContext = &context;
    Add("a.tkv");
    EXPECT_TRUE(WaitUntil([&] { return context.References == 1; }));
    EXPECT_LT(TimeOf([&] { retriever.reset(); }), 2 * kStopLimit);
    HostContext = nullptr;
    EXPECT_EQ(context.References, 1u) << "the thread wasn't ended";
    SetEvent(context.GoOn.Get());
    EXPECT_TRUE(WaitUntil([&] { return context.References == 0; }));
    EXPECT_EQ(receiver.Calls(), CallLog{});
}

// The host's own code it leaves alone; what hangs in the add-on or a plug-in it ends.
TEST_F(DirectoryWatcherTest, AThreadThatStaysTooLongTouchesNothingMore) {
    for (const bool inHost : {true, false}) {
        Add("t.txt");
        const Handle goOn = Handle::ManualResetEvent();
        const auto returned = std::make_shared<std::atomic<int>>(-1);
        auto receiver = std::make_unique<Receiver>();
        receiver->OnCall = [&, returned] {
            const HANDLE event = goOn.Get();
            const auto result = returned;
            const auto block = [event] { WaitForSingleObject(event, INFINITE); };
            if (!inHost) block();
            const bool mayGoOn = DirectoryWatcher::CallOut(block);
            *result = mayGoOn ? 1 : 0;
        };
        auto retriever = Watch(receiver.get());
        Add("a.tkv");
        ASSERT_TRUE(WaitUntil([&] { return !receiver->Calls().empty(); }));
        const milliseconds time = TimeOf([&] { retriever.reset(); });
        EXPECT_GE(time, kStopLimit - milliseconds(10));
        EXPECT_LT(time, 2 * kStopLimit);
        if (!inHost) receiver.reset();
        SetEvent(goOn.Get());
        if (inHost) {
            EXPECT_TRUE(WaitUntil([&] { return *returned == 0; }));
        }
        std::this_thread::sleep_for(kQuiet);
        fs::remove_all(At(""));
    }
}

TEST_F(DirectoryWatcherTest, TheFirstOfTwoRetrieversHasTheThread) {
    Add("t.txt");
    Receiver firstReceiver;
    Receiver secondReceiver;
    auto first = Watch(&firstReceiver);
    auto second = Watch(&secondReceiver);
    Add("a.tkv");
    EXPECT_TRUE(WaitUntil([&] { return first->GetList()->Count() == 1; }));
    first.reset();
    Add("b.tkv");
    std::this_thread::sleep_for(kQuiet);
    EXPECT_EQ(firstReceiver.Calls(), CallLog{"+a.tkv"});
    EXPECT_EQ(second->GetList()->Count(), 0u);
    second.reset();
    auto third = Watch(&secondReceiver);
    Add("c.tkv");
    EXPECT_TRUE(WaitUntil([&] { return third->GetList()->Count() == 3; }));
}

}  // namespace
}  // namespace tdkviz
