// PluginList: the plug-ins that manager, views and watcher share.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "src/plugins/VizPlugin.h"
#include "src/support/Mutex.h"

namespace tdkviz {

// In the order of the scan, later ones at the end. Any thread may call anything; no lock is held when a call
// has returned, so walk a Snapshot. Wrappers given out stay good until the list dies, even those taken out.
class PluginList {
public:
    void Append(std::unique_ptr<CVizPlugin> plugin);
    std::vector<CVizPlugin*> Snapshot() const;
    size_t Count() const;
    // Null beyond the end.
    CVizPlugin* At(size_t index) const;
    // False if it isn't in the list.
    bool TakeOut(CVizPlugin* plugin);
    std::optional<size_t> IndexOf(const CVizPlugin* plugin) const;
    // All wrappers that still live, those taken out at the end.
    std::vector<CVizPlugin*> SnapshotWithTakenOut() const;

private:
    using Owned = std::list<std::unique_ptr<CVizPlugin>>;

    mutable KVAWinMutex mutex_;
    Owned plugins_ TDKVIZ_GUARDED_BY(mutex_);
    Owned takenOut_ TDKVIZ_GUARDED_BY(mutex_);
};

}  // namespace tdkviz
