#include "player/check/MemoryPreferences.h"

#include <string.h>

#include "player/host/Buffer.h"

namespace tdkplay::check {

HRESULT MemoryPreferences::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out, {{kIID_IUnknown, this}, {kIID_IKVAPreferences, this}});
}

HRESULT MemoryPreferences::ReadValue(const char* name, IKVABuffer** buffer) {
    if (!buffer) return E_INVALIDARG;
    *buffer = nullptr;
    if (!name) return E_INVALIDARG;
    const std::lock_guard hold(mutex_);
    const auto found = texts_.find(name);
    if (found == texts_.end() && !everything_) return E_FAIL;
    *buffer = Buffer::FromText(found == texts_.end() ? *everything_ : found->second).Detach();
    return S_OK;
}

HRESULT MemoryPreferences::WriteValue(const char* name, IKVABuffer* buffer) {
    if (!name || !buffer) return E_INVALIDARG;
    const auto* const text = static_cast<const char*>(buffer->GetBuffer());
    const std::lock_guard hold(mutex_);
    texts_[name] = text ? std::string(text, strnlen(text, buffer->GetSize())) : std::string();
    return S_OK;
}

}  // namespace tdkplay::check
