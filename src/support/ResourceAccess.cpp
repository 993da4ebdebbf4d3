#include "src/support/ResourceAccess.h"

#include <memory>

#include <tdkviz/resource_manager.h>

#include "src/support/DLLAccess.h"
#include "src/support/PathName.h"

namespace tdkviz {
namespace {

constexpr char kManagerShortName[] = "nqrs";
constexpr int kTagShift = 16;
constexpr uint32_t kNumberMask = 0xFFFF;

// Plain pointers: the detach step may run after the destructors of static objects.
DLLAccess* ResourceLibrary = nullptr;
INQResourceManager* ResourceManager = nullptr;
HMODULE RegisteredModule = nullptr;
uint16_t CurrentTag = 0;

// A module that waits for a manager.
HMODULE pendingModule = nullptr;
uint32_t pendingTag = 0;

void DropLibrary() {
    const std::unique_ptr<DLLAccess> dropped(ResourceLibrary);
    ResourceLibrary = nullptr;
}

void AddToManager(HMODULE module, uint32_t tag) {
    ResourceManager->AddModule(module, tag);
    if (!RegisteredModule) RegisteredModule = module;
}

// The manager, looked for if there is none yet; or null.
INQResourceManager* Manager() {
    StartResourceAccess();
    return ResourceManager;
}

uint32_t ResolveTag(uint32_t id) {
    uint32_t tag = id >> kTagShift;
    if (tag == kCurrentTagMark) {
        tag = CurrentTag;
    } else if (tag == kNoTagMark) {
        tag = 0;
    }
    return tag << kTagShift | (id & kNumberMask);
}

}  // namespace

void StartResourceAccess() {
    if (ResourceManager) return;
    char name[MAX_PATH];
    uint32_t size = sizeof name;
    CreateName(kManagerShortName, name, &size);
    DropLibrary();  // of an attempt that failed
    ResourceLibrary = std::make_unique<DLLAccess>().release();
    if (ResourceLibrary->Open(name, DLLKind::Common) != kDLLNoError) {
        const PathName beside = GetExecutableDirectory().Append(name);
        ResourceLibrary->Open(beside.ToString().GetText(), DLLKind::NotDef);
    }
    void* factory = ResourceLibrary->GetSymbol(kResourceManagerFactoryName);
    if (factory) reinterpret_cast<NQCreateInstanceFunction>(factory)(&ResourceManager);
    if (ResourceManager && pendingModule) {
        AddToManager(pendingModule, pendingTag);
        pendingModule = nullptr;
    }
}

void RegisterResourceModule(HMODULE module, uint32_t tag) {
    if (Manager()) {
        AddToManager(module, tag);
    } else if (!pendingModule) {
        pendingModule = module;
        pendingTag = tag;
    }
}

void SetResourceTag(uint16_t tag) {
    StartResourceAccess();
    CurrentTag = tag;
}

HBITMAP LoadResourceBitmap(uint32_t id) {
    INQResourceManager* manager = Manager();
    return manager ? manager->LoadBitmap(ResolveTag(id)) : nullptr;
}

int32_t LoadResourceString(uint32_t id, char* buffer, uint32_t size) {
    INQResourceManager* manager = Manager();
    return manager ? manager->LoadString(ResolveTag(id), buffer, size) : 0;
}

HMODULE GetResourceInstance(uint32_t id, uint32_t kind) {
    INQResourceManager* manager = Manager();
    return manager ? manager->GetResourceInstance(id, kind) : nullptr;
}

void StopResourceAccess() {
    pendingModule = nullptr;
    if (ResourceManager) {
        if (RegisteredModule) ResourceManager->RemoveModule(RegisteredModule);
        RegisteredModule = nullptr;
        const ULONG left = ResourceManager->Release();
        if (left == 0 && ResourceLibrary) ResourceLibrary->Close();
        ResourceManager = nullptr;
    }
    DropLibrary();
}

}  // namespace tdkviz
