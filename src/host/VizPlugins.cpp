// The view's current plug-in: how it changes, and what becomes of the one before.
#include <vector>

#include "src/host/Viz.h"
#include "src/plugins/PluginList.h"
#include "src/plugins/VizPlugin.h"

namespace tdkviz {

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
