#include "src/plugins/PluginRetriever.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "src/plugins/PluginCache.h"
#include "src/support/RegistryKey.h"
#include "tests/plugins/TestContext.h"
#include "tests/support/Wait.h"

namespace tdkviz {
namespace {

class PluginRetrieverTest : public PluginCacheTest {
protected:
    std::string Install(const std::string& plugin, const std::string& as) {
        const std::string path = folder_.Write(as, "");
        std::filesystem::copy_file(TestPluginPath(plugin), path, std::filesystem::copy_options::overwrite_existing);
        return path;
    }
    std::unique_ptr<CTKVPluginRetriever> Retrieve() {
        context_.Take();
        return std::make_unique<CTKVPluginRetriever>(nullptr, nullptr, folder_.Path().c_str());
    }
    // How many plug-ins a new scan loads.
    size_t LoadsOfAScan() {
        Retrieve();
        const CallLog log = context_.Take();
        return static_cast<size_t>(std::count(log.begin(), log.end(), "Initialize"));
    }
    static RegistryKey& CacheOf(const std::string& file, RegistryKey& key) {
        key.Open(HKEY_CURRENT_USER, PluginCacheKey(file.c_str()).GetText());
        return key;
    }

    TestContext context_;
    TemporaryFolder folder_;
};

TEST_F(PluginRetrieverTest, KnownPluginsAreDescribedWithoutBeingLoaded) {
    Install("Good2.tkv", "b.tkv");
    Install("GoodOld.tkv", "sub/Old.TKV");
    Install("WindowMode.tkv", "C.tkv");
    folder_.Write("readme.txt", "");
    {
        const auto first = Retrieve();
        ASSERT_EQ(first->GetList()->Count(), 3u);
        for (CVizPlugin* plugin : first->GetList()->Snapshot()) EXPECT_TRUE(plugin->IsReady()) << plugin->GetPath();
    }
    const auto second = Retrieve();
    const PluginList& list = *second->GetList();
    ASSERT_EQ(list.Count(), 3u);
    EXPECT_EQ(list.At(0)->GetPath(), folder_.File("b.tkv"));
    EXPECT_STREQ(list.At(0)->GetName(), "Good two");
    EXPECT_STREQ(list.At(0)->GetDescription(), "A test plug-in");
    EXPECT_TRUE(list.At(0)->GetSupportsConfigure());
    EXPECT_EQ(list.At(1)->GetRenderMode(), 1u);
    EXPECT_STREQ(list.At(2)->GetName(), "Good old");
    EXPECT_TRUE(context_.Take().empty()) << "no plug-in code runs";
    EXPECT_EQ(list.At(0)->GetEffectMask(), 5u);
    EXPECT_TRUE(list.At(0)->IsReady());
}

TEST_F(PluginRetrieverTest, WhatCountsAsChanged) {
    const std::string path = Install("Good2.tkv", "a.tkv");
    EXPECT_EQ(LoadsOfAScan(), 1u);
    EXPECT_EQ(LoadsOfAScan(), 0u);
    std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) - std::chrono::hours(1));
    EXPECT_EQ(LoadsOfAScan(), 1u);
    EXPECT_EQ(LoadsOfAScan(), 0u);

    RegistryKey key;
    char stamp[34] = "";
    ASSERT_TRUE(CacheOf(path, key).GetString(kCacheChecksum, "", stamp, sizeof stamp));
    std::string lower = stamp;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (lower != stamp) {
        key.SetString(kCacheChecksum, lower.c_str());
        EXPECT_EQ(LoadsOfAScan(), 1u) << "the stamp is upper case";
    }
    RegDeleteTreeA(HKEY_CURRENT_USER, PluginCacheKey(path.c_str()).GetText());
    EXPECT_EQ(LoadsOfAScan(), 1u) << "no entry";
}

