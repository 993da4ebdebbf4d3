#include "src/plugins/PluginList.h"

#include <algorithm>
#include <utility>

namespace tdkviz {

void PluginList::Append(std::unique_ptr<CVizPlugin> plugin) {
    const MutexLock hold(&mutex_);
    plugins_.push_back(std::move(plugin));
}

std::vector<CVizPlugin*> PluginList::Snapshot() const {
    const MutexLock hold(&mutex_);
    std::vector<CVizPlugin*> snapshot;
    snapshot.reserve(plugins_.size());
    for (const auto& plugin : plugins_) snapshot.push_back(plugin.get());
    return snapshot;
}

size_t PluginList::Count() const {
    const MutexLock hold(&mutex_);
    return plugins_.size();
}

CVizPlugin* PluginList::At(size_t index) const {
    const MutexLock hold(&mutex_);
    return index < plugins_.size() ? std::next(plugins_.begin(), static_cast<ptrdiff_t>(index))->get() : nullptr;
}

bool PluginList::TakeOut(CVizPlugin* plugin) {
    const MutexLock hold(&mutex_);
    const auto isIt = [plugin](const auto& owned) { return owned.get() == plugin; };
    const auto found = std::find_if(plugins_.begin(), plugins_.end(), isIt);
    if (found == plugins_.end()) return false;
    takenOut_.splice(takenOut_.end(), plugins_, found);
    return true;
}

std::optional<size_t> PluginList::IndexOf(const CVizPlugin* plugin) const {
    const MutexLock hold(&mutex_);
    const auto isIt = [plugin](const auto& owned) { return owned.get() == plugin; };
    const auto found = std::find_if(plugins_.begin(), plugins_.end(), isIt);
    if (found == plugins_.end()) return std::nullopt;
    return static_cast<size_t>(std::distance(plugins_.begin(), found));
}

std::vector<CVizPlugin*> PluginList::SnapshotWithTakenOut() const {
    const MutexLock hold(&mutex_);
    std::vector<CVizPlugin*> snapshot;
    snapshot.reserve(plugins_.size() + takenOut_.size());
    for (const auto& plugin : plugins_) snapshot.push_back(plugin.get());
    for (const auto& plugin : takenOut_) snapshot.push_back(plugin.get());
    return snapshot;
}

}  // namespace tdkviz
