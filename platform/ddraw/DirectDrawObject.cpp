#include "platform/ddraw/DirectDrawObject.h"

#include <winuser.h>

#include <new>

#include "platform/ddraw/CallSwitches.h"
#include "platform/ddraw/ClipperObject.h"
#include "platform/ddraw/MemorySurface.h"
#include "platform/ddraw/PrimarySurface.h"

namespace tdkp {
namespace {

constexpr DWORD kSizedSurface = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;

HRESULT FillCaps(DDCAPS* caps) {
    if (caps == nullptr) return DD_OK;
    if (caps->dwSize != sizeof(*caps)) return DDERR_INVALIDPARAMS;
    *caps = {};
    caps->dwSize = sizeof(*caps);
    caps->dwCaps = DDCAPS_BLT | DDCAPS_BLTSTRETCH | DDCAPS_GDI | DDCAPS_BLTCOLORFILL;
    caps->dwFXCaps = DDFXCAPS_BLTMIRRORUPDOWN;
    caps->ddsOldCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_PRIMARYSURFACE | DDSCAPS_SYSTEMMEMORY;
    caps->ddsCaps.dwCaps = caps->ddsOldCaps.dwCaps;
    return DD_OK;
}

HRESULT MakeMemorySurface(const DDSURFACEDESC& description, IDirectDrawSurface** out) {
    auto* made = new (std::nothrow) MemorySurface;
    if (made == nullptr) return DDERR_OUTOFMEMORY;
    const HRESULT result = made->Allocate(description.dwWidth, description.dwHeight);
    if (result != DD_OK) {
        made->Release();
        return result;
    }
    *out = made;
    return DD_OK;
}

}  // namespace

HRESULT DirectDrawObject::Initialize(GUID* driver) {
    if (const HRESULT fault = CountCall()) return fault;
    const LayerGuard guard(lock_);
    if (driver != nullptr) return DDERR_UNSUPPORTED;
    if (initialized_) return DDERR_ALREADYINITIALIZED;
    initialized_ = true;
    return DD_OK;
}

HRESULT DirectDrawObject::SetCooperativeLevel(HWND window, DWORD flags) {
    if (const HRESULT fault = CountCall()) return fault;
    const bool known = window == nullptr || IsWindow(window);
    const LayerGuard guard(lock_);
    if (!initialized_) return DDERR_NOTINITIALIZED;
    if (!known) return DDERR_INVALIDPARAMS;
    if (flags != DDSCL_NORMAL) return DDERR_UNSUPPORTED;
    hasLevel_ = true;
    return DD_OK;
}

HRESULT DirectDrawObject::GetCaps(DDCAPS* driver, DDCAPS* emulation) {
    if (const HRESULT fault = CountCall()) return fault;
    const LayerGuard guard(lock_);
    if (!initialized_) return DDERR_NOTINITIALIZED;
    if (driver == nullptr && emulation == nullptr) return DDERR_INVALIDPARAMS;
    const HRESULT result = FillCaps(driver);
    return result == DD_OK ? FillCaps(emulation) : result;
}

HRESULT DirectDrawObject::CreateSurface(DDSURFACEDESC* description, IDirectDrawSurface** out, IUnknown* outer) {
    if (const HRESULT fault = CountCall()) return fault;
    if (out == nullptr || description == nullptr || description->dwSize != sizeof(*description))
        return DDERR_INVALIDPARAMS;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    const LayerGuard guard(lock_);
    if (!initialized_) return DDERR_NOTINITIALIZED;
    if (!hasLevel_) return DDERR_NOCOOPERATIVELEVELSET;
    const DWORD caps = description->ddsCaps.dwCaps;
    if (description->dwFlags == DDSD_CAPS && caps == DDSCAPS_PRIMARYSURFACE) return MakePrimary(out);
    const bool inMemory = (caps & ~DDSCAPS_OFFSCREENPLAIN) == DDSCAPS_SYSTEMMEMORY;
    if (description->dwFlags != kSizedSurface || !inMemory) return DDERR_UNSUPPORTED;
    return MakeMemorySurface(*description, out);
}

HRESULT DirectDrawObject::MakePrimary(IDirectDrawSurface** out) {
    if (!primaryLives_.expired()) return DDERR_PRIMARYSURFACEALREADYEXISTS;
    const std::shared_ptr<void> life = std::make_shared<char>();
    auto* made = new (std::nothrow) PrimarySurface(life);
    if (made == nullptr) return DDERR_OUTOFMEMORY;
    primaryLives_ = life;
    *out = made;
    return DD_OK;
}

HRESULT DirectDrawObject::CreateClipper(DWORD flags, IDirectDrawClipper** out, IUnknown* outer) {
    if (const HRESULT fault = CountCall()) return fault;
    if (out == nullptr || flags != 0) return DDERR_INVALIDPARAMS;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    const LayerGuard guard(lock_);
    if (!initialized_) return DDERR_NOTINITIALIZED;
    *out = new (std::nothrow) ClipperObject;
    return *out != nullptr ? DD_OK : DDERR_OUTOFMEMORY;
}

}  // namespace tdkp
