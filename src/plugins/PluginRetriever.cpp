#include "src/plugins/PluginRetriever.h"

#include <cstring>
#include <new>
#include <utility>

#include "src/plugins/DirectoryWatcher.h"
#include "src/plugins/FileStamp.h"
#include "src/plugins/FolderScan.h"
#include "src/plugins/PluginCache.h"
#include "src/support/PathName.h"

namespace tdkviz {
namespace {

constexpr char kPluginFolder[] = "Visualizations";

// Takes the description from the cache if it is of the file as it stands, else from the plug-in itself.
void DescribePlugin(CVizPlugin& plugin) {
    char checksum[kChecksumSize] = {};
    uint32_t size = sizeof checksum;
    const bool isStamped = ComputeChecksum(plugin.GetPath(), checksum, &size);
    if (ReadCache(plugin) && isStamped && std::strcmp(plugin.GetChecksum(), checksum) == 0) return;
    plugin.SetChecksum(checksum);
    plugin.Load();
    WriteCache(plugin);
}

}  // namespace

void CPluginRetriever::LoadAll() {
    for (CVizPlugin* plugin : Plugins.Snapshot()) {
        if (!plugin->Load()) Plugins.TakeOut(plugin);
    }
}

void CPluginRetriever::UnloadAll() {
    const auto deadline = std::chrono::steady_clock::now() + CVizPlugin::kPatience;
    for (CVizPlugin* plugin : Plugins.SnapshotWithTakenOut()) plugin->Retire(deadline);
}

CTKVPluginRetriever::CTKVPluginRetriever(IPluginDirChangeReceiver* receiver, PreferencesMaker* maker)
    : CTKVPluginRetriever(receiver, maker, GetExecutableDirectory().Append(kPluginFolder).ToString().GetText()) {}

CTKVPluginRetriever::CTKVPluginRetriever(IPluginDirChangeReceiver* receiver, PreferencesMaker* maker,
                                         const char* folder)
    : CPluginRetriever(receiver, maker), Folder(folder) {
    DirectoryWatcher::Start({Folder.GetText(), &Plugins, Receiver, maker_}, Retrieve());
    isWatching_ = true;
}

CTKVPluginRetriever::~CTKVPluginRetriever() {
    StopWatching();
}

void CTKVPluginRetriever::StopWatching() {
    if (std::exchange(isWatching_, false)) DirectoryWatcher::Stop(&Plugins);
}

std::vector<std::string> CTKVPluginRetriever::Retrieve() {
    std::vector<std::string> files;
    ScanFolder(Folder.GetText(), files);
    for (const std::string& path : files) {
        if (!IsPluginFile(path.c_str())) continue;
        auto plugin = std::make_unique<CVizPlugin>(path.c_str(), maker_);
        DescribePlugin(*plugin);
        Plugins.Append(std::move(plugin));
    }
    return files;
}

bool CPluginRetrieverSet::AddRetriever() {
    try {
        retrievers_.push_back(std::make_unique<CTKVPluginRetriever>(receiver_, maker_));
    } catch (const std::bad_alloc&) {
        return false;
    }
    list_ = retrievers_.front()->GetList();
    return true;
}

void CPluginRetrieverSet::StopWatching() {
    for (const auto& retriever : retrievers_) retriever->StopWatching();
}

void CPluginRetrieverSet::UnloadAll() {
    for (const auto& retriever : retrievers_) retriever->UnloadAll();
}

}  // namespace tdkviz
