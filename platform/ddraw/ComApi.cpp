// CoInitialize and CoCreateInstance, for the one class that the layer has.
#include <ddraw.h>
#include <objbase.h>

#include <new>

#include "platform/ddraw/CallSwitches.h"
#include "platform/ddraw/DirectDrawObject.h"

namespace {

constinit thread_local int32_t initializations = 0;

}  // namespace

TDKP_API HRESULT CoInitialize(LPVOID reserved) {
    if (const HRESULT fault = tdkp::CountCall()) return fault;
    if (reserved != nullptr) return E_INVALIDARG;
    return initializations++ == 0 ? S_OK : S_FALSE;
}

TDKP_API void CoUninitialize() {
    if (initializations > 0) --initializations;
}

TDKP_API HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID id, LPVOID* out) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (const HRESULT fault = tdkp::CountCall()) return fault;
    if (initializations == 0) return CO_E_NOTINITIALIZED;
    if (classId != tdkp::kDirectDrawClass || (context & CLSCTX_INPROC_SERVER) == 0) return REGDB_E_CLASSNOTREG;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    auto* made = new (std::nothrow) tdkp::DirectDrawObject;
    if (made == nullptr) return E_OUTOFMEMORY;
    const HRESULT result = made->QueryInterface(id, out);
    made->Release();
    return result;
}
