// CVizPlugin: one plug-in file, whether its library is in memory or not.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include <tdkviz/plugin.h>

#include "src/plugins/KeptText.h"
#include "src/support/Module.h"
#include "src/support/Mutex.h"
#include "src/support/NQString.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

class PreferencesMaker;

// Knows the plug-in's description, from the cache or from its library, loads and frees the library, and
// forwards calls to the interface that the library offered.
//
// 1. At most one of the two interfaces is held.
// 2. Calls are forwarded only to an object that was accepted. It is let go, and its library freed, only when
//    no forwarded call is under way. One that doesn't end in kPatience leaves both in memory for good.
// 3. Text that was given out stays good while the wrapper lives.
// 4. Nothing is forwarded between Withdraw and the next load.
//
// Any thread may call anything. Callers hold LockPlugin around drawing, configuring and a change of plug-in;
// clicks, and SetActive and SetWindow outside of a change, come without it. Owned by the plug-in list.
class CVizPlugin {
public:
    static constexpr std::chrono::milliseconds kPatience{100};

    // `maker` (may be null) outlives the wrapper. Asks `host` (may be null) for the file's text and touches neither
    // the library nor the registry.
    explicit CVizPlugin(const char* path, PreferencesMaker* maker = nullptr, IUnknown* host = HostContext);
    CVizPlugin(const CVizPlugin&) = delete;
    CVizPlugin& operator=(const CVizPlugin&) = delete;

    virtual ~CVizPlugin();
    // Loads and frees the library once if nothing is known yet.
    virtual bool GetSupportsConfigure();
    // Both load the library if it isn't in memory, and leave it there.
    virtual bool GetWantsSpectrum();
    virtual uint32_t GetEffectMask();
    // Forwarded; S_OK when no interface is held.
    virtual HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                         VizAnalysisFrame* frame);
    virtual HRESULT OnClick(uint32_t x, uint32_t y, uint32_t flags);
    // As known; loads nothing.
    virtual uint32_t GetRenderMode();
    // Second half of a load: makes and describes the library's object. Under the lock.
    virtual bool CreateVisualization();
    // Runs right before the library is freed.
    virtual void OnUnload() {}

    void LockPlugin() TDKVIZ_UNCHECKED { Lock->Lock(); }
    void UnlockPlugin() TDKVIZ_UNCHECKED { Lock->Unlock(); }

    const char* GetPath() const { return Path.GetText(); }
    // Subkey of HKEY_CURRENT_USER; empty if the file's name is too long for the cache.
    const char* GetCacheKey() const { return CacheKey.GetText(); }
    const char* GetChecksum() const { return Checksum.Get(); }
    // In memory, or found not to be loadable.
    bool IsLoaded() const { return Loaded; }
    // In memory with an object that was accepted: can become a view's plug-in.
    bool IsReady() const { return ready_; }
    // In memory and told that it goes: its Unload is on the way.
    bool IsWithdrawn() const { return withdrawn_; }
    // Another number, another object.
    uint32_t GetLoadCount() const { return loadCount_; }
    // Some view's window was given to the object, and none was withdrawn since.
    bool HasWindow() const { return hasWindow_; }
    bool IsInfoValid() const { return InfoValid; }
    // These load and free the library once if nothing is known yet. What couldn't be loaded is tried again when its
    // file has changed: it may have been half copied.
    const char* GetName();
    const char* GetCreator();
    const char* GetDescription();

    // Texts are cut to 256 characters.
    void SetName(const char* text);
    void SetCreator(const char* text);
    void SetDescription(const char* text);
    void SetChecksum(const char* text);
    void SetSupportsConfigure(bool supports) { SupportsConfigure = supports; }
    void SetRenderMode(uint32_t mode) { RenderMode = mode == kRenderToWindow ? kRenderToWindow : kRenderToBuffer; }
    void SetInfoValid() { InfoValid = true; }

    // Loads the library, once more if it is in memory, and writes what it tells to the cache.
    bool Load();
    // True if the plug-in is ready or could be loaded now.
    bool MakeReady();
    void Unload();
    // Close and Unload for a shutdown. False if the lock can't be had before `deadline`, as when a thread was
    // ended inside the plug-in: object and library then stay in memory for good.
    bool Retire(std::chrono::steady_clock::time_point deadline) TDKVIZ_UNCHECKED;

    // Shows the plug-in's dialog. E_NOTIMPL if it has none, E_FAIL for a null record or without a library.
    HRESULT Configure(MPAVizWindowRecord* parent);
    // These reach IMPAVisualization2 alone; S_OK when it isn't held.
    HRESULT SetActive(bool active);
    void SetWindow(MPAVizWindowRecord* target);
    HRESULT DrawToWindow(MPAVizWindowRecord* target, VizAnalysisFrame* frame);
    // Tells a loaded plug-in that asks for it that it is about to go. S_OK.
    HRESULT Close();
    // What comes before an Unload on another thread: takes the window away and closes. Waits for the frame that is
    // under way, but no longer than kThreadAnswerLimit: the plug-in may hang in it.
    void Withdraw() TDKVIZ_UNCHECKED;

private:
    class CallScope;

    void AskHostString(IUnknown* host);
    void LoadForAnswer();
    void LoadForDescription();
    bool HasChangedSinceTried() const;
    bool LoadLocked();
    void WriteDescription() const;
    // Takes over whichever interface the object offers.
    bool HoldInterface(IUnknown* object);
    template <typename Held>
    bool SetUp(Held* held);
    void HandOver(IMPAVisualization* held);
    void HandOver(IMPAVisualization2* held);
    // Calls with whichever interface is held.
    template <typename Call>
    HRESULT Forward(Call call);
    // Calls with Visualization2 if that is held.
    template <typename Call>
    HRESULT ForwardToTwo(Call call);
    // Ends the forwarding and lets go of the interface. False if a call doesn't end: the object then stays.
    bool DropInterfaces();
    bool LockBefore(std::chrono::steady_clock::time_point deadline) TDKVIZ_UNCHECKED;

    CNQString Path;
    CNQString HostString;
    std::atomic<IMPAVisualization*> Visualization{nullptr};    // a reference
    std::atomic<IMPAVisualization2*> Visualization2{nullptr};  // a reference
    HMODULE Module = nullptr;
    std::atomic<bool> Loaded{false};
    std::atomic<bool> InfoValid{false};
    KeptText Name;
    KeptText Creator;
    KeptText Description;
    KeptText Checksum;
    Relaxed<bool> SupportsConfigure;
    Relaxed<bool> WantsSpectrum;
    Relaxed<uint32_t> EffectMask{kEffectsAll};
    CNQString CacheKey;
    Relaxed<uint32_t> RenderMode{kRenderToBuffer};
    std::unique_ptr<KVAMutex> Lock;

    PreferencesMaker* const maker_;
    CNQString triedStamp_;            // of the file when it was loaded last; under the lock
    std::atomic<bool> ready_{false};  // calls are forwarded
    std::atomic<bool> withdrawn_{false};
    std::atomic<bool> hasWindow_{false};
    Relaxed<uint32_t> loadCount_;    // written under the lock
    std::atomic<int32_t> calls_{0};  // forwarded calls under way
    bool abandoned_ = false;         // left in memory by Retire
};

}  // namespace tdkviz
