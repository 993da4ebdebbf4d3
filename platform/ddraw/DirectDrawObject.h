// The display as DirectDraw shows it: makes the surfaces and the clipper.
#pragma once

#include <ddraw.h>

#include <memory>

#include "platform/ddraw/ComObject.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

inline constexpr GUID kDirectDrawClass = {0xD7B70EE0, 0x4340, 0x11CF, {0xB0, 0x63, 0x00, 0x20, 0xAF, 0xC2, 0xCD, 0x35}};
inline constexpr GUID kIDirectDrawId = {0x6C14DB80, 0xA733, 0x11CE, {0xA5, 0x21, 0x00, 0x20, 0xAF, 0x0B, 0xE5, 0x60}};

// Nothing works before Initialize, and no surface is made before SetCooperativeLevel.
class DirectDrawObject final : public ComObject<IDirectDraw, kIDirectDrawId> {
public:
    HRESULT Initialize(GUID* driver) override;
    HRESULT SetCooperativeLevel(HWND window, DWORD flags) override;
    HRESULT GetCaps(DDCAPS* driver, DDCAPS* emulation) override;
    HRESULT CreateSurface(DDSURFACEDESC* description, IDirectDrawSurface** out, IUnknown* outer) override;
    HRESULT CreateClipper(DWORD flags, IDirectDrawClipper** out, IUnknown* outer) override;

    HRESULT Compact() override { return DDERR_UNSUPPORTED; }
    HRESULT CreatePalette(DWORD, void*, IDirectDrawPalette**, IUnknown*) override { return DDERR_UNSUPPORTED; }
    HRESULT DuplicateSurface(IDirectDrawSurface*, IDirectDrawSurface**) override { return DDERR_UNSUPPORTED; }
    HRESULT EnumDisplayModes(DWORD, DDSURFACEDESC*, void*, ModeCallback) override { return DDERR_UNSUPPORTED; }
    HRESULT EnumSurfaces(DWORD, DDSURFACEDESC*, void*, IDirectDrawSurface::EnumCallback) override {
        return DDERR_UNSUPPORTED;
    }
    HRESULT FlipToGDISurface() override { return DDERR_UNSUPPORTED; }
    HRESULT GetDisplayMode(DDSURFACEDESC*) override { return DDERR_UNSUPPORTED; }
    HRESULT GetFourCCCodes(DWORD*, DWORD*) override { return DDERR_UNSUPPORTED; }
    HRESULT GetGDISurface(IDirectDrawSurface**) override { return DDERR_UNSUPPORTED; }
    HRESULT GetMonitorFrequency(DWORD*) override { return DDERR_UNSUPPORTED; }
    HRESULT GetScanLine(DWORD*) override { return DDERR_UNSUPPORTED; }
    HRESULT GetVerticalBlankStatus(BOOL*) override { return DDERR_UNSUPPORTED; }
    HRESULT RestoreDisplayMode() override { return DDERR_UNSUPPORTED; }
    HRESULT SetDisplayMode(DWORD, DWORD, DWORD) override { return DDERR_UNSUPPORTED; }
    HRESULT WaitForVerticalBlank(DWORD, HANDLE) override { return DDERR_UNSUPPORTED; }

private:
    HRESULT MakePrimary(IDirectDrawSurface** out);

    LayerMutex lock_;
    bool initialized_ = false;  // guarded by lock_, as the two below
    bool hasLevel_ = false;
    std::weak_ptr<void> primaryLives_;  // held by the one primary surface
};

}  // namespace tdkp
