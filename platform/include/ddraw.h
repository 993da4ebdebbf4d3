// The oldest interfaces of DirectDraw: a primary surface with a clipper on a window, and surfaces in memory.
// Tables are complete and in the published order; operations that nobody here calls give DDERR_UNSUPPORTED,
// as does every form of the others that nobody here asks for. Rows of a surface run from the top down.
// Any thread may call; each surface is used by one thread at a time.
#pragma once

#include "objbase.h"
#include "wingdi.h"

#define MAKE_DDHRESULT(code) (static_cast<HRESULT>(0x88760000 | (code)))
#define DD_OK S_OK
#define DDERR_ALREADYINITIALIZED MAKE_DDHRESULT(5)
#define DDERR_INVALIDRECT MAKE_DDHRESULT(150)
#define DDERR_CANTLOCKSURFACE MAKE_DDHRESULT(435)
#define DDERR_NOCOOPERATIVELEVELSET MAKE_DDHRESULT(212)
#define DDERR_SURFACEBUSY MAKE_DDHRESULT(430)
#define DDERR_SURFACELOST MAKE_DDHRESULT(450)
#define DDERR_PRIMARYSURFACEALREADYEXISTS MAKE_DDHRESULT(564)
#define DDERR_NOCLIPPERATTACHED MAKE_DDHRESULT(568)
#define DDERR_NOHWND MAKE_DDHRESULT(569)
#define DDERR_NOTLOCKED MAKE_DDHRESULT(584)
#define DDERR_WRONGMODE MAKE_DDHRESULT(587)
#define DDERR_INVALIDPARAMS E_INVALIDARG
#define DDERR_NOTINITIALIZED CO_E_NOTINITIALIZED
#define DDERR_OUTOFMEMORY E_OUTOFMEMORY
#define DDERR_UNSUPPORTED E_NOTIMPL

#define DDSCL_NORMAL 0x00000008u
#define DDSD_CAPS 0x00000001u
#define DDSD_HEIGHT 0x00000002u
#define DDSD_WIDTH 0x00000004u
#define DDSD_PITCH 0x00000008u
#define DDSD_LPSURFACE 0x00000800u
#define DDSD_PIXELFORMAT 0x00001000u
#define DDSCAPS_OFFSCREENPLAIN 0x00000040u
#define DDSCAPS_PRIMARYSURFACE 0x00000200u
#define DDSCAPS_SYSTEMMEMORY 0x00000800u
#define DDPF_PALETTEINDEXED8 0x00000020u
#define DDPF_RGB 0x00000040u
#define DDLOCK_WAIT 0x00000001u
#define DDBLT_COLORFILL 0x00000400u
#define DDBLT_DDFX 0x00000800u
#define DDBLT_WAIT 0x01000000u
#define DDBLTFX_MIRRORUPDOWN 0x00000004u
#define DDCAPS_BLT 0x00000040u
#define DDCAPS_BLTSTRETCH 0x00000200u
#define DDCAPS_GDI 0x00000400u
#define DDCAPS_BLTCOLORFILL 0x04000000u
#define DDFXCAPS_BLTMIRRORUPDOWN 0x00000080u

