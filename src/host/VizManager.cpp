#include "src/host/VizManager.h"

#include "src/audio/FrameRate.h"
#include "src/render/EffectRandomizer.h"
#include "src/settings/PrefsWrapper.h"
#include "src/settings/SettingsStore.h"

namespace tdkviz {

namespace {

constexpr uint32_t kMapBlockSize = 10;
constexpr uint32_t kMillisecondsPerSecond = 1000;

// Where plug-ins keep their own texts, apart from the add-on's settings.
constexpr char kPreferencesKey[] = "Software\\Corvane\\Tunedeck\\1.0\\Preferences";

}  // namespace

CVizManager::CVizManager(HMODULE module, IUnknown* hostContext, ManagerOwner* owner)
    : Module(module),
      ConfigReceivers(kMapBlockSize),
      Views(kMapBlockSize),
      ListReceivers(kMapBlockSize),
      PluginsByPath(kMapBlockSize),
      Worker(*this),
      Owner(owner) {
    AudioProcessor = std::make_unique<CVizAudioProcessor>(hostContext);
    AudioProcessor->Attach();
    KVAMutex* mutex = nullptr;
    CreateInstanceMutex(&mutex);
    Mutex.reset(mutex);
    SetDefaultEffects(UserEffects);
    SetNeutralEffects(RandomEffects);
    LoadStoredSettings();
    ApplyFrameRate(FrameRate);
    TakePlayer(hostContext);
}

CVizManager::~CVizManager() {
    UnregisterObservers();
    Retrievers.StopWatching();
    Timer.reset();
    EndRemainingViews();
    Worker.Stop();
    ReleaseRemainingViews();
    CVizAudioProcessor::Retire(std::move(AudioProcessor));
    SaveStoredSettings();
    Retrievers.UnloadAll();
    Player.Reset();
}

// ---- IUnknown

HRESULT CVizManager::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id == kIID_IUnknown || id == kIID_IMPAVizMgr) {
        *out = static_cast<IMPAVizMgr*>(this);
    } else if (id == kIID_IMPAAdvancedConfiguration) {
        *out = static_cast<IMPAAdvancedConfiguration*>(this);
    } else if (id == kIID_IMPAVizParentMgr) {
        *out = static_cast<IMPAVizParentMgr*>(this);
    } else if (id == kIID_ITKStateObserver) {
        *out = static_cast<ITKStateObserver*>(this);
    } else if (id == kIID_ITKTrackObserver) {
        *out = static_cast<ITKTrackObserver*>(this);
    } else if (id == kIID_ITKPlaybackEngineObserver) {
        *out = static_cast<ITKPlaybackEngineObserver*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG CVizManager::AddRef() {
    return References.Add();
}

ULONG CVizManager::Release() {
    const int32_t count = References.Remove();
    return count > 0 ? static_cast<ULONG>(count) : 0;
}

// ---- Settings

void CVizManager::LoadStoredSettings() {
    StoredSettings stored;
    stored.UserEffects = UserEffects;
    stored.FrameRate = FrameRate;
    LoadSettings(stored);
    UserEffects = stored.UserEffects;
    ApplyFrameRate(stored.FrameRate);
    AlwaysOnTop = stored.AlwaysOnTop ? 1 : 0;
    EffectsOn = stored.EffectsOn;
    Randomize = stored.Randomize;
    RandomSeed = stored.RandomSeed;
    UseDirectDraw = stored.UseDirectDraw;
}

void CVizManager::SaveStoredSettings() {
    StoredSettings stored;
    stored.UserEffects = UserEffects;
    stored.FrameRate = FrameRate;
    stored.AlwaysOnTop = AlwaysOnTop != 0;
    stored.EffectsOn = EffectsOn;
    stored.Randomize = Randomize;
    stored.RandomSeed = RandomSeed;
    stored.UseDirectDraw = UseDirectDraw;
    SaveSettings(stored);
}

void CVizManager::ApplyFrameRate(uint32_t rate) {
    SetAnalysisFrameRate(rate);
    const uint32_t applied = GetAnalysisFrameRate();
    FrameRate = applied;
    FramePeriod = kMillisecondsPerSecond / applied;
    const MutexLock lock(&timerLock_);
    if (Timer) Timer->SetPeriod(FramePeriod);
}

IKVAPreferences* CVizManager::MakePreferences() {
    auto* preferences = new (std::nothrow) CIKVAPrefsWrapper(kPreferencesKey);
    if (preferences) preferences->AddRef();
    return preferences;
}

HRESULT CVizManager::GetConfiguration(IKVAValues** values) {
    IKVAClassFactory* factory = Owner ? Owner->GetClassFactory() : nullptr;
    if (!factory || !values) return E_FAIL;
    RefPtr<IKVAValues> bag;
    const HRESULT made = factory->CreateInstance(kIID_IKVAValues, bag.ReceiveVoid());
    if (FAILED(made)) return made;
    if (!bag) return E_FAIL;
    bag->SetNumber(kConfigShowAlwaysOnTop, ShowAlwaysOnTop ? 1 : 0);
    bag->SetNumber(kConfigFrameRate, FrameRate);
    bag->SetNumber(kConfigEffects, EffectsOn ? 1 : 0);
    const HRESULT result = bag->SetNumber(kConfigRandomize, Randomize ? 1 : 0);
    if (SUCCEEDED(result)) *values = bag.Detach();
    return result;
}

HRESULT CVizManager::SetConfiguration(IKVAValues* values) {
    if (!values) return S_OK;
    uint32_t number = 0;
    if (SUCCEEDED(values->GetNumber(kConfigShowAlwaysOnTop, &number))) ShowAlwaysOnTop = number != 0;
    if (SUCCEEDED(values->GetNumber(kConfigFrameRate, &number))) ApplyFrameRate(number);
    if (SUCCEEDED(values->GetNumber(kConfigEffects, &number))) SetEffectsOn(number != 0);
    if (SUCCEEDED(values->GetNumber(kConfigRandomize, &number))) SetRandomize(number != 0);
    return S_OK;
}

// ---- Switches

VizEffectParams* CVizManager::CurrentEffects() {
    if (Randomize) return &RandomEffects;
    return EffectsOn ? &UserEffects : &RandomEffects;
}

void CVizManager::GiveViewsCurrentEffects() {
    for (const RefPtr<CViz>& view : CopyViews()) view->SetEffects(CurrentEffects());
}

void CVizManager::SetEffectsOn(bool on) {
    if (on == EffectsOn) return;
    EffectsOn = on;
    if (Owner) Owner->BitmapChanged();
    if (!on) SetNeutralEffects(RandomEffects);
    GiveViewsCurrentEffects();
}

void CVizManager::SetRandomize(bool on) {
    if (on == Randomize) return;
    Randomize = on;
    GiveViewsCurrentEffects();
}

void CVizManager::SetAlwaysOnTop(bool on) {
    AlwaysOnTop = on ? 1 : 0;
    for (const auto& receiver : CopyReceivers<IMPAConfigReceiver>(ConfigReceivers)) {
        receiver->ConfigChanged("AlwaysOnTop", on ? "1" : "0");
    }
}

int32_t CVizManager::GetAlwaysOnTop() {
    return AlwaysOnTop;
}

void CVizManager::SetCurrentPlugin(const char* path) {
    {
        const MutexLock lock(&pathLock_);
        CurrentPluginPath = path;
    }
    if (Owner) Owner->CurrentPluginChanged();
}

CNQString CVizManager::GetCurrentPluginPath() {
    const MutexLock lock(&pathLock_);
    // A copy of its own: values that share their text must stay under one lock.
    return CNQString(CurrentPluginPath.GetText());
}

// ---- Receivers and the dialog's parent

template <typename Receiver>
std::vector<RefPtr<Receiver>> CVizManager::CopyReceivers(const CNQMapPtrToPtr& receivers) const {
    std::vector<RefPtr<Receiver>> copy;
    const MutexLock lock(&ReceiversLock);
    intptr_t position = receivers.GetStartPosition();
    while (position != 0) {
        uintptr_t key = 0;
        uintptr_t value = 0;
        receivers.GetNext(position, key, value);
        copy.emplace_back(static_cast<Receiver*>(reinterpret_cast<IUnknown*>(key)));
    }
    return copy;
}

template std::vector<RefPtr<IMPAListReceiver>> CVizManager::CopyReceivers(const CNQMapPtrToPtr&) const;

HRESULT CVizManager::AddListReceiver(IUnknown* receiver) {
    if (!receiver) return E_FAIL;
    const MutexLock lock(&ReceiversLock);
    ListReceivers.Set(reinterpret_cast<uintptr_t>(receiver), 0);
    return S_OK;
}

HRESULT CVizManager::RemoveListReceiver(IUnknown* receiver) {
    const MutexLock lock(&ReceiversLock);
    return ListReceivers.Remove(reinterpret_cast<uintptr_t>(receiver)) ? S_OK : E_FAIL;
}

HRESULT CVizManager::AddConfigReceiver(IUnknown* receiver) {
    if (!receiver) return E_FAIL;
    const MutexLock lock(&ReceiversLock);
    ConfigReceivers.Set(reinterpret_cast<uintptr_t>(receiver), 0);
    return S_OK;
}

HRESULT CVizManager::RemoveConfigReceiver(IUnknown* receiver) {
    const MutexLock lock(&ReceiversLock);
    return ConfigReceivers.Remove(reinterpret_cast<uintptr_t>(receiver)) ? S_OK : E_FAIL;
}

HRESULT CVizManager::SetDialogParent(MPAVizWindowRecord* record) {
    if (Owner && record) Owner->SetDialogParent(*record);
    return S_OK;
}

HRESULT CVizManager::UseDialogParent(bool use) {
    if (Owner) Owner->UseDialogParent(use);
    return S_OK;
}

HRESULT CVizManager::NoOperation(uint32_t) {
    return S_OK;
}

}  // namespace tdkviz
