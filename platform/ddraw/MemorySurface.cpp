#include "platform/ddraw/MemorySurface.h"

#include <limits>
#include <utility>

#include "platform/ddraw/CallSwitches.h"
#include "platform/gdi/DibLayout.h"
#include "platform/gdi/PixelCodec.h"

namespace tdkp {
namespace {

constexpr DWORD kMaxSide = 0x7FFF;

DDPIXELFORMAT Describe(PixelFormat format) {
    DDPIXELFORMAT description = {};
    description.dwSize = sizeof(description);
    description.dwFlags = DDPF_RGB | (format == PixelFormat::kIndexed8 ? DDPF_PALETTEINDEXED8 : 0);
    description.dwRGBBitCount = static_cast<DWORD>(BitsPerPixel(format));
    DWORD masks[3];
    if (MasksOf(format, masks)) {
        description.dwRBitMask = masks[0];
        description.dwGBitMask = masks[1];
        description.dwBBitMask = masks[2];
    }
    return description;
}

}  // namespace

HRESULT MemorySurface::Allocate(DWORD width, DWORD height) {
    if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide) return DDERR_INVALIDPARAMS;
    const int64_t pitch = DibPitch(BitsPerPixel(Format()), width) + RowPadding();
    if (pitch * height > std::numeric_limits<int32_t>::max()) return DDERR_OUTOFMEMORY;
    if (!memory_.Allocate(static_cast<size_t>(pitch * height))) return DDERR_OUTOFMEMORY;
    raster_ = {memory_.Data(),
               static_cast<int32_t>(pitch),
               static_cast<int32_t>(width),
               static_cast<int32_t>(height),
               Format(),
               nullptr};
    return DD_OK;
}

HRESULT MemorySurface::Lock(RECT* rect, DDSURFACEDESC* description, DWORD flags, HANDLE event) {
    if (const HRESULT fault = CountCall()) return fault;
    if (description == nullptr || description->dwSize != sizeof(*description) || event != nullptr)
        return DDERR_INVALIDPARAMS;
    if (rect != nullptr || (flags & ~DDLOCK_WAIT) != 0) return DDERR_UNSUPPORTED;
    if (Lost()) return DDERR_SURFACELOST;
    const LayerGuard guard(lock_);
    if (std::exchange(locked_, true)) return DDERR_SURFACEBUSY;
    *description = {};
    description->dwSize = sizeof(*description);
    description->dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT | DDSD_PITCH | DDSD_LPSURFACE | DDSD_PIXELFORMAT;
    description->dwWidth = static_cast<DWORD>(raster_.width);
    description->dwHeight = static_cast<DWORD>(raster_.height);
    description->lPitch = raster_.pitch;
    description->lpSurface = raster_.topRow;
    description->ddpfPixelFormat = Describe(raster_.format);
    description->ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_SYSTEMMEMORY;
    return DD_OK;
}

HRESULT MemorySurface::Unlock(void* pixels) {
    if (const HRESULT fault = CountCall()) return fault;
    if (pixels != nullptr && pixels != raster_.topRow) return DDERR_INVALIDRECT;
    const LayerGuard guard(lock_);
    return std::exchange(locked_, false) ? DD_OK : DDERR_NOTLOCKED;
}

HRESULT MemorySurface::GetSource(Raster* source) {
    if (Lost()) return DDERR_SURFACELOST;
    const LayerGuard guard(lock_);
    if (locked_) return DDERR_SURFACEBUSY;
    *source = raster_;
    return DD_OK;
}

}  // namespace tdkp
