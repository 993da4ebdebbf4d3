// The library's one export.
#include "companions/nqrs3260/ResourceManager.h"

// S_OK with the process's manager and a reference for the caller; E_OUTOFMEMORY with null.
TDKVIZ_EXPORT HRESULT NQCreateInstance(INQResourceManager** out) {
    if (!out) return E_POINTER;
    *out = ResourceManager::Acquire();
    return *out ? S_OK : E_OUTOFMEMORY;
}
