// The manager's side of the plug-in list.
#include <cstring>

#include "src/host/VizManager.h"
#include "src/plugins/PluginList.h"
#include "src/plugins/VizPlugin.h"

namespace tdkviz {

namespace {

// Copies a text with its terminator, if it fits.
bool CopyText(const char* text, char* out, uint32_t size) {
    const size_t needed = std::strlen(text) + 1;
    if (!out || needed > size) return false;
    std::memcpy(out, text, needed);
    return true;
}

bool Fits(const char* text, uint32_t size) {
    return std::strlen(text) < size;
}

}  // namespace

void CVizManager::EnsurePluginList() {
    const MutexLock lock(&listLock_);
    // A plug-in that is loaded during the scan may ask back.
    if (PluginListReady || listBuilding_) return;
    listBuilding_ = true;
    Retrievers.SetReceiver(this);
    Retrievers.SetPreferencesMaker(this);
    Retrievers.AddRetriever();
    Plugins = Retrievers.GetList();
    FillPluginsByPath();
    PluginListReady = true;
    listBuilding_ = false;
}

void CVizManager::FillPluginsByPath() {
    if (!Plugins) return;
    const std::vector<CVizPlugin*> plugins = Plugins->Snapshot();
    const MutexLock lock(Mutex.get());
    PluginsByPath.RemoveAll();
    for (CVizPlugin* plugin : plugins) PluginsByPath.Set(plugin->GetPath(), reinterpret_cast<uintptr_t>(plugin));
}

CVizPlugin* CVizManager::LookupPlugin(const char* path) const {
    if (!path) return nullptr;
    uintptr_t plugin = 0;
    const MutexLock lock(Mutex.get());
    PluginsByPath.Lookup(path, plugin);
    return reinterpret_cast<CVizPlugin*>(plugin);
}

CVizPlugin* CVizManager::FindPlugin(const char* path) {
    EnsurePluginList();
    return LookupPlugin(path);
}

uint32_t CVizManager::GetPluginCount() {
    PluginList* plugins = Plugins;
    return plugins ? static_cast<uint32_t>(plugins->Count()) : 0;
}

HRESULT CVizManager::GetPluginInfo(uint16_t index, char* name, char* path, uint32_t size) {
    PluginList* plugins = Plugins;
    CVizPlugin* plugin = plugins ? plugins->At(index) : nullptr;
    if (!plugin) return E_FAIL;
    const char* known = plugin->GetName();
    if (!plugin->IsInfoValid()) {
        plugins->TakeOut(plugin);
        return E_FAIL;
    }
    if (!Fits(known, size) || !Fits(plugin->GetPath(), size)) return E_FAIL;
    if (!name || !path) return E_FAIL;
    CopyText(known, name, size);
    CopyText(plugin->GetPath(), path, size);
    return S_OK;
}

HRESULT CVizManager::GetPluginIndex(const char* path, uint32_t* index) {
    CVizPlugin* plugin = FindPlugin(path);
    if (!plugin || !index) return E_FAIL;
    const auto found = Plugins->IndexOf(plugin);
    if (!found) return E_FAIL;
    *index = static_cast<uint32_t>(*found);
    return S_OK;
}

HRESULT CVizManager::GetPluginName(const char* path, char* name, uint32_t size) {
    CVizPlugin* plugin = FindPlugin(path);
    return plugin && CopyText(plugin->GetName(), name, size) ? S_OK : E_FAIL;
}

void CVizManager::OnPluginAdded(CVizPlugin* plugin) {
    FillPluginsByPath();
    for (const auto& receiver : CopyReceivers<IMPAListReceiver>(ListReceivers)) {
        receiver->PluginAppeared(plugin->GetPath());
    }
}

void CVizManager::OnPluginRemoved(CVizPlugin* plugin) {
    for (const auto& receiver : CopyReceivers<IMPAListReceiver>(ListReceivers)) {
        receiver->PluginVanished(plugin->GetPath());
    }
    const ViewList views = CopyViews();
    if (views.empty()) return;
    views.front()->DropPlugin(plugin);
    CVizPlugin* replacement = views.front()->GetPlugin();
    for (size_t index = 1; index < views.size(); ++index) {
        if (Plugins->Count() == 0) {
            views[index]->ClearPlugin();
        } else {
            views[index]->ChangePlugin(replacement);
        }
    }
}

}  // namespace tdkviz
