// CViz: one visualization on screen, as the host holds it. Ties together an output window, the plug-in
// that paints, the effect record that applies, and an effect engine. Its sources: Viz.cpp (life, the host's
// operations), VizFrames.cpp (output window, frames), VizPlugins.cpp (the current plug-in).
//
// Invariants:
//  1. The output window is made, resized, drawn and destroyed on the worker thread only. Other threads
//     reach it by posted and sent messages.
//  2. What the host asks for before the window stands is kept under StateLock and carried out when it does.
//  3. StateLock is never held across a call into a plug-in or a receiver, nor across a call that waits
//     for another thread.
//  4. At most one plug-in lock is held at a time, so two views that trade plug-ins can't block each other.
//  5. A plug-in's object gets no frame of this view before it has got the view's SetActive and, in window mode, its
//     window. Another view may have it unloaded and loaded anew meanwhile, and may take the window away.
#pragma once

#include <windows.h>

#include <list>
#include <memory>

#include <tdkviz/analysis_frame.h>
#include <tdkviz/viz.h>

#include "src/render/VizEffectEngine.h"
#include "src/render/VizWindow.h"
#include "src/support/Handle.h"
#include "src/support/Mutex.h"
#include "src/support/RefPtr.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

class CVizPlugin;
class PluginList;

// What a view needs of the one who made it.
class VizOwner {
public:
    // A view took this plug-in. Any thread; no lock of the view is held.
    virtual void SetCurrentPlugin(const char* path) = 0;
    // The view is visible from here on. Any thread.
    virtual void ViewShown() = 0;

protected:
    ~VizOwner() = default;
};

class CViz final : public IMPAVizWindow,
                   public IVizClickReceiver,
                   public IVizRightClickReceiver,
                   public PluginUnloader {
public:
    CViz(HMODULE module, VizOwner* owner, PluginList* plugins, VizEffectParams* effects, HWND parent);

    // IUnknown. The last Release destroys the view.
    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IMPAVizWindow [host]
    HRESULT Show(int32_t width, int32_t height) override;
    HRESULT Resize(int32_t width, int32_t height) override;
    HRESULT Hide() override;
    HRESULT GetCurrentPlugin(char* path, uint32_t size) override;
    HRESULT SelectPlugin(const char* path) override;
    HRESULT SetViewFlags(uint32_t flags) override;
    HRESULT AddClickReceiver(IUnknown* receiver) override;
    HRESULT AddRightClickReceiver(IUnknown* receiver) override;
    HRESULT RemoveClickReceiver(IUnknown* receiver) override;
    HRESULT RemoveRightClickReceiver(IUnknown* receiver) override;

    // From the output window, on the worker thread.
    void OnLeftClick(uint32_t x, uint32_t y, uint32_t flags) override;
    void OnRightClick(uint32_t, uint32_t) override {}
    void UnloadPlugin(CVizPlugin* plugin) override;

    // For the manager, any thread.
    void SetActive(bool active);
    void SetEffects(VizEffectParams* effects) { Effects = effects; }
    CVizPlugin* GetPlugin() const { return CurrentPlugin.Load(); }
    bool IsVisible() const { return Visible; }
    // True if `plugin` is or becomes the current one.
    bool ChangePlugin(CVizPlugin* plugin);
    // Ends with no plug-in; the view paints nothing.
    void ClearPlugin();
    // Takes the plug-in off the shared list and goes to its neighbour. [watch]
    void DropPlugin(CVizPlugin* plugin);

    // For the worker, on its thread.
    bool NeedsOutput() const { return NeedsWindow; }
    void MakeWindow(bool useDirectDraw);
    // From here on no window is made for the view any more.
    void MarkForDestruction() {
        NeedsWindow = false;
        NeedsDestroy = true;
    }
    bool IsMarkedForDestruction() const { return NeedsDestroy; }
    void DestroyOutput();
    // Set by whoever has called DestroyOutput and let go of the view.
    std::shared_ptr<Handle> GetOutputGone() const { return OutputGone; }
    // The view has ended, or the manager goes before it: nothing of the manager's is used from here on.
    void ForgetOwner();
    bool WantsSpectrum() const;
    void Blank();
    void DrawFrame(VizAnalysisFrame& frame);
    // Waits until the output has gone. True if it did in time. [host]
    bool WaitForDestruction() const;

private:
    ~CViz();

    using ReceiverQueue = std::list<IUnknown*>;
    // What has been said to which object.
    struct Connection {
        CVizPlugin* Plugin = nullptr;
        uint32_t LoadCount = 0;
        HWND Window = nullptr;  // null in buffer mode, and while the view is hidden
    };

    static MPAVizWindowRecord RecordOf(HWND window);
    bool MakeRotateButton(int32_t width, int32_t height);
    void DestroyRotateButton(bool fromLastRelease);
    void ShowWindowOf(CVizWindow& window, int32_t width, int32_t height);
    void RunPlugin(CVizPlugin& plugin, CVizWindow& window, VizAnalysisFrame& frame);
    void RunEffects(CVizPlugin& plugin, CVizWindow& window);
    // These four with the plug-in's lock held.
    bool TakePlugin(CVizPlugin& plugin, CVizPlugin*& old);
    void ConnectPlugin(CVizPlugin& plugin);
    void RevivePlugin(CVizPlugin& plugin);
    bool IsReadyForFrames(CVizPlugin& plugin);
    bool IsConnected(const CVizPlugin& plugin) const;
    void GiveWindow(CVizPlugin& plugin, HWND window);
    HWND GivenWindow(const CVizPlugin& plugin) const;
    void ReleasePlugin(CVizPlugin& plugin);
    bool PostUnload(CVizPlugin& plugin);
    void UnloadWaitingPlugins(HWND window);

    Relaxed<CVizWindow*> Window;  // owned; published and withdrawn under StateLock
    Relaxed<VizOwner*> Owner;     // null once the view has ended
    const HWND ParentWindow;
    const HMODULE Module;
    ReceiverQueue ClickQueue;            // guarded by StateLock
    ReceiverQueue RightClickQueue;       // guarded by StateLock
    Relaxed<PluginList*> Plugins;        // null once the view has ended
    Relaxed<CVizPlugin*> CurrentPlugin;  // null once the view has ended; set under StateLock
    Connection connection_;              // guarded by StateLock
    RefCount References;
    Relaxed<uint32_t> Flags = 0u;
    Relaxed<VizEffectParams*> Effects;
    std::unique_ptr<VizEffectEngine> EffectEngine;  // worker's
    Relaxed<bool> Visible = false;
    Relaxed<HWND> RotateButton;
    Relaxed<bool> Active = false;
    Relaxed<bool> NeedsWindow = true;
    Relaxed<bool> NeedsDestroy = false;
    bool ShowPending = false;                  // guarded by StateLock
    int32_t PendingWidth = 0;                  // guarded by StateLock
    int32_t PendingHeight = 0;                 // guarded by StateLock
    const std::shared_ptr<Handle> OutputGone;  // manual-reset
    mutable KVAWinMutex StateLock;
};

}  // namespace tdkviz
