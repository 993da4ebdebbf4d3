// A host in miniature: loads the staged add-on, serves it every interface it asks for, and plays audio
// that carries its own time. Runs on the stepped clock and the memory display, or on the real ones.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <tdkviz/analysis_frame.h>
#include <tdkviz/host.h>
#include <tdkviz/viz.h>

#include "tests/support/Picture.h"
#include "tests/support/TestObjects.h"

struct ITestLog;

namespace tdkviz::test {

// Each sample frame says at which stream position it stands: in steps of kFramesPerStamp, the high
// bytes of the left and the right sample together are the number of the step.
inline constexpr int kFramesPerStamp = 64;
inline constexpr uint32_t kRate = 44100;
void FillStampedAudio(int16_t* stereo, uint64_t position, uint32_t frames);
// The position that a waveform entry says, to kFramesPerStamp frames.
uint64_t StampedPosition(int8_t left, int8_t right);

// An engine with a delay of its own. The host's model of the device decides what it reports.
struct TestEngine final : StackObject<ITKPlaybackEngine, IKVAAudioDelay> {
    IUnknown* Find(const GUID& id) override {
        return id == kIID_IKVAAudioDelay ? static_cast<IKVAAudioDelay*>(this) : nullptr;
    }
    uint32_t GetState() override { return state; }
    uint32_t QueryEngineFlag(uint32_t) override { return allowsVisualization ? 1 : 0; }
    HRESULT GetPreferences(IKVAValues**) override { return E_FAIL; }
    HRESULT GetConfiguredDelay(uint32_t* milliseconds) override {
        *milliseconds = configuredDelay;
        return S_OK;
    }
    HRESULT GetCurrentDelay(uint32_t* milliseconds) override {
        *milliseconds = currentDelay;
        return S_OK;
    }

    std::atomic<uint32_t> state{0};
    std::atomic<bool> allowsVisualization{true};
    std::atomic<uint32_t> configuredDelay{0};
    std::atomic<uint32_t> currentDelay{0};
};

class TestHost final : public StackObject<ITKPlayer, ITKStateSource, IKVAClassFactory, IKVAAudioHookService> {
public:
    // Puts these plug-ins (files of TEST_PLUGIN_DIR or the staged folder), and no others, beside the
    // running program before the add-on looks.
    static void InstallPlugins(const std::vector<std::string>& files);
    static std::string PluginPath(const std::string& name);

    // `codecs`: the folder of colour converters, or "" for none.
    explicit TestHost(const std::string& codecs = "");
    ~TestHost();
    TestHost(const TestHost&) = delete;

    // What a context answers.
    IUnknown* Find(const GUID& id) override;
    IUnknown* GetPlaybackEngine() override { return static_cast<ITKPlaybackEngine*>(engine); }
    HRESULT AddEngineObserver(ITKPlaybackEngineObserver* observer) override { return Keep(engineObserver_, observer); }
    HRESULT RemoveEngineObserver(ITKPlaybackEngineObserver*) override { return Keep(engineObserver_, {}); }
    HRESULT AddStateObserver(ITKStateObserver* observer) override { return Keep(stateObserver_, observer); }
    HRESULT RemoveStateObserver(ITKStateObserver*) override { return Keep(stateObserver_, {}); }
    HRESULT CreateInstance(const GUID&, void** out) override;
    HRESULT AddHook(IKVAAudioHook* hook, uint32_t flags) override;
    HRESULT RemoveHook(IKVAAudioHook* hook) override;

    // The component. Ends it: views, Shutdown, the last Release, the library.
    void Shutdown();
    // The component's manager, asked for anew.
    void TakeManager();
    HRESULT Initialize() { return component_->Initialize(static_cast<ITKPlayer*>(this)); }
    ITKCommandButton* Component() { return component_; }
    IMPAVizMgr* Manager() { return manager_; }
    IMPAVizWindow* MakeView(const std::string& plugin, int width, int height, uint32_t flags = 0);
    HWND Parent() const { return parent_; }
    // The output window of the view that was made last.
    HWND ViewWindow() const;
    // Another interface of the manager's, which isn't counted.
    template <typename T>
    T* Ask(const GUID& id) {
        void* found = nullptr;
        manager_->QueryInterface(id, &found);
        return static_cast<T*>(found);
    }
    // Sets one value of the configuration.
    HRESULT Configure(const char* name, uint32_t value);
    IKVAAudioHook* Hook() const { return hook_; }
    // Leaves the views standing at Shutdown.
    void ForgetViews() { views_.clear(); }

    // The player.
    void SetState(uint32_t state);
    void SetEngine(TestEngine* newEngine);
    void AnnounceFormat(uint16_t channels, uint16_t bits, uint32_t rate, uint16_t blockSize);
    void Deliver(const void* data, uint32_t size);
    void SetAudioState(uint32_t flags);

    // The model of the device, for stereo 16-bit audio at kRate: what is heard moves with the clock, and
    // deliveries of deliveryFrames keep `delay` milliseconds ahead of it. Advance moves the stepped clock.
    void StartDevice(uint32_t delayMilliseconds, uint32_t deliveryFrameCount);
    void Seek(uint64_t position);
    void Advance(uint32_t milliseconds);
    void ServeMessages();
    // The same on the machine's clock. False if it takes too long until `done`.
    bool PlayUntil(const std::function<bool()>& done);
    void PlayFor(std::chrono::milliseconds time);

    TestEngine* engine = nullptr;
    TestEngine firstEngine;
    ITestLog* log = nullptr;  // of the test plug-ins that are loaded from here on
    uint32_t delay = 0;
    uint32_t deliveryFrames = 441;
    std::atomic<uint64_t> heard{0};  // sample frames

    // Delivers until the device has its delay ahead.
    void FeedDevice();

private:
    template <typename T>
    static HRESULT Keep(T*& place, std::type_identity_t<T>* object) {
        place = object;
        return S_OK;
    }

    HMODULE library_ = nullptr;
    ITKCommandButton* component_ = nullptr;
    IMPAVizMgr* manager_ = nullptr;
    HWND parent_ = nullptr;
    ITKStateObserver* stateObserver_ = nullptr;
    ITKPlaybackEngineObserver* engineObserver_ = nullptr;
    IKVAAudioHook* hook_ = nullptr;
    std::vector<IMPAVizWindow*> views_;
    uint64_t delivered_ = 0;
    bool deviceRuns_ = false;
    uint64_t remainder_ = 0;
};

// What a user's earlier run left in the registry.
void StoreSetting(const char* name, uint32_t value);
void ForgetSettings();

// An exported function of a library, by its name.
template <typename Function>
Function SymbolOf(HMODULE library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// What the Probe plug-in saw, collected on the frame thread while the test's own thread waits.
struct ProbeFrame {
    int32_t width;
    int32_t height;
    VizAnalysisFrame analysis;
};
using ProbeFunction = std::function<void(const ProbeFrame&)>;
// Sends every frame of Probe.tkv to `function` until the returned object goes.
std::shared_ptr<void> WatchProbe(ProbeFunction function);

}  // namespace tdkviz::test
