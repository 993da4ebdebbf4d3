#include "src/plugins/VizPlugin.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

#include "src/plugins/PluginCache.h"
#include "src/plugins/PreferencesMaker.h"
#include "src/support/RegistryKey.h"
#include "tests/plugins/TestContext.h"
#include "tests/support/TestObjects.h"

namespace tdkviz {
namespace {

struct FakePreferences final : test::StackObject<IKVAPreferences>, PreferencesMaker {
    HRESULT ReadValue(const char*, IKVABuffer**) override { return E_FAIL; }
    HRESULT WriteValue(const char*, IKVABuffer*) override { return S_OK; }
    IKVAPreferences* MakePreferences() override {
        AddRef();
        return this;
    }
};

class VizPluginTest : public PluginCacheTest {
protected:
    std::unique_ptr<CVizPlugin> Make(const char* name) {
        return std::make_unique<CVizPlugin>(TestPluginPath(name).c_str(), &preferences_);
    }
    static std::string Cached(const CVizPlugin& plugin, const char* name) {
        RegistryKey key;
        char text[300] = "";
        key.Open(HKEY_CURRENT_USER, plugin.GetCacheKey());
        return key.GetString(name, "", text, sizeof text) ? text : "nothing";
    }

    TestContext context_;
    FakePreferences preferences_;
};

TEST_F(VizPluginTest, LifeOfAPluginOfTheNewerInterface) {
    const auto plugin = Make("Good2.tkv");
    EXPECT_FALSE(plugin->IsLoaded());
    EXPECT_TRUE(context_.Take().empty());
    ASSERT_TRUE(plugin->Load());
    EXPECT_TRUE(plugin->IsReady());
    EXPECT_EQ(context_.Take(), (CallLog{"Initialize", "GetInfo", "GetCapabilities", "SetPreferences"}));
    EXPECT_EQ(preferences_.References, 0u);
    EXPECT_STREQ(plugin->GetName(), "Good two");
    EXPECT_EQ(plugin->GetEffectMask(), 5u);
    EXPECT_TRUE(plugin->GetWantsSpectrum());
    EXPECT_TRUE(plugin->GetSupportsConfigure());
    EXPECT_EQ(Cached(*plugin, kCacheName), "Good two");
    EXPECT_EQ(Cached(*plugin, kCacheChecksum).size(), 32u);

    MPAVizWindowRecord record = {};
    uint32_t pixel[1];
    plugin->SetActive(true);
    plugin->Draw(pixel, 1, 1, -4, 32, nullptr);
    plugin->OnClick(1, 2, 3);
    plugin->SetWindow(&record);
    EXPECT_EQ(plugin->Configure(nullptr), E_FAIL);
    EXPECT_EQ(plugin->Configure(&record), S_OK);
    plugin->Close();
    plugin->Unload();
    EXPECT_EQ(context_.Take(),
              (CallLog{"SetActive 1", "Draw", "OnClick", "SetWindow 0", "Configure record", "Close", "End"}));
    EXPECT_FALSE(plugin->IsLoaded());
    EXPECT_FALSE(plugin->IsReady());
    EXPECT_TRUE(plugin->IsInfoValid());
    EXPECT_EQ(plugin->Draw(pixel, 1, 1, -4, 32, nullptr), S_OK);
    EXPECT_EQ(plugin->Configure(&record), E_FAIL);
    EXPECT_STREQ(plugin->GetName(), "Good two");
    EXPECT_TRUE(context_.Take().empty());
}

TEST_F(VizPluginTest, OlderAndBothInterfaces) {
    const auto old = Make("GoodOld.tkv");
    MPAVizWindowRecord record = {};
    ASSERT_TRUE(old->Load());
    old->SetActive(true);
    old->DrawToWindow(&record, nullptr);
    old->Configure(&record);
    old->Close();
    EXPECT_EQ(context_.Take(), (CallLog{"Initialize", "GetInfo", "GetCapabilities", "SetHostString", "for GoodOld.tkv",
                                        "Configure window"}));
    EXPECT_TRUE(old->GetSupportsConfigure()) << "7 counts as true";
    EXPECT_EQ(old->GetRenderMode(), 0u) << "2 counts as 0";

    const auto both = Make("Both.tkv");
    ASSERT_TRUE(both->MakeReady());
    EXPECT_EQ(context_.Take().back(), "SetPreferences");
    EXPECT_EQ(both->Configure(&record), E_NOTIMPL);
    EXPECT_TRUE(both->MakeReady());
    EXPECT_TRUE(context_.Take().empty());
}

TEST_F(VizPluginTest, EveryKindOfFailure) {
    const TemporaryFolder folder;
    const std::string notALibrary = folder.Write("Text.tkv", "no library at all");
    std::vector<std::string> paths = {notALibrary, folder.File("Missing.tkv")};
    const size_t withoutLibrary = paths.size();
    for (const char* name : {"NoExport", "FactoryFails", "FactoryNull", "FactoryThrows", "Neither", "InitializeFails",
                             "InfoFails", "CapabilitiesFails"})
        paths.push_back(TestPluginPath(std::string(name) + ".tkv"));
    for (size_t i = 0; i < paths.size(); ++i) {
        SCOPED_TRACE(paths[i]);
        context_.Take();
        {
            CVizPlugin plugin(paths[i].c_str(), &preferences_);
            EXPECT_FALSE(plugin.Load());
            EXPECT_FALSE(plugin.IsLoaded());
            EXPECT_FALSE(plugin.IsInfoValid());
            plugin.GetName();
            EXPECT_EQ(plugin.IsLoaded(), i < withoutLibrary) << "what can't be loaded isn't tried again";
            EXPECT_FALSE(plugin.IsInfoValid());
            plugin.GetEffectMask();
            EXPECT_TRUE(plugin.IsLoaded());
            EXPECT_FALSE(plugin.IsReady());
            EXPECT_FALSE(plugin.MakeReady());
            EXPECT_EQ(plugin.GetRenderMode(), 0u);
            EXPECT_FALSE(plugin.GetSupportsConfigure());
        }
        CallLog log = context_.Take();
        EXPECT_EQ(std::count(log.begin(), log.end(), "Initialize"), std::count(log.begin(), log.end(), "End"))
            << "every object has gone";
        EXPECT_EQ(std::count(log.begin(), log.end(), "SetPreferences"), 0);
    }
}

TEST_F(VizPluginTest, AFailedPluginIsTriedAgainWhenItsFileHasChanged) {
    const TemporaryFolder folder;
    std::ifstream source(TestPluginPath("Good2.tkv"), std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(source), {}};
    const std::string path = folder.Write("Copied.tkv", whole.substr(0, whole.size() / 2));
    CVizPlugin plugin(path.c_str(), &preferences_);
    EXPECT_STREQ(plugin.GetName(), "");
    EXPECT_EQ(Cached(plugin, kCacheChecksum).size(), 32u) << "each attempt writes it";
    EmptyPluginCache();
    EXPECT_STREQ(plugin.GetName(), "");
    EXPECT_EQ(Cached(plugin, kCacheChecksum), "nothing") << "no attempt at the same file";
    folder.Write("Copied.tkv", whole);
    EXPECT_STREQ(plugin.GetName(), "Good two");
    EXPECT_TRUE(plugin.IsInfoValid());
    EXPECT_FALSE(plugin.IsLoaded());
}

TEST_F(VizPluginTest, TextsThatFillTheirBuffersAndTextsLeftAlone) {
    const auto full = Make("FullText.tkv");
    EXPECT_STREQ(full->GetCreator(), std::string(256, 'n').c_str());
    EXPECT_TRUE(full->GetWantsSpectrum());
    EXPECT_EQ(full->GetEffectMask(), 0u);

    const auto silent = Make("Silent.tkv");
    silent->SetName("known before");
    ASSERT_TRUE(silent->Load());
    EXPECT_STREQ(silent->GetName(), "known before");
    EXPECT_STREQ(silent->GetCreator(), "");
    EXPECT_EQ(silent->GetEffectMask(), 0xFFFFFFFFu);
    EXPECT_FALSE(silent->GetWantsSpectrum());
    EXPECT_EQ(silent->Draw(nullptr, 0, 0, 0, 32, nullptr), E_FAIL) << "it throws";
    silent->SetRenderMode(1);
    EXPECT_EQ(silent->GetRenderMode(), 1u);
    silent->SetRenderMode(5);
    EXPECT_EQ(silent->GetRenderMode(), 0u);
}

TEST_F(VizPluginTest, LoadingTwiceLeavesOneLibrary) {
    const auto plugin = Make("Good2.tkv");
    EXPECT_TRUE(plugin->Load() && plugin->Load());
    plugin->Unload();
    const CallLog log = context_.Take();
    EXPECT_EQ(std::count(log.begin(), log.end(), "End"), 2);
    EXPECT_EQ(GetModuleHandleA(TestPluginPath("Good2.tkv").c_str()), nullptr);
}

TEST_F(VizPluginTest, LongFileNamesHaveNoKey) {
    const std::string folder = "/" + std::string(300, 'd') + "/";
    EXPECT_STREQ(CVizPlugin((folder + "a.tkv").c_str()).GetCacheKey(), "Software\\Corvane\\Visualizations\\a.tkv");
    EXPECT_STRNE(CVizPlugin((folder + std::string(255, 'a') + ".tkv").c_str()).GetCacheKey(), "");
    CVizPlugin plugin((folder + std::string(256, 'a') + ".tkv").c_str());
    EXPECT_STREQ(plugin.GetCacheKey(), "");
    EXPECT_FALSE(plugin.Load());
    EXPECT_FALSE(ReadCache(plugin));
    EXPECT_FALSE(WriteCache(plugin));
}

TEST_F(VizPluginTest, ClicksWhileTheLibraryComesAndGoes) {
    const auto plugin = Make("Good2.tkv");
    std::atomic<bool> isDone = false;
    std::thread clicker([&] {
        while (!isDone) {
            plugin->OnClick(0, 0, 0);
            plugin->SetActive(true);
            EXPECT_NE(plugin->GetName(), nullptr);
        }
    });
    // A click that doesn't end in time, as on a busy machine, leaves its object in memory.
    ptrdiff_t mayBeLeft = 0;
    for (int i = 0; i < 30; ++i) {
        EXPECT_TRUE(plugin->Load());
        std::this_thread::yield();
        const auto begin = std::chrono::steady_clock::now();
        plugin->Unload();
        mayBeLeft += std::chrono::steady_clock::now() - begin >= CVizPlugin::kPatience;
    }
    isDone = true;
    clicker.join();
    const CallLog log = context_.Take();
    const auto left = std::count(log.begin(), log.end(), "Initialize") - std::count(log.begin(), log.end(), "End");
    EXPECT_GE(left, 0);
    EXPECT_LE(left, mayBeLeft);
}

}  // namespace
}  // namespace tdkviz
