#include "src/settings/PrefsWrapper.h"

#include <windows.h>

#include <cstring>
#include <string>

#include "src/support/NQBuffer.h"
#include "src/support/RegistryKey.h"

namespace tdkviz {

namespace {

constexpr uint32_t kWorkSize = 9216;  // bytes

}  // namespace

HRESULT CIKVAPrefsWrapper::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id != kIID_IUnknown && id != kIID_IKVAPreferences) return E_NOINTERFACE;
    *out = static_cast<IKVAPreferences*>(this);
    AddRef();
    return S_OK;
}

ULONG CIKVAPrefsWrapper::AddRef() {
    return References.Add();
}

ULONG CIKVAPrefsWrapper::Release() {
    const int32_t count = References.Remove();
    if (count > 0) return static_cast<ULONG>(count);
    delete this;
    return 0;
}

HRESULT CIKVAPrefsWrapper::ReadValue(const char* name, IKVABuffer** buffer) {
    if (!name || !buffer) return E_INVALIDARG;
    *buffer = nullptr;
    RegistryKey key;
    char text[kWorkSize + 1] = {};  // the longest text fills the work size, and ends behind it
    if (!key.Open(HKEY_CURRENT_USER, KeyPath.GetText()) || !key.GetString(name, "", text, kWorkSize)) return E_FAIL;
    RefPtr<IKVABuffer> value = RefPtr<IKVABuffer>::Adopt(CNQBuffer::Create());
    if (!value) return E_OUTOFMEMORY;
    const HRESULT result = value->SetContents(text, static_cast<uint32_t>(std::strlen(text) + 1));
    if (FAILED(result)) return result;
    *buffer = value.Detach();
    return S_OK;
}

HRESULT CIKVAPrefsWrapper::WriteValue(const char* name, IKVABuffer* buffer) {
    if (!name || !buffer) return E_INVALIDARG;
    const char* data = static_cast<const char*>(buffer->GetBuffer());
    // A buffer without a terminator counts up to its end.
    const std::string text = data ? std::string(data, strnlen(data, buffer->GetSize())) : std::string();
    RegistryKey key;
    if (key.Open(HKEY_CURRENT_USER, KeyPath.GetText())) key.SetString(name, text.c_str());
    return S_OK;
}

}  // namespace tdkviz
