// A resource manager that notes what it is asked for.
#include <tdkviz/resource_manager.h>

#include <cstdio>

namespace {

char lastCall[256];
ULONG references = 0;

class Manager final : public INQResourceManager {
public:
    HRESULT QueryInterface(const GUID&, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
    void AddModule(HMODULE module, uint32_t tag) override {
        std::snprintf(lastCall, sizeof lastCall, "AddModule %p %u", static_cast<void*>(module), tag);
    }
    void RemoveModule(HMODULE module) override {
        std::snprintf(lastCall, sizeof lastCall, "RemoveModule %p", static_cast<void*>(module));
    }
    HBITMAP LoadBitmap(uint32_t id) override {
        std::snprintf(lastCall, sizeof lastCall, "LoadBitmap %u", id);
        return nullptr;
    }
    int32_t LoadString(uint32_t id, char* buffer, uint32_t size) override {
        return std::snprintf(buffer, size, "text %u", id);
    }
    HMODULE GetResourceInstance(uint32_t id, uint32_t kind) override {
        std::snprintf(lastCall, sizeof lastCall, "GetResourceInstance %u %u", id, kind);
        return nullptr;
    }
};

Manager theManager;

}  // namespace

TDKVIZ_EXPORT HRESULT NQCreateInstance(INQResourceManager** out) {
    references = 1;
    *out = &theManager;
    return E_FAIL;  // is not looked at
}

TDKVIZ_EXPORT const char* LastCall() {
    return lastCall;
}
