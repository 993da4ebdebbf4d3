#include "platform/display/x11/X11Windows.h"

namespace tdkp {

std::unique_ptr<X11Window> X11Windows::Remove(WindowId id) {
    const LayerGuard guard(mutex_);
    auto node = windows_.extract(id);
    return node ? std::make_unique<X11Window>(std::move(node.mapped())) : nullptr;
}

WindowId X11Windows::Outermost(WindowId id) const {
    const LayerGuard guard(mutex_);
    for (auto found = windows_.find(id); found != windows_.end() && !found->second.topLevel;) {
        found = windows_.find(found->second.parent);
        if (found != windows_.end()) id = found->first;
    }
    return id;
}

void X11Windows::MarkInsideGone(WindowId id) {
    const LayerGuard guard(mutex_);
    std::vector<WindowId> parents = {id};
    while (!parents.empty()) {
        const WindowId parent = parents.back();
        parents.pop_back();
        for (auto& [child, window] : windows_) {
            if (window.parent != parent || window.topLevel || window.gone) continue;
            window.gone = true;
            parents.push_back(child);
        }
    }
}

std::vector<WindowId> X11Windows::OwnedBy(WindowId id) const {
    const LayerGuard guard(mutex_);
    std::vector<WindowId> owned;
    for (const auto& [each, window] : windows_) {
        if (window.owner == id) owned.push_back(each);
    }
    return owned;
}

std::vector<WindowId> X11Windows::All() const {
    const LayerGuard guard(mutex_);
    std::vector<WindowId> all;
    for (const auto& entry : windows_) all.push_back(entry.first);
    return all;
}

}  // namespace tdkp
