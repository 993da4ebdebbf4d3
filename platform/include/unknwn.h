// GUIDs, result codes and IUnknown, as the component object model publishes them. The guards carry
// the published names, so that other headers which declare the same things step aside.
#pragma once

#include "windef.h"

#ifndef GUID_DEFINED
#define GUID_DEFINED
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
#endif

using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

#ifndef _SYS_GUID_OPERATORS_
#define _SYS_GUID_OPERATORS_
inline bool operator==(const GUID& a, const GUID& b) {
    return __builtin_memcmp(&a, &b, sizeof(GUID)) == 0;
}
inline bool operator!=(const GUID& a, const GUID& b) {
    return !(a == b);
}
#endif

#ifndef S_OK
#define S_OK (static_cast<HRESULT>(0))
#define S_FALSE (static_cast<HRESULT>(1))
#define E_NOTIMPL (static_cast<HRESULT>(0x80004001))
#define E_NOINTERFACE (static_cast<HRESULT>(0x80004002))
#define E_POINTER (static_cast<HRESULT>(0x80004003))
#define E_FAIL (static_cast<HRESULT>(0x80004005))
#define E_OUTOFMEMORY (static_cast<HRESULT>(0x8007000E))
#define E_INVALIDARG (static_cast<HRESULT>(0x80070057))
#define SUCCEEDED(result) (static_cast<HRESULT>(result) >= 0)
#define FAILED(result) (static_cast<HRESULT>(result) < 0)
#endif

#ifndef __IUnknown_INTERFACE_DEFINED__
#define __IUnknown_INTERFACE_DEFINED__
struct IUnknown {
    virtual HRESULT QueryInterface(const GUID& id, void** out) = 0;
    virtual uint32_t AddRef() = 0;
    virtual uint32_t Release() = 0;
};
#endif
