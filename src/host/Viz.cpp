#include "src/host/Viz.h"

#include <algorithm>
#include <cstring>

#include "src/host/CopyText.h"
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
constexpr int32_t kLongestSide = 0x7FFC;  // what a window can have, in steps of 4

WORD CutSide(int32_t side) {
    return static_cast<WORD>(std::clamp(side, 0, kLongestSide));
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

MPAVizWindowRecord CViz::RecordOf(HWND window) {
    MPAVizWindowRecord record = {};
    record.Window = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window));
    return record;
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
    if (plugin && plugin->GetRenderMode() == kRenderToWindow) GiveWindow(*plugin, window.GetWindowHandle());
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
    if (plugin && plugin->GetRenderMode() == kRenderToWindow) GiveWindow(*plugin, nullptr);
    return S_OK;
}

HRESULT CViz::GetCurrentPlugin(char* path, uint32_t size) {
    CVizPlugin* plugin = CurrentPlugin;
    return plugin && CopyText(plugin->GetPath(), path, size) ? S_OK : E_FAIL;
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

}  // namespace tdkviz
