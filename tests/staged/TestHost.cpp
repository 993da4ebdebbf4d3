#include "tests/staged/TestHost.h"

#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <filesystem>

#include "tests/plugins/testplugins/TestPlugin.h"
#include "tests/staged/TestBag.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace tdkviz::test {
namespace {

constexpr uint32_t kPlayStep = 5;  // ms
constexpr char kSettingsKey[] = "Software\\Corvane\\Visualizations";

HWND MakeParent() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.lpszClassName = "TestHostWindow";
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, "TestHostWindow", "host", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 1400, 900,
                           nullptr, nullptr, nullptr, nullptr);
}

fs::path ProgramFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path();
}

}  // namespace

void FillStampedAudio(int16_t* stereo, uint64_t position, uint32_t frames) {
    for (uint32_t index = 0; index < frames; ++index) {
        const uint64_t stamp = (position + index) / kFramesPerStamp;
        stereo[2 * index] = static_cast<int16_t>(((stamp >> 8) & 0xFF) << 8);
        stereo[2 * index + 1] = static_cast<int16_t>((stamp & 0xFF) << 8);
    }
}

uint64_t StampedPosition(int8_t left, int8_t right) {
    const uint64_t stamp = static_cast<uint64_t>(static_cast<uint8_t>(left)) << 8 | static_cast<uint8_t>(right);
    return stamp * kFramesPerStamp;
}

// ---- The host

void TestHost::InstallPlugins(const std::vector<std::string>& files) {
    const fs::path folder = ProgramFolder() / "Visualizations";
    fs::remove_all(folder);
    fs::create_directories(folder);
    for (const std::string& file : files) {
        fs::path source = fs::path(TEST_PLUGIN_DIR) / file;
        if (!fs::exists(source)) source = fs::path(STAGE_DIR) / "Visualizations" / file;
        fs::copy_file(source, folder / file);
    }
}

std::string TestHost::PluginPath(const std::string& name) {
    return (ProgramFolder() / "Visualizations" / name).string();
}

TestHost::TestHost(const std::string& codecs) : engine(&firstEngine) {
    parent_ = MakeParent();
    library_ = LoadLibraryA((fs::path(STAGE_DIR) / "tdkviz.so").c_str());
    if (!library_) throw std::runtime_error("the add-on can't be loaded");
    if (!codecs.empty()) {
        const std::string block = "DT_Codecs=" + codecs + std::string(1, '\0');
        SymbolOf<SetDLLAccessPathFunction>(library_, kSetDLLAccessPathName)(block.c_str());
    }
    auto create = SymbolOf<TKCreateInstanceFunction>(library_, kCreateInstanceName);
    IUnknown* made = nullptr;
    EXPECT_EQ(create(&made), S_OK);
    component_ = static_cast<ITKCommandButton*>(made);
    EXPECT_EQ(Initialize(), S_OK);
    TakeManager();
}

void TestHost::TakeManager() {
    void* manager = nullptr;
    EXPECT_EQ(component_->QueryInterface(kIID_IMPAVizMgr, &manager), S_OK);
    manager_ = static_cast<IMPAVizMgr*>(manager);
}

TestHost::~TestHost() {
    Shutdown();
    DestroyWindow(parent_);
}

void TestHost::Shutdown() {
    if (!component_) return;
    for (IMPAVizWindow* view : views_) EXPECT_EQ(manager_->DestroyVizWindow(view), S_OK);
    views_.clear();
    component_->Shutdown();
    EXPECT_EQ(component_->Release(), 0u);
    component_ = nullptr;
    FreeLibrary(library_);
}

IUnknown* TestHost::Find(const GUID& id) {
    if (id == kIID_ITKPlayer || id == kIID_IUnknown) return static_cast<ITKPlayer*>(this);
    if (id == kIID_ITKStateSource) return static_cast<ITKStateSource*>(this);
    if (id == kIID_IKVAClassFactory) return static_cast<IKVAClassFactory*>(this);
    if (id == kIID_ITestLog) return log;
    if (id == kIID_IKVAAudioService || id == kIID_IKVAAudioHookService) return static_cast<IKVAAudioHookService*>(this);
    return nullptr;
}

HRESULT TestHost::CreateInstance(const GUID& id, void** out) {
    *out = nullptr;
    if (id != kIID_IKVAValues) return E_NOINTERFACE;
    *out = new TestBag;
    return S_OK;
}
HRESULT TestHost::AddHook(IKVAAudioHook* hook, uint32_t flags) {
    EXPECT_EQ(flags, 1u);
    hook_ = hook;
    return S_OK;
}
HRESULT TestHost::RemoveHook(IKVAAudioHook* hook) {
    EXPECT_EQ(hook, hook_);
    hook_ = nullptr;
    return S_OK;
}

HWND TestHost::ViewWindow() const {
    return FindWindowExA(parent_, nullptr, "TDVisualizationClass", nullptr);
}

HRESULT TestHost::Configure(const char* name, uint32_t value) {
    auto* bag = new TestBag;
    bag->SetNumber(name, value);
    const HRESULT result = Ask<IMPAAdvancedConfiguration>(kIID_IMPAAdvancedConfiguration)->SetConfiguration(bag);
    bag->Release();
    return result;
}

