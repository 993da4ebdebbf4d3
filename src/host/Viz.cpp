#include "src/host/Viz.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "src/host/ThreadLimits.h"
#include "src/plugins/PluginList.h"
#include "src/plugins/VizPlugin.h"

namespace tdkviz {

namespace {

constexpr int32_t kRotateStripHeight = 30;
constexpr int kRotateButtonId = 3333;
constexpr int kRotateButtonWidth = 50;
constexpr int kRotateButtonHeight = 25;
constexpr int kRotateButtonFromRight = 55;
constexpr int kRotateButtonFromBottom = 25;
constexpr int32_t kFrameBitsPerPixel = 32;
constexpr int32_t kLongestSide = 0x7FFC;  // what a window can have, in steps of 4

WORD CutSide(int32_t side) {
    return static_cast<WORD>(std::clamp(side, 0, kLongestSide));
}

MPAVizWindowRecord RecordOf(HWND window) {
    MPAVizWindowRecord record = {};
    record.Window = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window));
    return record;
}

}  // namespace

CViz::CViz(HMODULE module, VizOwner* owner, PluginList* plugins, VizEffectParams* effects, HWND parent)
    : Owner(owner),
      ParentWindow(parent),
      Module(module),
      Plugins(plugins),
      Effects(effects),
      OutputGone(std::make_shared<Handle>(Handle::ManualResetEvent())) {}

CViz::~CViz() {
    DestroyRotateButton(true);
    // Only a worker that was ended by force leaves its window behind.
    CVizWindow* left = Window;
    if (left && left->IsUnlocked()) delete left;
}

HRESULT CViz::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id != kIID_IUnknown && id != kIID_IMPAVizWindow) return E_NOINTERFACE;
    *out = static_cast<IMPAVizWindow*>(this);
    AddRef();
    return S_OK;
}

ULONG CViz::AddRef() {
    return References.Add();
}

ULONG CViz::Release() {
    const int32_t count = References.Remove();
    if (count > 0) return static_cast<ULONG>(count);
    delete this;
    return 0;
}

// ---- The host's operations

HRESULT CViz::Show(int32_t width, int32_t height) {
    CVizWindow* window = nullptr;
    {
        const MutexLock lock(&StateLock);
        window = Window;
        if (!window) {
            PendingWidth = width;
            PendingHeight = height;
            ShowPending = true;
            return E_FAIL;
        }
    }
    HRESULT result = S_OK;
    window->SetClickTarget(this);
    if (Flags & kViewRightClicks) window->SetRightClickTarget(this);
    if ((Flags & kViewRotateButton) && !MakeRotateButton(width, height)) result = E_FAIL;
    ShowWindowOf(*window, width, height);
    return result;
}

void CViz::ShowWindowOf(CVizWindow& window, int32_t width, int32_t height) {
    Visible = true;
    if (VizOwner* owner = Owner) owner->ViewShown();
    window.SetShown(true);
    window.Resize(width, height);
    // Posted behind the full size, so that the strip below the picture stays free for the button.
    if (Flags & kViewRotateButton) Resize(width, height - kRotateStripHeight);
    ShowWindow(window.GetWindowHandle(), SW_SHOW);
    {
        const MutexLock lock(&StateLock);
        ShowPending = false;
    }
    CVizPlugin* plugin = CurrentPlugin;
    if (plugin && plugin->GetRenderMode() == kRenderToWindow) {
        MPAVizWindowRecord record = RecordOf(window.GetWindowHandle());
        plugin->SetWindow(&record);
    }
}

