// The context that the player hands to the add-on: class factory, player and audio service.
#pragma once

#include <tdkviz/host.h>

#include "player/host/AudioHooks.h"
#include "player/host/PlayerObject.h"

namespace tdkplay {

class HostContext final : public ComObject<IKVAClassFactory> {
public:
    PlayerObject& Player() { return *player_; }
    AudioHooks& Hooks() { return *hooks_; }

    HRESULT QueryInterface(const GUID& id, void** out) override;
    // Makes an IKVAValues or an IKVABuffer. [any]
    HRESULT CreateInstance(const GUID& id, void** out) override;

private:
    const ComPtr<PlayerObject> player_ = MakeCom<PlayerObject>();
    const ComPtr<AudioHooks> hooks_ = MakeCom<AudioHooks>();
};

}  // namespace tdkplay
