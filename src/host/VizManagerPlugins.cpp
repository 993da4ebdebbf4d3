// The manager's side of the plug-in list.
#include <cstring>

#include "src/host/CopyText.h"
#include "src/host/VizManager.h"
#include "src/plugins/DirectoryWatcher.h"
#include "src/plugins/PluginList.h"
#include "src/plugins/VizPlugin.h"
#include "src/support/ThreadLimits.h"

namespace tdkviz {

namespace {

bool Fits(const char* text, uint32_t size) {
    return std::strlen(text) < size;
}

}  // namespace

// One thread builds the list and may ask back meanwhile, for a plug-in that is loaded by the scan. Others wait for it,
// but not for ever: such a plug-in may be waiting for one of them.
bool CVizManager::MayBuildList() {
    const DWORD self = GetCurrentThreadId();
    {
        const MutexLock lock(&listLock_);
        if (listBuilder_ == 0) {
            listBuilder_ = self;
            return true;
        }
        if (PluginListReady || listBuilder_ == self) return false;
    }
    WaitForSingleObject(listBuilt_.Get(), kThreadAnswerLimit);
    return false;
}

void CVizManager::EnsurePluginList() {
    if (!MayBuildList()) return;
    Retrievers.SetReceiver(this);
    Retrievers.SetPreferencesMaker(this);
    Retrievers.AddRetriever();
    Plugins = Retrievers.GetList();
    FillPluginsByPath();
    {
        const MutexLock lock(&listLock_);
        PluginListReady = true;
    }
    SetEvent(listBuilt_.Get());
}

void CVizManager::FillPluginsByPath() {
    if (!Plugins) return;
    const MutexLock lock(Mutex.get());
    PluginsByPath.RemoveAll();
    // Under the lock, so that of two threads the later one has the later list.
    for (CVizPlugin* plugin : Plugins->Snapshot())
        PluginsByPath.Set(plugin->GetPath(), reinterpret_cast<uintptr_t>(plugin));
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

// False if the watcher was stopped while they were told: manager and plug-in may have gone by then.
bool CVizManager::TellListReceivers(HRESULT (IMPAListReceiver::*news)(const char*), const CVizPlugin& plugin) const {
    const CNQString path = plugin.GetPath();
    const auto receivers = CopyReceivers<IMPAListReceiver>(ListReceivers);
    return DirectoryWatcher::CallOut([&] {
        for (const auto& receiver : receivers) (receiver.Get()->*news)(path.GetText());
    });
}

void CVizManager::OnPluginAdded(CVizPlugin* plugin) {
    FillPluginsByPath();
    TellListReceivers(&IMPAListReceiver::PluginAppeared, *plugin);
}

void CVizManager::OnPluginRemoved(CVizPlugin* plugin) {
    if (TellListReceivers(&IMPAListReceiver::PluginVanished, *plugin)) OnPluginStillGone(plugin);
}

// Views may have come since it went.
void CVizManager::OnPluginStillGone(CVizPlugin* plugin) {
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
