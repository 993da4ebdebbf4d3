// The view's output window, from its making to its end, and the frames that go there.
#include "src/host/Viz.h"
#include "src/plugins/VizPlugin.h"
#include "src/render/DDVizWindow.h"
#include "src/support/ThreadLimits.h"

namespace tdkviz {

namespace {

constexpr int32_t kFrameBitsPerPixel = 32;

}  // namespace

// ---- The output window, on the worker thread

void CViz::MakeWindow(bool useDirectDraw) {
    std::unique_ptr<CVizWindow> window;
    if (useDirectDraw) {
        window = std::make_unique<CDDVizWindow>(Module, ParentWindow);
    } else {
        window = std::make_unique<CVizWindow>(Module, ParentWindow);
    }
    window->SetPluginUnloader(this);
    if (!EffectEngine) EffectEngine = std::make_unique<VizEffectEngine>();

    bool showNow = false;
    int32_t width = 0;
    int32_t height = 0;
    {
        const MutexLock lock(&StateLock);
        window->SetPlaying(Active);
        Window = window.release();
        // A window-mode plug-in that came before the window: no buffers for it from the start.
        if (CVizPlugin* plugin = CurrentPlugin) Window->SetDrawsFrames(plugin->GetRenderMode() != kRenderToWindow);
        showNow = ShowPending;
        width = PendingWidth;
        height = PendingHeight;
    }
    if (showNow) Show(width, height);
    NeedsWindow = false;
    // Taken back while its end was on the way to another view's window, when this one had none.
    if (CVizPlugin* plugin = CurrentPlugin; plugin && plugin->IsWithdrawn()) UnloadPlugin(plugin);

    const MutexLock lock(&StateLock);
    for (; !ClickQueue.empty(); ClickQueue.pop_front()) Window->AddClickReceiver(ClickQueue.front());
    for (; !RightClickQueue.empty(); RightClickQueue.pop_front()) {
        Window->AddRightClickReceiver(RightClickQueue.front());
    }
}

void CViz::DestroyOutput() {
    EffectEngine.reset();
    std::unique_ptr<CVizWindow> window;
    {
        const MutexLock lock(&StateLock);
        window.reset(Window);
        Window = nullptr;
    }
    // Another view that shows the plug-in gives it its own window at the next frame.
    if (CVizPlugin* plugin = CurrentPlugin; plugin && GivenWindow(*plugin)) GiveWindow(*plugin, nullptr);
    ForgetOwner();
    if (window) {
        UnloadWaitingPlugins(window->GetWindowHandle());
        window->Destroy();
    }
    DestroyRotateButton(false);
    NeedsDestroy = false;
}

// What waits for the window's own thread would be lost with the window.
void CViz::UnloadWaitingPlugins(HWND window) {
    MSG message;
    while (window && PeekMessageA(&message, window, kMessageUnload, kMessageUnload, PM_REMOVE)) {
        if (message.wParam) UnloadPlugin(reinterpret_cast<CVizPlugin*>(message.wParam));
    }
}

void CViz::ForgetOwner() {
    const MutexLock lock(&StateLock);
    CurrentPlugin = nullptr;
    Effects = nullptr;
    Plugins = nullptr;
    Owner = nullptr;
}

bool CViz::WaitForDestruction() const {
    return WaitForAnswer(OutputGone->Get());
}

void CViz::Blank() {
    if (CVizWindow* window = Window) window->Blank();
}

// ---- Frames

void CViz::SetActive(bool active) {
    {
        const MutexLock lock(&StateLock);
        Active = active;
        if (CVizWindow* window = Window) window->SetPlaying(active);
    }
    if (CVizPlugin* plugin = CurrentPlugin) plugin->SetActive(active);
}

bool CViz::WantsSpectrum() const {
    CVizPlugin* plugin = CurrentPlugin;
    if (!Visible || !Active || !plugin || !Window) return false;
    // The question would load one that another view has unloaded.
    plugin->LockPlugin();
    const bool wants = plugin->IsReady() && plugin->GetWantsSpectrum();
    plugin->UnlockPlugin();
    return wants;
}

void CViz::DrawFrame(VizAnalysisFrame& frame) {
    CVizPlugin* plugin = CurrentPlugin;
    CVizWindow* window = Window;
    if (!Active || !plugin || !window) return;
    plugin->LockPlugin();
    window->BeginFrame();
    if (plugin->IsReady() && IsReadyForFrames(*plugin)) RunPlugin(*plugin, *window, frame);
    plugin->UnlockPlugin();
    // What came for the window while the plug-in painted is served here, without the plug-in's lock.
    window->EndFrame();
}

void CViz::RunPlugin(CVizPlugin& plugin, CVizWindow& window, VizAnalysisFrame& frame) {
    if (plugin.GetRenderMode() == kRenderToWindow) {
        const HWND target = window.GetWindowHandle();
        if (!target) return;
        // Another view may have taken the plug-in's window away when it ended or was hidden.
        if (!plugin.HasWindow() || GivenWindow(plugin) != target) GiveWindow(plugin, target);
        MPAVizWindowRecord record = RecordOf(target);
        plugin.DrawToWindow(&record, &frame);
        return;
    }
    if (!window.GetFrontPixels()) return;
    RunEffects(plugin, window);
    // The window may change the frame's place, size and pitch here.
    void* const pixels = window.GetFrontPixels();
    if (!pixels) return;
    plugin.Draw(pixels, window.GetFrameWidth(), window.GetFrameHeight(), window.GetFramePitch(), kFrameBitsPerPixel,
                &frame);
    window.ReleaseFront();
    window.Present(true);
}

// The effects run over the last picture, before the plug-in paints the next one.
void CViz::RunEffects(CVizPlugin& plugin, CVizWindow& window) {
    VizEffectParams* effects = Effects;
    const uint32_t mask = plugin.GetEffectMask();
    if (!effects || !EffectEngine || mask == 0) return;
    void* const back = window.GetBackPixels();
    // Asked for behind the other one, which may have moved both.
    void* const front = window.GetFrontPixels();
    const bool changed = front && back &&
                         EffectEngine->ApplyEffects(front, back, window.GetFrameWidth(), window.GetFrameHeight(),
                                                    window.GetFrameStride(), *effects, mask);
    if (changed) window.SpreadRows(back);
    window.ReleaseBack();
    window.ReleaseFront();
    if (changed) window.SwapBuffers();
}

}  // namespace tdkviz