bool CViz::MakeRotateButton(int32_t width, int32_t height) {
    const int x = width - kRotateButtonFromRight;
    const int y = height - kRotateButtonFromBottom;
    if (const HWND standing = RotateButton; standing && IsWindow(standing)) {
        SetWindowPos(standing, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        return true;
    }
    const HWND button = CreateWindowExA(
        0, "button", "Rotate", WS_CHILD | WS_VISIBLE, x, y, kRotateButtonWidth, kRotateButtonHeight, ParentWindow,
        reinterpret_cast<HMENU>(static_cast<uintptr_t>(kRotateButtonId)), Module, nullptr);
    RotateButton = button;
    if (!button) return false;
    // The parent gets the button's WM_COMMAND and finds the view here.
    SetWindowLongPtrA(button, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    return true;
}

// A window can be destroyed by its own thread only: the worker takes the button down with the output if
// the button is the worker's; the last Release takes it down, or asks the thread that made it to do so.
void CViz::DestroyRotateButton(bool fromLastRelease) {
    const HWND button = RotateButton;
    if (!button) return;
    const bool own = GetWindowThreadProcessId(button, nullptr) == GetCurrentThreadId();
    if (!own && !fromLastRelease) return;
    RotateButton = nullptr;
    SetWindowLongPtrA(button, GWLP_USERDATA, 0);
    if (own) {
        DestroyWindow(button);
    } else {
        PostMessageA(button, WM_CLOSE, 0, 0);
    }
}

HRESULT CViz::Resize(int32_t width, int32_t height) {
    const MutexLock lock(&StateLock);
    CVizWindow* window = Window;
    if (!window) {
        PendingWidth = width;
        PendingHeight = height;
        return E_FAIL;
    }
    PostMessageA(window->GetWindowHandle(), kMessageResize, MAKEWPARAM(CutSide(width), CutSide(height)), 0);
    return S_OK;
}

HRESULT CViz::Hide() {
    CVizWindow* window = nullptr;
    {
        const MutexLock lock(&StateLock);
        window = Window;
    }
    if (!window) return E_FAIL;
    Visible = false;
    ShowWindow(window->GetWindowHandle(), SW_HIDE);
    window->SetShown(false);
    CVizPlugin* plugin = CurrentPlugin;
    if (plugin && plugin->GetRenderMode() == kRenderToWindow) {
        MPAVizWindowRecord none = RecordOf(nullptr);
        plugin->SetWindow(&none);
    }
    return S_OK;
}

HRESULT CViz::GetCurrentPlugin(char* path, uint32_t size) {
    CVizPlugin* plugin = CurrentPlugin;
    if (!plugin || !path) return E_FAIL;
    const char* current = plugin->GetPath();
    const size_t needed = std::strlen(current) + 1;
    if (needed > size) return E_FAIL;
    std::memcpy(path, current, needed);
    return S_OK;
}

HRESULT CViz::SelectPlugin(const char* path) {
    PluginList* plugins = Plugins;
    if (!path || !plugins) return E_FAIL;
    for (CVizPlugin* plugin : plugins->Snapshot()) {
        if (std::strcmp(plugin->GetPath(), path) != 0) continue;
        ChangePlugin(plugin);
        return S_OK;
    }
    return E_FAIL;
}

HRESULT CViz::SetViewFlags(uint32_t flags) {
    Flags = flags;
    return S_OK;
}

HRESULT CViz::AddClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&StateLock);
    ClickQueue.push_back(receiver);
    if (CVizWindow* window = Window) window->AddClickReceiver(receiver);
    return S_OK;
}

HRESULT CViz::AddRightClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&StateLock);
    RightClickQueue.push_back(receiver);
    if (CVizWindow* window = Window) window->AddRightClickReceiver(receiver);
    return S_OK;
}

HRESULT CViz::RemoveClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&StateLock);
    CVizWindow* window = Window;
    if (!window) return E_FAIL;
    // It may not have reached the window yet, and must not reach it later.
    ClickQueue.remove(receiver);
    return window->RemoveClickReceiver(receiver);
}

HRESULT CViz::RemoveRightClickReceiver(IUnknown* receiver) {
    const MutexLock lock(&StateLock);
    CVizWindow* window = Window;
    if (!window) return E_FAIL;
    RightClickQueue.remove(receiver);
    return window->RemoveRightClickReceiver(receiver);
}

// ---- The output window, on the worker thread

