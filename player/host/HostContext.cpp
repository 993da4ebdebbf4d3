#include "player/host/HostContext.h"

#include "player/host/Buffer.h"
#include "player/host/Values.h"

namespace tdkplay {

HRESULT HostContext::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out,
                         {{kIID_IUnknown, this},
                          {kIID_IKVAClassFactory, this},
                          {kIID_ITKPlayer, static_cast<ITKPlayer*>(player_.Get())},
                          {kIID_IKVAAudioService, hooks_.Get()}});
}

HRESULT HostContext::CreateInstance(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id == kIID_IKVAValues) return MakeCom<Values>()->QueryInterface(id, out);
    if (id == kIID_IKVABuffer) return MakeCom<Buffer>()->QueryInterface(id, out);
    return E_NOINTERFACE;
}

}  // namespace tdkplay
