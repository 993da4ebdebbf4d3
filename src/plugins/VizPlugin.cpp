#include "src/plugins/VizPlugin.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>
#include <utility>

#include <tdkviz/host.h>

#include "src/plugins/FileStamp.h"
#include "src/plugins/PluginCache.h"
#include "src/plugins/PreferencesMaker.h"
#include "src/support/NQHeader.h"
#include "src/support/RefPtr.h"
#include "src/support/RegistryKey.h"
#include "src/support/ThreadLimits.h"

namespace tdkviz {
namespace {

constexpr int32_t kMaxTextLength = kPluginTextSize - 1;
constexpr std::chrono::milliseconds kRetryPause{1};

// What a plug-in fills: one byte more than it is told of, so that there always is a terminator.
using InfoBuffer = std::array<char, kPluginTextSize + 1>;

CNQString CutText(const char* text) {
    return CNQString(text).Left(kMaxTextLength);
}

InfoBuffer BufferWith(const char* text) {
    InfoBuffer buffer{};
    const CNQString cut = CutText(text);
    std::copy_n(cut.GetText(), cut.GetLength(), buffer.begin());
    return buffer;
}

HRESULT ShowDialog(IMPAVisualization* held, MPAVizWindowRecord* parent) {
    return held->Configure(reinterpret_cast<HWND>(static_cast<uintptr_t>(parent->Window)));
}

HRESULT ShowDialog(IMPAVisualization2* held, MPAVizWindowRecord* parent) {
    return held->Configure(parent);
}

// Tries until `deadline`, at least once. By the machine's clock, whatever clock the program runs on.
template <typename Condition>
bool WaitUntil(std::chrono::steady_clock::time_point deadline, Condition isMet) {
    while (!isMet()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(kRetryPause);
    }
    return true;
}

std::chrono::steady_clock::time_point PatienceFromNow() {
    return std::chrono::steady_clock::now() + CVizPlugin::kPatience;
}

}  // namespace

// Counts a forwarded call while it is under way. The count comes before the look at ready_, so that whoever
// clears ready_ and then finds no call has seen them all. The look before the count keeps callers that come
// too late from holding up the end.
class CVizPlugin::CallScope {
public:
    explicit CallScope(CVizPlugin& plugin) : calls_(plugin.calls_), isCounted_(plugin.ready_) {
        if (isCounted_) ++calls_;
        mayCall_ = isCounted_ && plugin.ready_;
    }
    ~CallScope() {
        if (isCounted_) --calls_;
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
    bool MayCall() const { return mayCall_; }

private:
    std::atomic<int32_t>& calls_;
    const bool isCounted_;
    bool mayCall_;
};

CVizPlugin::CVizPlugin(const char* path, PreferencesMaker* maker, IUnknown* host)
    : Path(path), CacheKey(PluginCacheKey(path)), Lock(std::make_unique<KVAWinMutex>()), maker_(maker) {
    AskHostString(host);
}

CVizPlugin::~CVizPlugin() {
    if (!abandoned_ && LockBefore(PatienceFromNow())) {
        Loaded = true;  // so that the library of an object that was refused goes as well
        Unload();
        UnlockPlugin();
    } else {
        (void)Lock.release();  // its holder never gives it back
    }
}

bool CVizPlugin::GetSupportsConfigure() {
    LoadForDescription();
    return SupportsConfigure;
}

bool CVizPlugin::GetWantsSpectrum() {
    LoadForAnswer();
    return WantsSpectrum;
}

uint32_t CVizPlugin::GetEffectMask() {
    LoadForAnswer();
    return EffectMask;
}

HRESULT CVizPlugin::Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                         VizAnalysisFrame* frame) {
    return Forward([&](auto* held) { return held->Draw(pixels, width, height, pitch, bitsPerPixel, frame); });
}

HRESULT CVizPlugin::OnClick(uint32_t x, uint32_t y, uint32_t flags) {
    return Forward([&](auto* held) { return held->OnClick(x, y, flags); });
}

uint32_t CVizPlugin::GetRenderMode() {
    return RenderMode;
}

bool CVizPlugin::CreateVisualization() {
    if (!Module) return false;
    const auto factory = reinterpret_cast<MPACreateVisualizationFunction>(
        reinterpret_cast<void*>(GetProcAddress(Module, kPluginFactoryName)));
    if (!factory) return false;
    RefPtr<IUnknown> object;
    if (FAILED(factory(object.Receive()))) return false;
    DropInterfaces();
    if (!HoldInterface(object.Get())) return false;
    IMPAVisualization2* const two = Visualization2;
    return two ? SetUp(two) : SetUp(Visualization.load());
}

const char* CVizPlugin::GetName() {
    LoadForDescription();
    return Name.Get();
}

const char* CVizPlugin::GetCreator() {
    LoadForDescription();
    return Creator.Get();
}

const char* CVizPlugin::GetDescription() {
    LoadForDescription();
    return Description.Get();
}

void CVizPlugin::SetName(const char* text) {
    const MutexLock hold(Lock.get());
    Name.Set(CutText(text));
}

void CVizPlugin::SetCreator(const char* text) {
    const MutexLock hold(Lock.get());
    Creator.Set(CutText(text));
}

void CVizPlugin::SetDescription(const char* text) {
    const MutexLock hold(Lock.get());
    Description.Set(CutText(text));
}

void CVizPlugin::SetChecksum(const char* text) {
    const MutexLock hold(Lock.get());
    Checksum.Set(CutText(text));
}

bool CVizPlugin::Load() {
    const MutexLock hold(Lock.get());
    try {
        return LoadLocked();
    } catch (...) {
        return false;
    }
}

bool CVizPlugin::MakeReady() {
    const MutexLock hold(Lock.get());
    return IsReady() || Load();
}

void CVizPlugin::Unload() {
    const MutexLock hold(Lock.get());
    const bool isUnused = DropInterfaces();
    withdrawn_ = false;
    if (!Module || !Loaded) return;
    OnUnload();
    if (isUnused) FreeLibrary(Module);
    Module = nullptr;
    Loaded = false;
}

bool CVizPlugin::Retire(std::chrono::steady_clock::time_point deadline) {
    if (!LockBefore(deadline)) {
        abandoned_ = true;
        return false;
    }
    abandoned_ = false;
    Close();
    Unload();
    UnlockPlugin();
    return true;
}

HRESULT CVizPlugin::Configure(MPAVizWindowRecord* parent) {
    if (!SupportsConfigure) return E_NOTIMPL;
    if (!parent) return E_FAIL;
    if (!ready_) return E_FAIL;
    return Forward([&](auto* held) { return ShowDialog(held, parent); });
}

HRESULT CVizPlugin::SetActive(bool active) {
    return ForwardToTwo([&](IMPAVisualization2* held) { return held->SetActive(active ? 1 : 0); });
}

// Set before the call and cleared behind it: where two views cross, the one that lost its window gives it once more.
void CVizPlugin::SetWindow(MPAVizWindowRecord* target) {
    const bool isGiven = target && target->Window != 0;
    if (isGiven) hasWindow_ = true;
    ForwardToTwo([&](IMPAVisualization2* held) { return held->SetWindow(target); });
    if (!isGiven) hasWindow_ = false;
}

HRESULT CVizPlugin::DrawToWindow(MPAVizWindowRecord* target, VizAnalysisFrame* frame) {
    return ForwardToTwo([&](IMPAVisualization2* held) { return held->DrawToWindow(target, frame); });
}

HRESULT CVizPlugin::Close() {
    ForwardToTwo([&](IMPAVisualization2* held) {
        const auto closer = QueryFor<IMPAVisualizationClose>(held, kIID_IMPAVisualizationClose);
        return closer && Loaded ? closer->Close() : S_OK;
    });
    return S_OK;
}

void CVizPlugin::Withdraw() {
    const bool isLocked = LockBefore(std::chrono::steady_clock::now() + std::chrono::milliseconds(kThreadAnswerLimit));
    MPAVizWindowRecord none = {};
    SetWindow(&none);
    Close();
    if (ready_) withdrawn_ = true;
    ready_ = false;
    if (isLocked) UnlockPlugin();
}

void CVizPlugin::AskHostString(IUnknown* host) {
    const auto service = QueryFor<ITKNameService>(host, kIID_ITKNameService);
    RefPtr<IUnknown> found;
    if (!service || FAILED(service->GetCatalog(found.Receive())) || !found) return;
    const RefPtr<ITKNameCatalog> catalog = RefPtr<ITKNameCatalog>::Adopt(static_cast<ITKNameCatalog*>(found.Detach()));
    if (FAILED(catalog->GetEntry(kIID_ITKNameEntry, found.Receive())) || !found) return;
    const auto entry = QueryFor<ITKNameEntry>(found.Get(), kIID_ITKNameEntry);
    char* text = nullptr;
    if (entry && SUCCEEDED(entry->GetHostString(GetPath(), &text))) HostString = text;
}

void CVizPlugin::LoadForAnswer() {
    if (Loaded) return;
    const MutexLock hold(Lock.get());
    if (Loaded) return;
    Load();
    Loaded = true;
}

void CVizPlugin::LoadForDescription() {
    if (InfoValid) return;
    const MutexLock hold(Lock.get());
    if (InfoValid || (Loaded && !HasChangedSinceTried())) return;
    Load();
    Loaded = true;
    Unload();
}

bool CVizPlugin::HasChangedSinceTried() const {
    char checksum[kChecksumSize];
    uint32_t size = sizeof checksum;
    return ComputeChecksum(GetPath(), checksum, &size) && std::strcmp(checksum, triedStamp_.GetText()) != 0;
}

bool CVizPlugin::LoadLocked() {
    char checksum[kChecksumSize] = {};
    uint32_t size = sizeof checksum;
    RegistryKey key;
    if (ComputeChecksum(GetPath(), checksum, &size) && !CacheKey.IsEmpty() &&
        key.Open(HKEY_CURRENT_USER, GetCacheKey())) {
        key.SetString(kCacheChecksum, checksum);
    }
    key.Close();
    triedStamp_ = checksum;

    const HMODULE loaded = LoadLibraryA(GetPath());
    if (!loaded) return false;
    if (const HMODULE previous = std::exchange(Module, loaded)) {
        // A file that was replaced is another library; the old object goes with the old one.
        const bool isUnused = previous == loaded || DropInterfaces();
        if (isUnused) FreeLibrary(previous);
    }
    if (!CreateVisualization()) return false;
    Loaded = true;
    WriteDescription();
    InfoValid = true;
    loadCount_ = loadCount_ + 1;
    hasWindow_ = withdrawn_ = false;
    ready_ = true;
    return true;
}

void CVizPlugin::WriteDescription() const {
    RegistryKey key;
    if (CacheKey.IsEmpty() || !key.Open(HKEY_CURRENT_USER, GetCacheKey())) return;
    key.SetString(kCacheName, Name.Get());
    key.SetString(kCacheCreator, Creator.Get());
    key.SetString(kCacheDescription, Description.Get());
    key.SetNumber(kCacheSupportsConfigure, SupportsConfigure ? 1 : 0);
    key.SetNumber(kCacheRenderMode, RenderMode);
}

bool CVizPlugin::HoldInterface(IUnknown* object) {
    Visualization2 = QueryFor<IMPAVisualization2>(object, kIID_IMPAVisualization2).Detach();
    if (!Visualization2) Visualization = QueryFor<IMPAVisualization>(object, kIID_IMPAVisualization).Detach();
    return Visualization2 || Visualization;
}

template <typename Held>
bool CVizPlugin::SetUp(Held* held) {
    if (FAILED(held->Initialize(HostContext))) return false;

    InfoBuffer name = BufferWith(Name.Get());
    InfoBuffer creator = BufferWith(Creator.Get());
    InfoBuffer description = BufferWith(Description.Get());
    const HRESULT informed = held->GetInfo(name.data(), creator.data(), description.data());
    name.back() = creator.back() = description.back() = 0;
    SetName(name.data());
    SetCreator(creator.data());
    SetDescription(description.data());
    if (FAILED(informed)) return false;

    const auto properties = RefPtr<CNQHeader>::Adopt(CNQHeader::Create());
    if (!properties) return false;
    uint32_t mask = EffectMask;
    uint8_t wantsSpectrum = WantsSpectrum ? 1 : 0;  // a byte, since a plug-in may store more than 0 and 1
    const HRESULT described = held->GetCapabilities(&mask, reinterpret_cast<bool*>(&wantsSpectrum), properties.Get());
    EffectMask = mask;
    WantsSpectrum = wantsSpectrum != 0;
    if (FAILED(described)) return false;

    uint32_t value = 0;
    SupportsConfigure = SUCCEEDED(properties->GetNumber(kPropertySupportConfigure, &value)) && value != 0;
    SetRenderMode(SUCCEEDED(properties->GetNumber(kPropertyRenderMode, &value)) ? value : kRenderToBuffer);
    HandOver(held);
    return true;
}

void CVizPlugin::HandOver(IMPAVisualization* held) {
    held->SetHostString(HostString.GetText());
}

void CVizPlugin::HandOver(IMPAVisualization2* held) {
    const auto preferences = RefPtr<IKVAPreferences>::Adopt(maker_ ? maker_->MakePreferences() : nullptr);
    if (preferences) held->SetPreferences(preferences.Get());
}

template <typename Call>
HRESULT CVizPlugin::Forward(Call call) {
    const CallScope scope(*this);
    if (!scope.MayCall()) return S_OK;
    try {
        IMPAVisualization* const one = Visualization;
        return one ? call(one) : call(Visualization2.load());
    } catch (...) {
        return E_FAIL;  // a plug-in's fault must not end the host's thread
    }
}

template <typename Call>
HRESULT CVizPlugin::ForwardToTwo(Call call) {
    const CallScope scope(*this);
    IMPAVisualization2* const two = Visualization2;
    if (!scope.MayCall() || !two) return S_OK;
    try {
        return call(two);
    } catch (...) {
        return E_FAIL;
    }
}

bool CVizPlugin::DropInterfaces() {
    ready_ = false;
    const bool isUnused = WaitUntil(PatienceFromNow(), [this] { return calls_ == 0; });
    IMPAVisualization* const one = Visualization.exchange(nullptr);
    IMPAVisualization2* const two = Visualization2.exchange(nullptr);
    if (isUnused && one) one->Release();
    if (isUnused && two) two->Release();
    return isUnused;
}

bool CVizPlugin::LockBefore(std::chrono::steady_clock::time_point deadline) {
    return WaitUntil(deadline, [this] { return Lock->TryLock() == S_OK; });
}

}  // namespace tdkviz
