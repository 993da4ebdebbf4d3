// What both kinds of surfaces share: they are lost and restored, and most operations are nobody's business.
#pragma once

#include <ddraw.h>

#include "platform/ddraw/ComObject.h"
#include "platform/gdi/Raster.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

inline constexpr GUID kIDirectDrawSurfaceId = {
    0x6C14DB81, 0xA733, 0x11CE, {0xA5, 0x21, 0x00, 0x20, 0xAF, 0x0B, 0xE5, 0x60}};

// Has the display's format of the moment when it was made. It is lost while the display has another one, or
// from a test's wish until Restore.
class SurfaceObject : public ComObject<IDirectDrawSurface, kIDirectDrawSurfaceId> {
public:
    SurfaceObject();

    HRESULT Restore() final;
    HRESULT Initialize(IDirectDraw*, DDSURFACEDESC*) final { return DDERR_ALREADYINITIALIZED; }

    HRESULT Blt(RECT*, IDirectDrawSurface*, RECT*, DWORD, DDBLTFX*) override { return DDERR_UNSUPPORTED; }
    HRESULT Lock(RECT*, DDSURFACEDESC*, DWORD, HANDLE) override { return DDERR_CANTLOCKSURFACE; }
    HRESULT Unlock(void*) override { return DDERR_NOTLOCKED; }
    HRESULT SetClipper(IDirectDrawClipper*) override { return DDERR_UNSUPPORTED; }

    HRESULT AddAttachedSurface(IDirectDrawSurface*) final { return DDERR_UNSUPPORTED; }
    HRESULT AddOverlayDirtyRect(RECT*) final { return DDERR_UNSUPPORTED; }
    HRESULT BltBatch(DDBLTBATCH*, DWORD, DWORD) final { return DDERR_UNSUPPORTED; }
    HRESULT BltFast(DWORD, DWORD, IDirectDrawSurface*, RECT*, DWORD) final { return DDERR_UNSUPPORTED; }
    HRESULT DeleteAttachedSurface(DWORD, IDirectDrawSurface*) final { return DDERR_UNSUPPORTED; }
    HRESULT EnumAttachedSurfaces(void*, EnumCallback) final { return DDERR_UNSUPPORTED; }
    HRESULT EnumOverlayZOrders(DWORD, void*, OverlayCallback) final { return DDERR_UNSUPPORTED; }
    HRESULT Flip(IDirectDrawSurface*, DWORD) final { return DDERR_UNSUPPORTED; }
    HRESULT GetAttachedSurface(DDSCAPS*, IDirectDrawSurface**) final { return DDERR_UNSUPPORTED; }
    HRESULT GetBltStatus(DWORD) final { return DDERR_UNSUPPORTED; }
    HRESULT GetCaps(DDSCAPS*) final { return DDERR_UNSUPPORTED; }
    HRESULT GetClipper(IDirectDrawClipper**) final { return DDERR_UNSUPPORTED; }
    HRESULT GetColorKey(DWORD, DDCOLORKEY*) final { return DDERR_UNSUPPORTED; }
    HRESULT GetDC(HDC*) final { return DDERR_UNSUPPORTED; }
    HRESULT GetFlipStatus(DWORD) final { return DDERR_UNSUPPORTED; }
    HRESULT GetOverlayPosition(LONG*, LONG*) final { return DDERR_UNSUPPORTED; }
    HRESULT GetPalette(IDirectDrawPalette**) final { return DDERR_UNSUPPORTED; }
    HRESULT GetPixelFormat(DDPIXELFORMAT*) final { return DDERR_UNSUPPORTED; }
    HRESULT GetSurfaceDesc(DDSURFACEDESC*) final { return DDERR_UNSUPPORTED; }
    HRESULT IsLost() final { return DDERR_UNSUPPORTED; }
    HRESULT ReleaseDC(HDC) final { return DDERR_UNSUPPORTED; }
    HRESULT SetColorKey(DWORD, DDCOLORKEY*) final { return DDERR_UNSUPPORTED; }
    HRESULT SetOverlayPosition(LONG, LONG) final { return DDERR_UNSUPPORTED; }
    HRESULT SetPalette(IDirectDrawPalette*) final { return DDERR_UNSUPPORTED; }
    HRESULT UpdateOverlay(RECT*, IDirectDrawSurface*, RECT*, DWORD, DDOVERLAYFX*) final { return DDERR_UNSUPPORTED; }
    HRESULT UpdateOverlayDisplay(DWORD) final { return DDERR_UNSUPPORTED; }
    HRESULT UpdateOverlayZOrder(DWORD, IDirectDrawSurface*) final { return DDERR_UNSUPPORTED; }

    // The pixels to blit from. DDERR_SURFACELOST or DDERR_SURFACEBUSY while they can't be, DDERR_UNSUPPORTED of a
    // surface without.
    virtual HRESULT GetSource(Raster*) { return DDERR_UNSUPPORTED; }

protected:
    PixelFormat Format() const { return format_; }
    bool Lost() const;

    mutable LayerMutex lock_;

private:
    bool HasDisplayFormat() const;

    const PixelFormat format_;
    uint32_t losses_;  // guarded by lock_: how many there had been at the last Restore
};

}  // namespace tdkp
