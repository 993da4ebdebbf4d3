// The audio service and the hook service in one: the taps on the way from decoder to device.
#pragma once

#include <tdkviz/host.h>

#include <mutex>
#include <vector>

#include "player/host/ComObject.h"

namespace tdkplay {

class AudioHooks final : public ComObject<IKVAAudioHookService> {
public:
    // Audio in this format follows. Hooks that are added later hear of it before their first delivery.
    void AnnounceFormat(const KVAAudioFormat& format);
    // One delivery, in the format announced last. [audio]
    void Deliver(IKVABuffer* buffer);
    // Audio flows from now on, or has stopped.
    void AnnounceState(bool flowing);

    HRESULT QueryInterface(const GUID& id, void** out) override;
    HRESULT AddHook(IKVAAudioHook* hook, uint32_t flags) override;
    // No call to the hook is under way any more when this returns.
    HRESULT RemoveHook(IKVAAudioHook* hook) override;

private:
    struct Entry {
        IKVAAudioHook* Hook;
        bool KnowsFormat;
    };

    // Held across the calls to the hooks, since RemoveHook has to wait for them. A hook must not add or
    // remove hooks from within a call.
    std::mutex mutex_;
    std::vector<Entry> entries_;
    KVAAudioFormat format_ = {};  // no channels: none announced yet
};

}  // namespace tdkplay