struct DDSCAPS {
    DWORD dwCaps;
};
struct DDSCAPS2 {
    DWORD dwCaps, dwCaps2, dwCaps3, dwCaps4;
};
struct DDCOLORKEY {
    DWORD dwColorSpaceLowValue, dwColorSpaceHighValue;
};
struct DDPIXELFORMAT {
    DWORD dwSize, dwFlags, dwFourCC, dwRGBBitCount;
    DWORD dwRBitMask, dwGBitMask, dwBBitMask, dwRGBAlphaBitMask;
};
struct DDSURFACEDESC {
    DWORD dwSize, dwFlags, dwHeight, dwWidth;  // pixels
    LONG lPitch;                               // bytes
    DWORD dwBackBufferCount, dwMipMapCount, dwAlphaBitDepth, dwReserved;
    LPVOID lpSurface;
    DDCOLORKEY ddckCKDestOverlay, ddckCKDestBlt, ddckCKSrcOverlay, ddckCKSrcBlt;
    DDPIXELFORMAT ddpfPixelFormat;
    DDSCAPS ddsCaps;
};
struct DDCAPS {
    DWORD dwSize, dwCaps, dwCaps2, dwCKeyCaps, dwFXCaps, dwFXAlphaCaps, dwPalCaps, dwSVCaps;
    DWORD dwAlphaBltConstBitDepths, dwAlphaBltPixelBitDepths, dwAlphaBltSurfaceBitDepths;
    DWORD dwAlphaOverlayConstBitDepths, dwAlphaOverlayPixelBitDepths, dwAlphaOverlaySurfaceBitDepths;
    DWORD dwZBufferBitDepths, dwVidMemTotal, dwVidMemFree, dwMaxVisibleOverlays, dwCurrVisibleOverlays;
    DWORD dwNumFourCCCodes, dwAlignBoundarySrc, dwAlignSizeSrc, dwAlignBoundaryDest, dwAlignSizeDest;
    DWORD dwAlignStrideAlign, dwRops[8];
    DDSCAPS ddsOldCaps;
    DWORD dwMinOverlayStretch, dwMaxOverlayStretch, dwMinLiveVideoStretch, dwMaxLiveVideoStretch;
    DWORD dwMinHwCodecStretch, dwMaxHwCodecStretch, dwReserved1, dwReserved2, dwReserved3;
    DWORD dwSVBCaps, dwSVBCKeyCaps, dwSVBFXCaps, dwSVBRops[8], dwVSBCaps, dwVSBCKeyCaps, dwVSBFXCaps, dwVSBRops[8];
    DWORD dwSSBCaps, dwSSBCKeyCaps, dwSSBFXCaps, dwSSBRops[8], dwMaxVideoPorts, dwCurrVideoPorts, dwSVBCaps2;
    DWORD dwNLVBCaps, dwNLVBCaps2, dwNLVBCKeyCaps, dwNLVBFXCaps, dwNLVBRops[8];
    DDSCAPS2 ddsCaps;
};
struct IDirectDrawSurface;
struct DDBLTFX {
    DWORD dwSize, dwDDFX, dwROP, dwDDROP, dwRotationAngle, dwZBufferOpCode, dwZBufferLow, dwZBufferHigh;
    DWORD dwZBufferBaseDest, dwZDestConstBitDepth;
    union {
        DWORD dwZDestConst;
        IDirectDrawSurface* lpDDSZBufferDest;
    };
    DWORD dwZSrcConstBitDepth;
    union {
        DWORD dwZSrcConst;
        IDirectDrawSurface* lpDDSZBufferSrc;
    };
    DWORD dwAlphaEdgeBlendBitDepth, dwAlphaEdgeBlend, dwReserved, dwAlphaDestConstBitDepth;
    union {
        DWORD dwAlphaDestConst;
        IDirectDrawSurface* lpDDSAlphaDest;
    };
    DWORD dwAlphaSrcConstBitDepth;
    union {
        DWORD dwAlphaSrcConst;
        IDirectDrawSurface* lpDDSAlphaSrc;
    };
    union {
        DWORD dwFillColor;  // as the surface stores it
        DWORD dwFillDepth, dwFillPixel;
        IDirectDrawSurface* lpDDSPattern;
    };
    DDCOLORKEY ddckDestColorkey, ddckSrcColorkey;
};
struct DDBLTBATCH;
struct DDOVERLAYFX;
struct IDirectDrawPalette;

struct IDirectDrawClipper : IUnknown {
    virtual HRESULT GetClipList(RECT* rect, void* list, DWORD* size) = 0;
    virtual HRESULT GetHWnd(HWND* window) = 0;
    virtual HRESULT Initialize(struct IDirectDraw* directDraw, DWORD flags) = 0;
    virtual HRESULT IsClipListChanged(BOOL* changed) = 0;
    virtual HRESULT SetClipList(void* list, DWORD flags) = 0;
    virtual HRESULT SetHWnd(DWORD flags, HWND window) = 0;
};