void CViz::MakeWindow([[maybe_unused]] bool useDirectDraw) {
    {
        std::unique_ptr<CVizWindow> old;
        const MutexLock lock(&StateLock);
        old.reset(Window.Exchange(nullptr));
    }
    auto window = std::make_unique<CVizWindow>(Module, ParentWindow);
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
    if (window) {
        UnloadWaitingPlugins(window->GetWindowHandle());
        CVizPlugin* plugin = CurrentPlugin;
        MPAVizWindowRecord none = RecordOf(nullptr);
        if (plugin && plugin->GetRenderMode() == kRenderToWindow) plugin->SetWindow(&none);
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
    CurrentPlugin = nullptr;
    Effects = nullptr;
    Plugins = nullptr;
    Owner = nullptr;
}

bool CViz::WaitForDestruction() const {
    return WaitForSingleObject(OutputGone->Get(), kThreadAnswerLimit) == WAIT_OBJECT_0;
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
    return Visible && Active && plugin && Window && plugin->GetWantsSpectrum();
}

void CViz::DrawFrame(VizAnalysisFrame& frame) {
    CVizPlugin* plugin = CurrentPlugin;
    CVizWindow* window = Window;
    if (!Active || !plugin || !window) return;
    plugin->LockPlugin();
    window->BeginFrame();
    if (plugin->IsReady()) RunPlugin(*plugin, *window, frame);
    plugin->UnlockPlugin();
    // What came for the window while the plug-in painted is served here, without the plug-in's lock.
    window->EndFrame();
}

void CViz::RunPlugin(CVizPlugin& plugin, CVizWindow& window, VizAnalysisFrame& frame) {
    if (plugin.GetRenderMode() == kRenderToWindow) {
        MPAVizWindowRecord record = RecordOf(window.GetWindowHandle());
        if (record.Window != 0) plugin.DrawToWindow(&record, &frame);
        return;
    }
    if (!window.GetFrontPixels()) return;
    RunEffects(plugin, window);
    plugin.Draw(window.GetFrontPixels(), window.GetFrameWidth(), window.GetFrameHeight(), window.GetFramePitch(),
                kFrameBitsPerPixel, &frame);
    window.ReleaseFront();
    window.Present(true);
}

// The effects run over the last picture, before the plug-in paints the next one.
void CViz::RunEffects(CVizPlugin& plugin, CVizWindow& window) {
    VizEffectParams* effects = Effects;
    const uint32_t mask = plugin.GetEffectMask();
    void* front = window.GetFrontPixels();
    void* back = window.GetBackPixels();
    if (!effects || !EffectEngine || mask == 0 || !front || !back) return;
    const bool changed = EffectEngine->ApplyEffects(front, back, window.GetFrameWidth(), window.GetFrameHeight(),
                                                    window.GetFrameWidth(), *effects, mask);
    window.ReleaseBack();
    window.ReleaseFront();
    if (changed) window.SwapBuffers();
}

// ---- The current plug-in

bool CViz::ChangePlugin(CVizPlugin* plugin) {
    if (!plugin) return CurrentPlugin == nullptr;
    // Another view may have unloaded it for all.
    if (plugin == CurrentPlugin) return plugin->IsReady() || ReviveCurrentPlugin(*plugin);
    // One that was found not to be loadable counts as loaded, but never becomes current.
    if (!plugin->MakeReady()) return false;
    MakePluginCurrent(*plugin);
    return true;
}

bool CViz::ReviveCurrentPlugin(CVizPlugin& plugin) {
    if (!plugin.MakeReady()) return false;
    plugin.SetActive(Active);
    ConnectPlugin(plugin);
    return true;
}

void CViz::MakePluginCurrent(CVizPlugin& plugin) {
    CVizPlugin* old = CurrentPlugin.Exchange(&plugin);
    plugin.LockPlugin();
    const bool loaded = plugin.IsReady();
    if (loaded) plugin.SetActive(Active);
    plugin.UnlockPlugin();
    if (!loaded) {
        CurrentPlugin.CompareExchange(&plugin, old);
        return;
    }
    if (VizOwner* owner = Owner) owner->SetCurrentPlugin(plugin.GetPath());
    if (old) ReleasePlugin(*old);
    ConnectPlugin(plugin);
}

void CViz::ConnectPlugin(CVizPlugin& plugin) {
    plugin.LockPlugin();
    const bool toWindow = plugin.GetRenderMode() == kRenderToWindow;
    MPAVizWindowRecord record = {};
    {
        const MutexLock lock(&StateLock);
        CVizWindow* window = Window;
        // Another thread may have changed the plug-in once more meanwhile.
        if (window && CurrentPlugin == &plugin) {
            window->SetDrawsFrames(!toWindow);
            record = RecordOf(window->GetWindowHandle());
        }
    }
    if (Visible && toWindow && record.Window != 0) plugin.SetWindow(&record);
    plugin.UnlockPlugin();
}

void CViz::ReleasePlugin(CVizPlugin& plugin) {
    if (plugin.GetRenderMode() != kRenderToWindow) {
        plugin.LockPlugin();
        if (plugin.IsLoaded()) plugin.SetActive(false);
        plugin.UnlockPlugin();
        if (plugin.IsLoaded()) plugin.Unload();
        return;
    }
    MPAVizWindowRecord none = RecordOf(nullptr);
    plugin.SetWindow(&none);
    plugin.Close();
    // Unloaded on the window's own thread, after whatever is on the way there.
    HWND window = nullptr;
    {
        const MutexLock lock(&StateLock);
        if (Window) window = Window->GetWindowHandle();
    }
    if (!window || !PostMessageA(window, kMessageUnload, reinterpret_cast<WPARAM>(&plugin), 0)) plugin.Unload();
}

void CViz::UnloadPlugin(CVizPlugin* plugin) {
    plugin->Unload();
    // The view took it back while the message was on its way: it was told to close, and starts anew.
    if (plugin == CurrentPlugin) ReviveCurrentPlugin(*plugin);
}

void CViz::ClearPlugin() {
    if (CVizPlugin* old = CurrentPlugin.Exchange(nullptr)) ReleasePlugin(*old);
}

void CViz::OnLeftClick(uint32_t x, uint32_t y, uint32_t flags) {
    CVizPlugin* current = CurrentPlugin;
    if (!(Flags & kViewClickStepsPlugins)) {
        if (current) current->OnClick(x, y, flags);
        return;
    }
    PluginList* list = Plugins;
    const std::vector<CVizPlugin*> plugins = list ? list->Snapshot() : std::vector<CVizPlugin*>();
    if (plugins.empty()) return;
    size_t target = 0;
    for (size_t index = 0; index < plugins.size(); ++index) {
        if (plugins[index] == current) target = (index + 1) % plugins.size();
    }
    ChangePlugin(plugins[target]);
}

void CViz::DropPlugin(CVizPlugin* plugin) {
    PluginList* list = Plugins;
    if (!list) return;
    const std::vector<CVizPlugin*> before = list->Snapshot();
    if (!list->TakeOut(plugin)) return;
    CVizPlugin* target = nullptr;
    for (size_t index = 0; index < before.size(); ++index) {
        if (before[index] == plugin && index > 0) target = before[index - 1];
    }
    if (!target) target = list->At(0);
    if (target) {
        ChangePlugin(target);
    } else {
        ClearPlugin();
    }
}

}  // namespace tdkviz
