// The view's current plug-in: how it changes, and what becomes of the one before.
#include <vector>

#include "src/host/Viz.h"
#include "src/plugins/PluginList.h"
#include "src/plugins/VizPlugin.h"

namespace tdkviz {

bool CViz::ChangePlugin(CVizPlugin* plugin) {
    if (!plugin) return CurrentPlugin == nullptr;
    // Without the lock: it may hang in a frame.
    if (plugin == CurrentPlugin && plugin->IsReady() && IsConnected(*plugin)) return true;
    CVizPlugin* old = nullptr;
    plugin->LockPlugin();
    const bool isTaken = TakePlugin(*plugin, old);
    plugin->UnlockPlugin();
    if (!isTaken || old == plugin) return isTaken;
    if (VizOwner* owner = Owner) owner->SetCurrentPlugin(plugin->GetPath());
    if (old) ReleasePlugin(*old);
    plugin->LockPlugin();
    ConnectPlugin(*plugin);
    plugin->UnlockPlugin();
    return true;
}

// False if it can't be loaded: the view keeps what it has. One that was found not to be loadable counts as loaded, but
// never becomes current.
bool CViz::TakePlugin(CVizPlugin& plugin, CVizPlugin*& old) {
    // A view that left it has told it to close. It starts anew behind its Unload, on the thread of the windows.
    const bool isLeaving = plugin.IsWithdrawn();
    if (!isLeaving && !plugin.MakeReady()) return false;
    {
        const MutexLock lock(&StateLock);
        if (!Owner) return false;
        old = CurrentPlugin.Exchange(&plugin);
    }
    if (isLeaving) {
        PostUnload(plugin);
    } else if (old == &plugin) {
        RevivePlugin(plugin);
    } else {
        plugin.SetActive(Active);
    }
    return true;
}

void CViz::ConnectPlugin(CVizPlugin& plugin) {
    const bool toWindow = plugin.GetRenderMode() == kRenderToWindow;
    HWND target = nullptr;
    {
        const MutexLock lock(&StateLock);
        // Another thread may have changed the plug-in once more meanwhile.
        if (CurrentPlugin != &plugin) return;
        connection_ = {&plugin, plugin.GetLoadCount(), nullptr};
        if (CVizWindow* window = Window) {
            window->SetDrawsFrames(!toWindow);
            target = window->GetWindowHandle();
        }
    }
    if (Visible && toWindow && target) GiveWindow(plugin, target);
}

// Another view may have unloaded it for all, and loaded it anew.
void CViz::RevivePlugin(CVizPlugin& plugin) {
    if (CurrentPlugin != &plugin || !plugin.MakeReady() || IsConnected(plugin)) return;
    plugin.SetActive(Active);
    ConnectPlugin(plugin);
}

// False while a change of plug-in is under way, which connects it at its end.
bool CViz::IsReadyForFrames(CVizPlugin& plugin) {
    {
        const MutexLock lock(&StateLock);
        if (connection_.Plugin != &plugin) return false;
    }
    RevivePlugin(plugin);
    return IsConnected(plugin);
}

bool CViz::IsConnected(const CVizPlugin& plugin) const {
    const MutexLock lock(&StateLock);
    return connection_.Plugin == &plugin && connection_.LoadCount == plugin.GetLoadCount();
}

void CViz::GiveWindow(CVizPlugin& plugin, HWND window) {
    MPAVizWindowRecord record = RecordOf(window);
    plugin.SetWindow(&record);
    const MutexLock lock(&StateLock);
    if (connection_.Plugin == &plugin) connection_.Window = window;
}

HWND CViz::GivenWindow(const CVizPlugin& plugin) const {
    const MutexLock lock(&StateLock);
    return connection_.Plugin == &plugin ? connection_.Window : nullptr;
}

void CViz::ReleasePlugin(CVizPlugin& plugin) {
    if (plugin.GetRenderMode() == kRenderToWindow) {
        plugin.Withdraw();
        if (!PostUnload(plugin)) UnloadPlugin(&plugin);
        return;
    }
    plugin.LockPlugin();
    if (plugin.IsLoaded()) {
        plugin.SetActive(false);
        plugin.Unload();
    }
    // Another thread may have given it back to the view meanwhile.
    RevivePlugin(plugin);
    plugin.UnlockPlugin();
}

// Unloads on the window's own thread, after whatever is on the way there. False without a window.
bool CViz::PostUnload(CVizPlugin& plugin) {
    const MutexLock lock(&StateLock);
    CVizWindow* window = Window;
    const HWND handle = window ? window->GetWindowHandle() : nullptr;
    return handle && PostMessageA(handle, kMessageUnload, reinterpret_cast<WPARAM>(&plugin), 0);
}

void CViz::UnloadPlugin(CVizPlugin* plugin) {
    plugin->LockPlugin();
    // Views that took it back asked for it, too: the first message does it, and each view starts it anew for itself.
    if (plugin->IsWithdrawn()) plugin->Unload();
    RevivePlugin(*plugin);
    plugin->UnlockPlugin();
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
