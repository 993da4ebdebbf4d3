// The resource manager of a process: which modules hold resources, and under which tags.
//
// A tag may have several modules, and a module several tags. Under one tag the module that was added last is
// asked first, so that a language's module can be laid over the one that it translates; what it doesn't hold
// comes from those before it. Tag 0 is a tag like any other.
//
// All operations may come on any threads. A module is looked into under the manager's lock, so nothing reads
// from it any more once RemoveModule has come back.
#pragma once

#include <windows.h>

#include <vector>

#include <tdkviz/resource_manager.h>

class ResourceManager final : public INQResourceManager {
public:
    // The one manager of the process, with a reference for the caller; null if there is no memory for it.
    static ResourceManager* Acquire();

    // IUnknown. The count is exact: 0 tells the caller that the library may go.
    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // INQResourceManager. To add a module again makes it the last one of its tag.
    void AddModule(HMODULE module, uint32_t tag) override;
    // From all of its tags.
    void RemoveModule(HMODULE module) override;
    HBITMAP LoadBitmap(uint32_t id) override;
    // Gives the length of the text. If no module holds it, 0 and an empty text.
    int32_t LoadString(uint32_t id, char* buffer, uint32_t size) override;
    // Null for a kind other than kResourceKindDialog.
    HMODULE GetResourceInstance(uint32_t id, uint32_t kind) override;

private:
    struct Entry {
        HMODULE module;
        uint32_t tag;
    };

    ResourceManager() = default;
    ~ResourceManager() = default;

    // The first answer other than null or 0 that `ask(module, number)` gives for a module of the id's tag.
    template <typename Ask>
    auto FirstAnswer(uint32_t id, Ask ask);

    ULONG references_ = 0;
    std::vector<Entry> entries_;  // the last one added stands first
};
