// What the add-on finds behind the context: bags, buffers, engine, observers, hooks, catalogue.
#include <gtest/gtest.h>

#include <tdkviz/viz.h>

#include <cstring>

#include "player/base/ExitCode.h"
#include "player/host/Buffer.h"
#include "player/host/HostContext.h"
#include "player/host/PluginCatalog.h"

namespace tdkplay {
namespace {

TEST(Values, KeepThreeSlotsForEachKeyAndIterateByKey) {
    const auto values = MakeCom<Values>();
    const auto text = Buffer::FromText("x");
    uint32_t number = 0;
    const char* key = nullptr;
    ComPtr<IKVABuffer> found;
    EXPECT_EQ(values->GetNextNumber(&key, &number), E_FAIL);
    for (const char* name : {"b", "A", "B"}) values->SetNumber(name, ++number);
    values->SetTextValue("c", text.Get());
    EXPECT_EQ(values->GetNumber("C", &number), E_FAIL) << "only a text";
    EXPECT_EQ(values->GetTextValue("C", found.Receive()), S_OK);
    EXPECT_EQ(found.Get(), text.Get());
    EXPECT_EQ(values->GetFirstNumber(&key, &number), S_OK);
    EXPECT_STREQ(key, "A");
    EXPECT_EQ(values->GetNextNumber(&key, &number), S_OK);
    EXPECT_STREQ(key, "b") << "the first spelling";
    EXPECT_EQ(number, 3u);
    EXPECT_EQ(values->GetNextNumber(&key, &number), E_FAIL);
}

TEST(Engine, TellsItsDelaysInWholeMilliseconds) {
    const auto engine = MakeCom<Engine>(0.145);
    const auto delay = QueryFor<IKVAAudioDelay>(static_cast<ITKPlaybackEngine*>(engine.Get()), kIID_IKVAAudioDelay);
    ASSERT_TRUE(delay);
    uint32_t milliseconds = 0;
    delay->GetConfiguredDelay(&milliseconds);
    EXPECT_EQ(milliseconds, 145u);
    const std::pair<double, uint32_t> cases[] = {{0.0, 0}, {0.0004, 0}, {0.0996, 100}, {-1.0, 0}, {9.0, 145}};
    for (const auto& [seconds, expected] : cases) {
        engine->SetDelay(seconds);
        delay->GetCurrentDelay(&milliseconds);
        EXPECT_EQ(milliseconds, expected) << seconds;
    }
    EXPECT_NE(engine->QueryEngineFlag(kEngineFlagVisualize), 0u);
    EXPECT_EQ(engine->QueryEngineFlag(99), 0u);

    const auto late = MakeCom<Engine>(0.2, 0.012);
    const std::tuple<double, int, uint32_t> shifted[] = {{0.1, 50, 150},  {0.1, -50, 50}, {0.1, -99, 12},
                                                         {-0.04, 70, 30}, {-0.04, 0, 12}, {0.1, 500, 200}};
    for (const auto& [seconds, offset, expected] : shifted) {
        late->SetDelay(seconds);
        late->SetOffset(offset);
        late->GetCurrentDelay(&milliseconds);
        EXPECT_EQ(milliseconds, expected) << seconds << " and " << offset;
    }

    ComPtr<IKVAValues> preferences;
    ComPtr<IKVABuffer> text;
    ASSERT_EQ(engine->GetPreferences(preferences.Receive()), S_OK);
    ASSERT_EQ(preferences->GetTextValue(kPreferenceAudioSyncFactor, text.Receive()), S_OK);
    EXPECT_STREQ(static_cast<const char*>(text->GetBuffer()), "0.145");
}

struct Observer final : ComObject<ITKStateObserver, ITKPlaybackEngineObserver> {
    std::vector<std::string> Heard;
    HRESULT QueryInterface(const GUID&, void**) override { return E_NOINTERFACE; }
    HRESULT OnStateChange(uint32_t oldState, uint32_t newState) override {
        Heard.push_back(std::to_string(oldState) + ">" + std::to_string(newState));
        return S_OK;
    }
    HRESULT OnStateDetail(uint32_t) override { return S_OK; }
    HRESULT OnEngineChange(IUnknown* engine) override {
        Heard.push_back(engine ? "engine" : "none");
        return S_OK;
    }
};

TEST(PlayerObject, TellsEachObserverOnceAndNoneAfterItsRemoval) {
    const auto player = MakeCom<PlayerObject>();
    const auto first = MakeCom<Observer>();
    const auto second = MakeCom<Observer>();
    player->AddEngineObserver(first.Get());
    player->AddStateObserver(first.Get());
    player->AddStateObserver(first.Get());
    player->AddStateObserver(second.Get());
    player->SetState(kEngineStatePlaying);  // without an engine there is no state
    player->SetEngine(MakeCom<Engine>(0.1));
    player->SetState(kEngineStatePlaying);
    player->SetState(kEngineStatePlaying);
    EXPECT_EQ(player->RemoveStateObserver(first.Get()), S_OK);
    EXPECT_EQ(player->RemoveStateObserver(first.Get()), E_FAIL);
    player->SetState(kEngineStatePaused);
    EXPECT_EQ(first->Heard, (std::vector<std::string>{"engine", "0>3"}));
    EXPECT_EQ(second->Heard, (std::vector<std::string>{"0>3", "3>2"}));
}

struct Hook final : ComObject<IKVAAudioHook, ITKAudioHook> {
    std::vector<std::string> Heard;
    HRESULT QueryInterface(const GUID& id, void** out) override {
        return GiveInterface(id, out, {{kIID_ITKAudioHook, static_cast<ITKAudioHook*>(this)}});
    }
    HRESULT OnAudioFormat(KVAAudioFormat* format) override {
        Heard.push_back("format " + std::to_string(format->SamplesPerSecond));
        return S_OK;
    }
    HRESULT OnAudioData(KVAAudioData* in, KVAAudioData*) override {
        Heard.push_back("data " + std::to_string(in->Buffer->GetSize()));
        return S_OK;
    }
    HRESULT OnAudioState(uint32_t flags) override {
        Heard.push_back("state " + std::to_string(flags));
        return S_OK;
    }
};

TEST(AudioHooks, TellEachHookTheFormatBeforeItsFirstData) {
    const auto hooks = MakeCom<AudioHooks>();
    const auto early = MakeCom<Hook>();
    const auto late = MakeCom<Hook>();
    const auto block = Buffer::FromText("abc");
    EXPECT_EQ(hooks->AddHook(nullptr, 1), E_INVALIDARG);
    hooks->AddHook(early.Get(), 1);
    hooks->Deliver(block.Get());  // no format yet: nothing to deliver
    hooks->AnnounceState(true);
    hooks->AnnounceFormat({2, 16, 44100, 4096, 0});
    hooks->Deliver(block.Get());
    hooks->AddHook(late.Get(), 1);
    hooks->Deliver(block.Get());
    EXPECT_EQ(hooks->RemoveHook(early.Get()), S_OK);
    EXPECT_EQ(hooks->RemoveHook(early.Get()), E_FAIL);
    hooks->AnnounceState(false);
    EXPECT_EQ(early->Heard, (std::vector<std::string>{"state 1", "format 44100", "data 4", "data 4"}));
    EXPECT_EQ(late->Heard, (std::vector<std::string>{"format 44100", "data 4", "state 0"}));
}

TEST(PluginCatalog, FindsAPluginByWhatPeopleCallIt) {
    const std::vector<PluginInfo> plugins = {
        {"Spectrum", "/v/Bars.tkv"}, {"Oscilloscope", "/v/scope.tkv"}, {"Spark", "/v/Flow.TKV"}};
    const std::pair<const char*, size_t> found[] = {{"", 0},    {"spectrum", 0},     {"bars", 0}, {"BARS.tkv", 0},
                                                    {"osc", 1}, {"/v/scope.tkv", 1}, {"flow", 2}, {"spa", 2}};
    for (const auto& [text, index] : found) EXPECT_EQ(FindPlugin(plugins, text), index) << text;
    const std::pair<std::vector<PluginInfo>, const char*> unknown[] = {{plugins, "sp"}, {plugins, "nothing"}, {{}, ""}};
    const ExitCode codes[] = {ExitCode::kUnknownPlugin, ExitCode::kUnknownPlugin, ExitCode::kNoPlugins};
    for (size_t i = 0; i < std::size(codes); ++i) {
        try {
            FindPlugin(unknown[i].first, unknown[i].second);
            ADD_FAILURE() << unknown[i].second;
        } catch (const PlayerError& error) {
            EXPECT_EQ(error.Code(), codes[i]);
        }
    }
}

}  // namespace
}  // namespace tdkplay