struct IDirectDrawSurface : IUnknown {
    using EnumCallback = HRESULT (*)(IDirectDrawSurface* surface, DDSURFACEDESC* description, void* context);
    using OverlayCallback = HRESULT (*)(IDirectDrawSurface* surface, void* context);
    virtual HRESULT AddAttachedSurface(IDirectDrawSurface* surface) = 0;
    virtual HRESULT AddOverlayDirtyRect(RECT* rect) = 0;
    // To the primary surface only: `from` stretched to `toRect` of the screen (nearest pixel, mirrored as `fx`
    // says), or filled, inside the visible part of the clipper's window. A null rectangle means all.
    virtual HRESULT Blt(RECT* toRect, IDirectDrawSurface* from, RECT* fromRect, DWORD flags, DDBLTFX* fx) = 0;
    virtual HRESULT BltBatch(DDBLTBATCH* batch, DWORD count, DWORD flags) = 0;
    virtual HRESULT BltFast(DWORD x, DWORD y, IDirectDrawSurface* from, RECT* fromRect, DWORD flags) = 0;
    virtual HRESULT DeleteAttachedSurface(DWORD flags, IDirectDrawSurface* surface) = 0;
    virtual HRESULT EnumAttachedSurfaces(void* context, EnumCallback callback) = 0;
    virtual HRESULT EnumOverlayZOrders(DWORD flags, void* context, OverlayCallback callback) = 0;
    virtual HRESULT Flip(IDirectDrawSurface* target, DWORD flags) = 0;
    virtual HRESULT GetAttachedSurface(DDSCAPS* caps, IDirectDrawSurface** out) = 0;
    virtual HRESULT GetBltStatus(DWORD flags) = 0;
    virtual HRESULT GetCaps(DDSCAPS* caps) = 0;
    virtual HRESULT GetClipper(IDirectDrawClipper** out) = 0;
    virtual HRESULT GetColorKey(DWORD flags, DDCOLORKEY* key) = 0;
    virtual HRESULT GetDC(HDC* dc) = 0;
    virtual HRESULT GetFlipStatus(DWORD flags) = 0;
    virtual HRESULT GetOverlayPosition(LONG* x, LONG* y) = 0;
    virtual HRESULT GetPalette(IDirectDrawPalette** out) = 0;
    virtual HRESULT GetPixelFormat(DDPIXELFORMAT* format) = 0;
    virtual HRESULT GetSurfaceDesc(DDSURFACEDESC* description) = 0;
    virtual HRESULT Initialize(struct IDirectDraw* directDraw, DDSURFACEDESC* description) = 0;
    virtual HRESULT IsLost() = 0;
    // A memory surface's pixels, until Unlock. Null rectangle and event.
    virtual HRESULT Lock(RECT* rect, DDSURFACEDESC* description, DWORD flags, HANDLE event) = 0;
    virtual HRESULT ReleaseDC(HDC dc) = 0;
    virtual HRESULT Restore() = 0;
    virtual HRESULT SetClipper(IDirectDrawClipper* clipper) = 0;
    virtual HRESULT SetColorKey(DWORD flags, DDCOLORKEY* key) = 0;
    virtual HRESULT SetOverlayPosition(LONG x, LONG y) = 0;
    virtual HRESULT SetPalette(IDirectDrawPalette* palette) = 0;
    virtual HRESULT Unlock(void* pixels) = 0;
    virtual HRESULT UpdateOverlay(RECT* fromRect, IDirectDrawSurface* to, RECT* toRect, DWORD flags,
                                  DDOVERLAYFX* fx) = 0;
    virtual HRESULT UpdateOverlayDisplay(DWORD flags) = 0;
    virtual HRESULT UpdateOverlayZOrder(DWORD flags, IDirectDrawSurface* reference) = 0;
};

struct IDirectDraw : IUnknown {
    using ModeCallback = HRESULT (*)(DDSURFACEDESC* description, void* context);
    virtual HRESULT Compact() = 0;
    virtual HRESULT CreateClipper(DWORD flags, IDirectDrawClipper** out, IUnknown* outer) = 0;
    virtual HRESULT CreatePalette(DWORD flags, void* entries, IDirectDrawPalette** out, IUnknown* outer) = 0;
    // The primary surface (one at a time), or a surface in memory in the display's format, zeroed.
    virtual HRESULT CreateSurface(DDSURFACEDESC* description, IDirectDrawSurface** out, IUnknown* outer) = 0;
    virtual HRESULT DuplicateSurface(IDirectDrawSurface* surface, IDirectDrawSurface** out) = 0;
    virtual HRESULT EnumDisplayModes(DWORD flags, DDSURFACEDESC* description, void* context, ModeCallback callback) = 0;
    virtual HRESULT EnumSurfaces(DWORD flags, DDSURFACEDESC* description, void* context,
                                 IDirectDrawSurface::EnumCallback callback) = 0;
    virtual HRESULT FlipToGDISurface() = 0;
    virtual HRESULT GetCaps(DDCAPS* driver, DDCAPS* emulation) = 0;
    virtual HRESULT GetDisplayMode(DDSURFACEDESC* description) = 0;
    virtual HRESULT GetFourCCCodes(DWORD* count, DWORD* codes) = 0;
    virtual HRESULT GetGDISurface(IDirectDrawSurface** out) = 0;
    virtual HRESULT GetMonitorFrequency(DWORD* frequency) = 0;
    virtual HRESULT GetScanLine(DWORD* line) = 0;
    virtual HRESULT GetVerticalBlankStatus(BOOL* blank) = 0;
    virtual HRESULT Initialize(GUID* driver) = 0;
    virtual HRESULT RestoreDisplayMode() = 0;
    virtual HRESULT SetCooperativeLevel(HWND window, DWORD flags) = 0;
    virtual HRESULT SetDisplayMode(DWORD width, DWORD height, DWORD bitsPerPixel) = 0;
    virtual HRESULT WaitForVerticalBlank(DWORD flags, HANDLE event) = 0;
};
