// The base of the room's objects: one interface, counted references.
#pragma once

#include <unknwn.h>

#include <atomic>

#include "platform/kernel/Counts.h"

namespace tdkp {

inline constexpr GUID kIUnknownId = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// The first reference is the maker's. `kId` is the interface's; an object answers for that and IUnknown.
template <typename Interface, const GUID& kId>
class ComObject : public Interface {
public:
    ComObject() { CountDirectDraw(+1); }
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT QueryInterface(const GUID& id, void** out) final {
        if (out == nullptr) return E_POINTER;
        *out = nullptr;
        if (id != kId && id != kIUnknownId) return E_NOINTERFACE;
        *out = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    uint32_t AddRef() final { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }
    uint32_t Release() final {
        const uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~ComObject() { CountDirectDraw(-1); }

private:
    std::atomic<uint32_t> references_{1};
};

}  // namespace tdkp
