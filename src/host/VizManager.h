// CVizManager: the one object that holds the running add-on together.
//
// It owns the audio processor, the plug-in list, both effect records, the worker and the timer, and knows
// every view. Its sources: VizManager.cpp (life, interfaces, switches), VizManagerViews.cpp (views and
// frames), VizManagerPlugins.cpp (the list and its watcher), VizManagerPlayback.cpp (the player).
//
// Invariants:
//  1. The reference count owns nothing: the manager lives as long as its owner keeps it.
//  2. Mutex guards PluginsByPath alone; ViewsLock guards Views and retired_; ReceiversLock guards the
//     two receiver maps; listLock_ guards who builds the list. Each is held for a lookup or a copy only,
//     never across a call into a plug-in, a receiver or a view.
//  3. Whoever walks views or receivers walks a counted copy in the map's order, so what is removed
//     meanwhile stays alive until the walk is over.
#pragma once

#include <windows.h>

#include <atomic>
#include <memory>
#include <vector>

#include <tdkviz/analysis_frame.h>
#include <tdkviz/host.h>
#include <tdkviz/viz.h>

#include "src/audio/AudioProcessor.h"
#include "src/host/FrameWorker.h"
#include "src/host/Viz.h"
#include "src/host/VizTimer.h"
#include "src/plugins/PluginDirChangeReceiver.h"
#include "src/plugins/PluginRetriever.h"
#include "src/plugins/PreferencesMaker.h"
#include "src/render/VizEffectParams.h"
#include "src/settings/SettingsModel.h"
#include "src/support/Handle.h"
#include "src/support/Mutex.h"
#include "src/support/NQMaps.h"
#include "src/support/NQString.h"
#include "src/support/RefPtr.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

// What the manager needs of the component that made it.
class ManagerOwner {
public:
    // The effects were switched on or off: the button's picture changes. Any thread.
    virtual void BitmapChanged() = 0;
    // A view took another plug-in: an open dialog shows it. Any thread.
    virtual void CurrentPluginChanged() = 0;
    // The host's common class factory, or null.
    virtual IKVAClassFactory* GetClassFactory() = 0;
    virtual void SetDialogParent(const MPAVizWindowRecord& record) = 0;
    virtual void UseDialogParent(bool use) = 0;

protected:
    ~ManagerOwner() = default;
};

