// The manager as a host sees it: interfaces, configuration, the list, the player's states.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <cstring>

#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

class ManagerTest : public testing::Test {
protected:
    void Install(const std::vector<std::string>& plugins) {
        TestHost::InstallPlugins(plugins);
        host_ = std::make_unique<TestHost>();
    }
    uint32_t Configured(const char* key) {
        IKVAValues* bag = nullptr;
        uint32_t number = 0xDEAD;
        EXPECT_EQ(host_->Ask<IMPAAdvancedConfiguration>(kIID_IMPAAdvancedConfiguration)->GetConfiguration(&bag), S_OK);
        if (!bag) return number;
        bag->GetNumber(key, &number);
        bag->Release();
        return number;
    }
    // Frames that a second of stepped time brings.
    int FramesInASecond() {
        std::atomic<int> frames{0};
        auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
        host_->Advance(1000);
        return frames;
    }

    std::unique_ptr<TestHost> host_;
};

TEST_F(ManagerTest, ServesItsInterfacesAndOutlivesItsCount) {
    Install({"Probe.tkv"});
    for (const GUID& id : {kIID_IUnknown, kIID_IMPAVizMgr, kIID_IMPAAdvancedConfiguration, kIID_IMPAVizParentMgr,
                           kIID_ITKStateObserver, kIID_ITKTrackObserver, kIID_ITKPlaybackEngineObserver}) {
        EXPECT_TRUE(host_->Ask<IUnknown>(id));
    }
    void* none = this;
    EXPECT_EQ(host_->Manager()->QueryInterface(kIID_IKVAValues, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
    while (host_->Manager()->Release() > 0) {
    }
    EXPECT_EQ(host_->Manager()->Release(), 0u);
    EXPECT_EQ(host_->Manager()->NoOperation(7), S_OK);
    EXPECT_TRUE(host_->MakeView("Probe.tkv", 64, 48));
}

TEST_F(ManagerTest, FrameRateIsClampedAndKept) {
    Install({"Probe.tkv"});
    const struct {
        uint32_t asked, kept;
    } rates[] = {{5, 10}, {10, 10}, {20, 20}, {31, 30}, {0xFFFFFFFF, 30}, {0, 10}, {24, 24}};
    for (const auto& rate : rates) {
        EXPECT_EQ(host_->Configure(kConfigFrameRate, rate.asked), S_OK);
        EXPECT_EQ(Configured(kConfigFrameRate), rate.kept) << rate.asked;
    }
    host_->Shutdown();
    host_ = std::make_unique<TestHost>();
    EXPECT_EQ(Configured(kConfigFrameRate), 24u) << "from run to run";
    host_->Configure(kConfigFrameRate, 20);
    host_->Configure(kConfigShowAlwaysOnTop, 5);
    EXPECT_EQ(Configured(kConfigShowAlwaysOnTop), 1u);
    host_->Configure("Unknown", 1);
    ASSERT_TRUE(host_->MakeView("Probe.tkv", 64, 48));
    host_->StartDevice(100, 441);
    host_->SetState(kEngineStatePlaying);
    host_->Advance(100);
    EXPECT_EQ(FramesInASecond(), 20);
    host_->Configure(kConfigFrameRate, 30);
    host_->Advance(100);
    EXPECT_NEAR(FramesInASecond(), 30, 1);
    host_->Configure(kConfigFrameRate, 20);
}

TEST_F(ManagerTest, ListDropsWhatCannotBeLoadedOnce) {
    Install({"Probe.tkv", "NoExport.tkv", "HangsInDraw.tkv"});
    IMPAVizMgr* manager = host_->Manager();
    char name[300] = {};
    char path[300] = {};
    EXPECT_EQ(manager->GetPluginCount(), 0u) << "nothing has asked for the list";
    EXPECT_EQ(manager->GetPluginInfo(0, name, path, sizeof name), E_FAIL);
    uint32_t index = 99;
    EXPECT_EQ(manager->GetPluginIndex(TestHost::PluginPath("Probe.tkv").c_str(), &index), S_OK);
    EXPECT_EQ(index, 2u);
    ASSERT_EQ(manager->GetPluginCount(), 3u);
    EXPECT_EQ(manager->GetPluginInfo(1, name, path, sizeof name), E_FAIL) << "once";
    EXPECT_EQ(manager->GetPluginCount(), 2u);
    EXPECT_EQ(manager->GetPluginInfo(1, name, path, sizeof name), S_OK) << "the next one has moved up";
    EXPECT_STREQ(name, "Probe");
    EXPECT_EQ(path, TestHost::PluginPath("Probe.tkv"));
    EXPECT_EQ(manager->GetPluginInfo(2, name, path, sizeof name), E_FAIL);
    const auto exact = static_cast<uint32_t>(std::strlen(path));
    EXPECT_EQ(manager->GetPluginInfo(1, name, path, exact), E_FAIL) << "no room for the terminator";
    EXPECT_EQ(manager->GetPluginInfo(1, name, path, exact + 1), S_OK);
    EXPECT_EQ(manager->GetPluginName(path, name, 6), S_OK);
    EXPECT_EQ(manager->GetPluginName(path, name, 5), E_FAIL);
    EXPECT_EQ(manager->GetPluginName("nowhere", name, sizeof name), E_FAIL);
    EXPECT_EQ(manager->GetPluginIndex("nowhere", &index), E_FAIL);
}

TEST_F(ManagerTest, EmptyFolderGivesNoView) {
    Install({});
    uint32_t parent = 0;
    IMPAVizWindow* view = nullptr;
    EXPECT_EQ(host_->Manager()->CreateVizWindow(&view, &parent), E_FAIL);
    EXPECT_EQ(host_->Manager()->CreateVizWindow(nullptr, &parent), E_FAIL);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(host_->Manager()->DestroyVizWindow(nullptr), E_FAIL);
    EXPECT_EQ(host_->Manager()->RemoveListReceiver(host_->Component()), E_FAIL);
    EXPECT_EQ(host_->Manager()->RemoveConfigReceiver(host_->Component()), E_FAIL);
}

TEST_F(ManagerTest, FramesFollowThePlayersStates) {
    Install({"Probe.tkv"});
    host_->StartDevice(100, 441);
    host_->SetState(kEngineStatePlaying);
    ASSERT_TRUE(host_->MakeView("Probe.tkv", 64, 48));
    host_->Advance(100);
    EXPECT_EQ(FramesInASecond(), 20) << "a view made while playing starts by itself";
    host_->SetState(4);
    EXPECT_EQ(FramesInASecond(), 0);
    host_->SetState(kEngineStatePlaying);
    EXPECT_EQ(FramesInASecond(), 20);

    host_->SetAudioState(0);
    EXPECT_EQ(FramesInASecond(), 20) << "the next state change decides";
    host_->SetState(kEngineStatePlaying);
    EXPECT_EQ(FramesInASecond(), 0) << "even a change to playing";
    host_->Ask<ITKTrackObserver>(kIID_ITKTrackObserver)->OnTrackChange(nullptr);
    EXPECT_EQ(FramesInASecond(), 0);
    host_->SetState(kEngineStatePlaying);
    EXPECT_EQ(FramesInASecond(), 20);

    host_->engine->allowsVisualization = false;
    host_->SetState(kEngineStatePlaying);
    EXPECT_EQ(FramesInASecond(), 0) << "the engine says no";
    host_->engine->allowsVisualization = true;
    host_->SetEngine(nullptr);
    host_->SetEngine(&host_->firstEngine);
    host_->SetState(kEngineStatePlaying);
    EXPECT_EQ(FramesInASecond(), 20);
}

TEST_F(ManagerTest, OneThatComesBeforeTheContextGetsItLater) {
    Install({"Probe.tkv"});
    host_->Component()->Shutdown();
    host_->TakeManager();
    EXPECT_FALSE(host_->Hook()) << "the context has gone with Shutdown";
    ASSERT_TRUE(host_->MakeView("Probe.tkv", 64, 48));
    host_->SetState(kEngineStatePlaying);
    EXPECT_EQ(FramesInASecond(), 0);
    EXPECT_EQ(host_->Initialize(), S_OK);
    ASSERT_TRUE(host_->Hook());
    host_->StartDevice(100, 441);
    EXPECT_EQ(FramesInASecond(), 20) << "it plays already";
    host_->SetState(4);
    EXPECT_EQ(FramesInASecond(), 0);
}

TEST_F(ManagerTest, HostWithNothingToOfferGetsNoFramesAndNoCrash) {
    StackObject<IUnknown> silent;
    TestHost::InstallPlugins({"Probe.tkv"});
    HMODULE library = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    ASSERT_TRUE(library);
    IUnknown* made = nullptr;
    ASSERT_EQ(SymbolOf<TKCreateInstanceFunction>(library, kCreateInstanceName)(&made), S_OK);
    auto* component = static_cast<ITKCommandButton*>(made);
    char label[32] = "unchanged";
    EXPECT_EQ(component->GetButtonLabel(label, sizeof label), S_OK);
    EXPECT_EQ(component->Initialize(&silent), E_NOINTERFACE);
    void* manager = nullptr;
    ASSERT_EQ(component->QueryInterface(kIID_IMPAVizMgr, &manager), S_OK);
    IMPAVizWindow* view = nullptr;
    EXPECT_EQ(static_cast<IMPAVizMgr*>(manager)->CreateVizWindow(&view, nullptr), S_OK) << "without a parent";
    view->Show(100, 100);  // E_FAIL until the worker has got to the view, which then has no window to show
    TdkpAdvanceClock(500);
    EXPECT_EQ(static_cast<IMPAVizMgr*>(manager)->DestroyVizWindow(view), S_OK);
    EXPECT_EQ(component->Shutdown(), S_OK);
    EXPECT_EQ(component->Shutdown(), S_OK);
    EXPECT_EQ(component->Release(), 0u);
    FreeLibrary(library);
}

}  // namespace
}  // namespace tdkviz::test
