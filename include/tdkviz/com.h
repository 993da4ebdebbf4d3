// Ground of all contract headers: identifiers, result codes, IUnknown, window handles.
//
// On Windows these come from the system. Elsewhere they are declared here with the same names, types
// and layout, so that a plug-in which only paints buffers needs nothing but this folder; the
// declarations step aside for (and agree with) the <windows.h> of the project's platform layer.
//
// The contract holds for 64-bit systems. Calls use the platform's normal C++ convention. Nothing that
// crosses a library border may throw.
//
// Threads are named by these tags, and by no others:
//   [host]    the host's own threads: the one that made the component, and its dialogs
//   [audio]   the thread on which the host delivers audio
//   [frame]   the add-on's worker: frames, output windows and their messages
//   [load]    whichever thread needs a plug-in's library first; calls never overlap for one plug-in
//   [watch]   the add-on's watcher of the plug-in folder
//   [any]     any of these, at any time
// Ownership is named by these tags:
//   [borrowed]   good for the length of the call only
//   [counted]    the receiver gets a reference of its own and releases it
//   [not counted] kept without a reference; the giver withdraws it before it ends
#pragma once

#include <stdint.h>

static_assert(sizeof(void*) == 8, "the tdkviz contract is fixed for 64-bit systems only");

#ifdef _WIN32

#include <unknwn.h>
#include <windows.h>

#else

using HRESULT = int32_t;
using ULONG = uint32_t;
using HWND = struct HWND__*;
using HBITMAP = struct HBITMAP__*;
using HMODULE = struct HINSTANCE__*;

#ifndef GUID_DEFINED
#define GUID_DEFINED
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
#endif

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
// Asks for interfaces and counts references. QueryInterface clears `out`, then gives the interface with
// a reference for the caller and S_OK, or E_NOINTERFACE. The counts are for diagnostics only. [any]
struct IUnknown {
    virtual HRESULT QueryInterface(const GUID& id, void** out) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};
#endif

#endif  // _WIN32

// Marks a function that a library exports by its plain name.
#ifdef _WIN32
#define TDKVIZ_EXPORT extern "C" __declspec(dllexport)
#else
#define TDKVIZ_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// A buffer with more than one holder can't be resized (IKVABuffer).
inline constexpr HRESULT kBufferIsShared = static_cast<HRESULT>(0x80040009);

inline constexpr GUID kIID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// The record through which a window reaches the add-on or a plug-in: nine 32-bit words. [borrowed]
struct MPAVizWindowRecord {
    uint32_t Window;       // window handle, or 0 when there is none; on X11 the X window id
    uint32_t Reserved[8];  // 0
};
static_assert(sizeof(MPAVizWindowRecord) == 36);