IMPAVizWindow* TestHost::MakeView(const std::string& plugin, int width, int height, uint32_t flags) {
    auto parent = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(parent_));
    IMPAVizWindow* view = nullptr;
    if (manager_->CreateVizWindow(&view, &parent) != S_OK) return nullptr;
    views_.push_back(view);
    view->SetViewFlags(flags);
    EXPECT_EQ(view->SelectPlugin(PluginPath(plugin).c_str()), S_OK);
    view->Show(width, height);
    return view;
}

void TestHost::SetState(uint32_t state) {
    const uint32_t old = engine->state.exchange(state);
    if (stateObserver_) stateObserver_->OnStateChange(old, state);
}

void TestHost::SetEngine(TestEngine* newEngine) {
    engine = newEngine;
    if (engineObserver_)
        engineObserver_->OnEngineChange(newEngine ? static_cast<ITKPlaybackEngine*>(newEngine) : nullptr);
}

void TestHost::AnnounceFormat(uint16_t channels, uint16_t bits, uint32_t rate, uint16_t blockSize) {
    KVAAudioFormat format = {channels, bits, rate, blockSize, 0};
    if (hook_) hook_->OnAudioFormat(&format);
}

void TestHost::Deliver(const void* data, uint32_t size) {
    FakeBuffer buffer(data, size);
    KVAAudioData in = {&buffer};
    if (hook_) hook_->OnAudioData(&in, &in);
    EXPECT_EQ(buffer.References, 0u);
}

void TestHost::SetAudioState(uint32_t flags) {
    void* state = nullptr;
    if (!hook_ || FAILED(hook_->QueryInterface(kIID_ITKAudioHook, &state))) return;
    static_cast<ITKAudioHook*>(state)->OnAudioState(flags);
    static_cast<ITKAudioHook*>(state)->Release();
}

void TestHost::StartDevice(uint32_t delayMilliseconds, uint32_t deliveryFrameCount) {
    delay = delayMilliseconds;
    deliveryFrames = deliveryFrameCount;
    deviceRuns_ = true;
    engine->configuredDelay = delayMilliseconds;
    AnnounceFormat(2, 16, kRate, static_cast<uint16_t>(deliveryFrames * 4));
    FeedDevice();
}

void TestHost::Seek(uint64_t position) {
    heard = position;
    delivered_ = position;
    FeedDevice();
}

// Delivers until the device has its delay ahead, each delivery with the true delay from its end.
void TestHost::FeedDevice() {
    std::vector<int16_t> audio(deliveryFrames * 2);
    while (delivered_ + deliveryFrames <= heard + uint64_t{delay} * kRate / 1000) {
        FillStampedAudio(audio.data(), delivered_, deliveryFrames);
        delivered_ += deliveryFrames;
        engine->currentDelay = static_cast<uint32_t>((delivered_ - heard) * 1000 / kRate);
        Deliver(audio.data(), static_cast<uint32_t>(audio.size() * sizeof(int16_t)));
    }
}

void TestHost::Advance(uint32_t milliseconds) {
    for (uint32_t step = 0; step < milliseconds; ++step) {
        TdkpAdvanceClock(1);
        ServeMessages();
        if (!deviceRuns_ || engine == nullptr || engine->state != kEngineStatePlaying) continue;
        remainder_ += kRate;
        heard += remainder_ / 1000;
        remainder_ %= 1000;
        FeedDevice();
    }
}

void TestHost::ServeMessages() {
    test::ServeMessages();
}

bool TestHost::PlayUntil(const std::function<bool()>& done) {
    return WaitUntil(done, [this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(kPlayStep));
        heard += kPlayStep * kRate / 1000;
        FeedDevice();
        ServeMessages();
    });
}

void TestHost::PlayFor(std::chrono::milliseconds time) {
    PlayUntil([end = std::chrono::steady_clock::now() + time] { return std::chrono::steady_clock::now() >= end; });
}

// ---- Settings

void StoreSetting(const char* name, uint32_t value) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              0);
    EXPECT_EQ(RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value)), 0);
    RegCloseKey(key);
}

void ForgetSettings() {
    RegDeleteTreeA(HKEY_CURRENT_USER, kSettingsKey);
}

// ---- The probe

std::shared_ptr<void> WatchProbe(ProbeFunction function) {
    using Callback = void (*)(void*, int32_t, int32_t, const VizAnalysisFrame*);
    using SetCallback = void (*)(Callback, void*);
    HMODULE library = LoadLibraryA(TestHost::PluginPath("Probe.tkv").c_str());
    auto set = SymbolOf<SetCallback>(library, "SetProbeCallback");
    auto* kept = new ProbeFunction(std::move(function));
    set(
        [](void* context, int32_t width, int32_t height, const VizAnalysisFrame* frame) {
            (*static_cast<ProbeFunction*>(context))({width, height, *frame});
        },
        kept);
    return {kept, [library, set](void* pointer) {
                set(nullptr, nullptr);
                delete static_cast<ProbeFunction*>(pointer);
                FreeLibrary(library);
            }};
}

}  // namespace tdkviz::test
