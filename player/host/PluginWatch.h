// Hears from the add-on which plug-ins come and go while the player runs.
#pragma once

#include <tdkviz/viz.h>

#include <mutex>

#include "player/base/Event.h"
#include "player/host/ComObject.h"

namespace tdkplay {

// The add-on may hold it for a call that is under way, so it outlives what it reports to.
class PluginWatch final : public ComObject<IMPAListReceiver> {
public:
    // `news` is set when TakeNews has something to tell; it stays until Detach.
    explicit PluginWatch(const Event& news) : news_(&news) {}
    // Nothing is reported any more. [host]
    void Detach();
    // True if a plug-in came or went since the last call. [host]
    bool TakeNews();

    HRESULT QueryInterface(const GUID& id, void** out) override;
    HRESULT PluginAppeared(const char*) override { return Tell(); }
    HRESULT PluginVanished(const char*) override { return Tell(); }

private:
    HRESULT Tell();

    std::mutex mutex_;  // guards what follows
    const Event* news_;
    bool hasChanged_ = false;
};

}  // namespace tdkplay
