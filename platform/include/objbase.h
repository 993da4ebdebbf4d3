// Starting the component object model in a thread, and making objects by their class. The one class that the
// layer has is DirectDraw's; see ddraw.h.
#pragma once

#include "unknwn.h"

#define CLSCTX_INPROC_SERVER 0x1
#define CLSCTX_INPROC_HANDLER 0x2
#define CLSCTX_LOCAL_SERVER 0x4
#define CLSCTX_REMOTE_SERVER 0x10
#define CLSCTX_ALL (CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER)

#define CLASS_E_NOAGGREGATION (static_cast<HRESULT>(0x80040110))
#define REGDB_E_CLASSNOTREG (static_cast<HRESULT>(0x80040154))
#define CO_E_NOTINITIALIZED (static_cast<HRESULT>(0x800401F0))

// Counted for each thread: S_OK the first time, S_FALSE after that. Each wants its CoUninitialize, on the same
// thread. `reserved` is null.
TDKP_API HRESULT CoInitialize(LPVOID reserved);
TDKP_API void CoUninitialize(void);
// Makes an object on a thread that has called CoInitialize; the caller gets a reference. CO_E_NOTINITIALIZED,
// REGDB_E_CLASSNOTREG, CLASS_E_NOAGGREGATION, E_NOINTERFACE or E_OUTOFMEMORY with a null `out`.
TDKP_API HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID id, LPVOID* out);