class CVizManager final : public IMPAVizMgr,
                          public IMPAVizParentMgr,
                          public IPluginDirChangeReceiver,
                          public IMPAAdvancedConfiguration,
                          public ITKStateObserver,
                          public ITKTrackObserver,
                          public ITKPlaybackEngineObserver,
                          public SettingsModel,
                          private FrameWorkerClient,
                          private VizOwner,
                          private PreferencesMaker {
public:
    // `hostContext` may be null: no player then, and no frames. `owner` outlives the manager. [host]
    CVizManager(HMODULE module, IUnknown* hostContext, ManagerOwner* owner);
    // Takes everything down in order: player, watcher, timer, worker, audio, settings, plug-ins. [host]
    ~CVizManager();
    CVizManager(const CVizManager&) = delete;
    CVizManager& operator=(const CVizManager&) = delete;

    // IUnknown
    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IMPAVizMgr [host]
    HRESULT CreateVizWindow(IMPAVizWindow** view, uint32_t* parent) override;
    HRESULT DestroyVizWindow(IMPAVizWindow* view) override;
    HRESULT NoOperation(uint32_t value) override;
    uint32_t GetPluginCount() override;
    HRESULT GetPluginInfo(uint16_t index, char* name, char* path, uint32_t size) override;
    HRESULT GetPluginIndex(const char* path, uint32_t* index) override;
    HRESULT GetPluginName(const char* path, char* name, uint32_t size) override;
    HRESULT AddListReceiver(IUnknown* receiver) override;
    HRESULT RemoveListReceiver(IUnknown* receiver) override;
    int32_t GetAlwaysOnTop() override;
    HRESULT AddConfigReceiver(IUnknown* receiver) override;
    HRESULT RemoveConfigReceiver(IUnknown* receiver) override;

    // IMPAVizParentMgr [host]
    HRESULT SetDialogParent(MPAVizWindowRecord* record) override;
    HRESULT UseDialogParent(bool use) override;

    // IPluginDirChangeReceiver [watch]
    void OnPluginAdded(CVizPlugin* plugin) override;
    void OnPluginRemoved(CVizPlugin* plugin) override;
    void OnPluginStillGone(CVizPlugin* plugin) override;

    // IMPAAdvancedConfiguration [host]
    HRESULT GetConfiguration(IKVAValues** values) override;
    HRESULT SetConfiguration(IKVAValues* values) override;

    // ITKStateObserver, ITKTrackObserver, ITKPlaybackEngineObserver [host]
    HRESULT OnStateChange(uint32_t oldState, uint32_t newState) override;
    HRESULT OnStateDetail(uint32_t value) override;
    HRESULT OnTrackChange(IUnknown* track) override;
    HRESULT OnEngineChange(IUnknown* engine) override;

    // SettingsModel [host]
    VizEffectParams& GetUserEffects() override { return UserEffects; }
    bool IsEffectsOn() const override { return EffectsOn; }
    void SetEffectsOn(bool on) override;
    bool IsRandomizeOn() const override { return Randomize; }
    void SetRandomize(bool on) override;
    bool IsAlwaysOnTopOffered() const override { return ShowAlwaysOnTop; }
    void SetAlwaysOnTop(bool on) override;
    bool IsDirectDrawUsed() const override { return UseDirectDraw; }
    void SetUseDirectDraw(bool use) override { UseDirectDraw = use; }
    uint32_t GetFrameRate() const override { return FrameRate; }
    void ApplyFrameRate(uint32_t rate) override;
    CNQString GetCurrentPluginPath() override;
    CVizPlugin* FindPlugin(const char* path) override;

    // For the component. [host]
    // The context of the host, for a manager that was made without one: from here on it plays and is observed.
    void TakeContext(IUnknown* hostContext);
    void EnsurePluginList();
    VizEffectParams* CurrentEffects();
    void RegisterObservers();
    void StartVisualization();
    void StopVisualization();

private:
    using ViewList = std::vector<RefPtr<CViz>>;

    // VizOwner
    void SetCurrentPlugin(const char* path) override;
    void ViewShown() override { somethingToShow_ = true; }
    // PreferencesMaker
    IKVAPreferences* MakePreferences() override;
    // FrameWorkerClient, on the worker thread
    void MakeWindows() override;
    void DestroyWindows() override;
    void RunFrame() override;
    bool HasSomethingToShow() const override { return somethingToShow_; }

    void LoadStoredSettings();
    void SaveStoredSettings();
    void GiveViewsCurrentEffects();
    CVizTimer* FindTimer();
    CVizTimer& EnsureTimer();

    // Counted copies of what stands now; `views` is emptied first and keeps its capacity.
    void CopyViews(ViewList& views) const;
    ViewList CopyViews() const;
    bool HasViews() const;
    void EndRemainingViews();
    void ReleaseRemainingViews();
    template <typename Receiver>
    std::vector<RefPtr<Receiver>> CopyReceivers(const CNQMapPtrToPtr& receivers) const;

    void DrawViews();
    bool IsPaletteDisplay() const;
    void BlankVisibleViews();

    bool MayBuildList();
    CVizPlugin* LookupPlugin(const char* path) const;
    void FillPluginsByPath();
    bool TellListReceivers(HRESULT (IMPAListReceiver::*news)(const char*), const CVizPlugin& plugin) const;

    void TakePlayer(IUnknown* hostContext);
    void StartIfUnderWay();
    ITKPlaybackEngine* GetEngine() const;
    bool CanVisualize() const;
    void ReadAudioSyncFactor(IUnknown* engine);
    void UnregisterObservers();

    // The locks come first: they outlive whatever may still use them from another thread.
    KVAWinMutex listLock_;
    KVAWinMutex timerLock_;
    KVAWinMutex pathLock_;
    mutable KVAWinMutex ViewsLock;
    mutable KVAWinMutex ReceiversLock;

    std::unique_ptr<KVAMutex> Mutex;
    RefCount References;
    std::unique_ptr<CVizAudioProcessor> AudioProcessor;
    VizAnalysisFrame AnalysisFrame = {};  // the worker's own
    RefPtr<ITKPlayer> Player;
    bool ObserversRegistered = false;  // [host]
    Relaxed<int32_t> AlwaysOnTop = 0;
    Relaxed<bool> ShowAlwaysOnTop = false;
    VizEffectParams UserEffects;
    VizEffectParams RandomEffects;
    Relaxed<bool> UseDirectDraw = false;
    Relaxed<bool> Randomize = true;
    Relaxed<uint32_t> RandomSeed = 0u;
    CPluginRetrieverSet Retrievers;
    const HMODULE Module;
    CNQMapPtrToPtr ConfigReceivers;  // guarded by ReceiversLock
    CNQMapPtrToPtr Views;            // guarded by ViewsLock; holds the first reference of each view
    Relaxed<PluginList*> Plugins;    // of the first retriever; null until EnsurePluginList
    Relaxed<bool> PluginListReady = false;
    CNQMapPtrToPtr ListReceivers;     // guarded by ReceiversLock
    CNQMapStringToPtr PluginsByPath;  // guarded by Mutex
    Relaxed<uint32_t> FramePeriod = 50u;
    Relaxed<uint32_t> FrameRate = 20u;
    Relaxed<bool> EffectsOn = false;
    FrameWorker Worker;
    std::unique_ptr<CVizTimer> Timer;  // made once, under timerLock_
    CNQString CurrentPluginPath;       // guarded by pathLock_
    ManagerOwner* const Owner;

    DWORD listBuilder_ = 0;                                // guarded by listLock_; the thread that builds, 0 before
    const Handle listBuilt_ = Handle::ManualResetEvent();  // set with PluginListReady
    ViewList retired_;     // guarded by ViewsLock; views whose windows the worker still has to destroy
    ViewList frameViews_;  // the worker's own
    // Cleared by a frame that finds no visible view, so that a hidden view costs no frames. In order with
    // CViz::Visible, hence not relaxed.
    std::atomic<bool> somethingToShow_{false};
    Relaxed<bool> clearFrame_ = false;  // the worker zeroes AnalysisFrame before it reads audio again
};

}  // namespace tdkviz
