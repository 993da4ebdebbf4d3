#include "player/host/PluginWatch.h"

namespace tdkplay {

void PluginWatch::Detach() {
    const std::lock_guard lock(mutex_);
    news_ = nullptr;
}

bool PluginWatch::TakeNews() {
    const std::lock_guard lock(mutex_);
    return std::exchange(hasChanged_, false);
}

HRESULT PluginWatch::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out, {{kIID_IUnknown, this}});
}

HRESULT PluginWatch::Tell() {
    const std::lock_guard lock(mutex_);
    hasChanged_ = true;
    if (news_) news_->Set();
    return S_OK;
}

}  // namespace tdkplay
