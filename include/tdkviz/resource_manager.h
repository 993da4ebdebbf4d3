// INQResourceManager: what the add-on asks of the resource manager, a companion library. All on [host] threads.
#pragma once

#include <tdkviz/com.h>

// Kinds of resource that GetResourceInstance knows: dialog templates.
inline constexpr uint32_t kResourceKindDialog = 2;

// An id has the tag of the module that holds the resource in its upper half, the resource's number in its lower.
struct INQResourceManager : IUnknown {
    // Makes the resources of `module` findable under `tag`.
    virtual void AddModule(HMODULE module, uint32_t tag) = 0;
    virtual void RemoveModule(HMODULE module) = 0;
    // The caller's bitmap, or null.
    virtual HBITMAP LoadBitmap(uint32_t id) = 0;
    // Fills `buffer` with terminated text, within `size` bytes. Gives its length, or 0 if there is none.
    virtual int32_t LoadString(uint32_t id, char* buffer, uint32_t size) = 0;
    // The module under the id's tag that holds a resource of this kind and number, or null.
    virtual HMODULE GetResourceInstance(uint32_t id, uint32_t kind) = 0;
};

// The library's export: stores a manager with one reference for the caller.
inline constexpr char kResourceManagerFactoryName[] = "NQCreateInstance";
using NQCreateInstanceFunction = HRESULT (*)(INQResourceManager** out);