TEST_F(PluginRetrieverTest, EntriesWithoutOrWithOddNumbers) {
    const std::string path = Install("Good2.tkv", "a.tkv");
    Retrieve();
    RegistryKey key;
    CacheOf(path, key).SetNumber(kCacheRenderMode, 7);
    key.SetString(kCacheSupportsConfigure, "1");
    key.SetString(kCacheName, std::string(256, 'x').c_str());
    std::string umlauts;
    while (umlauts.size() < 256) umlauts += "\xC3\xBC";
    key.SetString(kCacheDescription, umlauts.c_str());
    const auto retriever = Retrieve();
    CVizPlugin* plugin = retriever->GetList()->At(0);
    EXPECT_EQ(plugin->GetRenderMode(), 0u);
    EXPECT_FALSE(plugin->GetSupportsConfigure());
    EXPECT_STREQ(plugin->GetName(), std::string(256, 'x').c_str());
    EXPECT_EQ(plugin->GetDescription(), umlauts);
}

TEST_F(PluginRetrieverTest, AFailedLoadLeavesAnEntryThatIsTakenNextTime) {
    Install("InitializeFails.tkv", "bad.tkv");
    {
        const auto first = Retrieve();
        ASSERT_EQ(first->GetList()->Count(), 1u);
        EXPECT_FALSE(first->GetList()->At(0)->IsInfoValid());
    }
    EXPECT_EQ(LoadsOfAScan(), 0u);
    const auto second = Retrieve();
    CVizPlugin* plugin = second->GetList()->At(0);
    EXPECT_TRUE(plugin->IsInfoValid());
    EXPECT_STREQ(plugin->GetName(), "");
    EXPECT_FALSE(plugin->MakeReady());
    second->LoadAll();
    EXPECT_EQ(second->GetList()->Count(), 0u);
}

TEST_F(PluginRetrieverTest, FilesOfOneNameShareAnEntry) {
    Install("Good2.tkv", "one/same.tkv");
    Install("GoodOld.tkv", "two/same.tkv");
    EXPECT_EQ(LoadsOfAScan(), 2u);
    EXPECT_EQ(LoadsOfAScan(), 2u);
}

TEST_F(PluginRetrieverTest, UnloadAllClosesAndDoesNotHang) {
    Install("Good2.tkv", "a.tkv");
    Install("Both.tkv", "b.tkv");
    auto retriever = Retrieve();
    PluginList& list = *retriever->GetList();
    CVizPlugin* stuck = list.At(0);
    context_.Take();

    // A thread that was ended in a plug-in never gives its lock back. Here it does, long after.
    std::promise<void> held;
    std::promise<void> end;
    std::thread holder([&] {
        stuck->LockPlugin();
        held.set_value();
        end.get_future().wait_for(test::kPatience);
        stuck->UnlockPlugin();
    });
    held.get_future().wait();
    const auto start = std::chrono::steady_clock::now();
    retriever->UnloadAll();
    EXPECT_EQ(context_.Take(), (CallLog{"Close", "End"})) << "the other one has gone";
    EXPECT_TRUE(stuck->IsLoaded());
    end.set_value();
    holder.join();
    EXPECT_TRUE(stuck->Retire(start)) << "free again";
    EXPECT_FALSE(stuck->IsLoaded());
}

TEST_F(PluginRetrieverTest, TheListKeepsWhatIsTakenOut) {
    PluginList list;
    for (const char* path : {"/a", "/b", "/c"}) list.Append(std::make_unique<CVizPlugin>(path));
    CVizPlugin* const taken = list.At(1);
    EXPECT_TRUE(list.TakeOut(taken));
    EXPECT_FALSE(list.TakeOut(taken));
    EXPECT_STREQ(taken->GetPath(), "/b");
    EXPECT_EQ(list.IndexOf(taken), std::nullopt);
    EXPECT_EQ(list.IndexOf(list.At(1)), 1u);
    EXPECT_STREQ(list.At(1)->GetPath(), "/c");
    EXPECT_EQ(list.At(2), nullptr);
    EXPECT_EQ(list.Snapshot().size(), 2u);
}

}  // namespace
}  // namespace tdkviz
