#include "player/host/Buffer.h"

#include <cstring>
#include <new>

namespace tdkplay {

ComPtr<Buffer> Buffer::FromText(const std::string& text) {
    ComPtr<Buffer> buffer = MakeCom<Buffer>();
    buffer->SetContents(text.c_str(), static_cast<uint32_t>(text.size() + 1));
    return buffer;
}

HRESULT Buffer::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out, {{kIID_IUnknown, this}, {kIID_IKVABuffer, this}});
}

HRESULT Buffer::GetContents(void** data, uint32_t* size) {
    if (!data || !size) return E_INVALIDARG;
    *data = bytes_.data();
    *size = GetSize();
    return S_OK;
}

HRESULT Buffer::SetContents(const void* data, uint32_t size) {
    if (!data && size != 0) return E_INVALIDARG;
    const HRESULT result = SetSize(size);
    if (SUCCEEDED(result) && size != 0) std::memcpy(bytes_.data(), data, size);
    return result;
}

HRESULT Buffer::SetSize(uint32_t size) {
    if (IsShared()) return kBufferIsShared;
    try {
        bytes_.resize(size);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

}  // namespace tdkplay
