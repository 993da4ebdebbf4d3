// DirectDraw behind an output window: how it starts and ends, its surfaces and their locks.
#include <algorithm>
#include <cstring>
#include <utility>

#include <windows.h>

#include <objbase.h>

#include <ddraw.h>

#include "src/render/DDVizWindow.h"

namespace tdkviz {

namespace {

// The published numbers of the class and of its oldest interface.
constexpr GUID kCLSID_DirectDraw = {0xD7B70EE0, 0x4340, 0x11CF, {0xB0, 0x63, 0x00, 0x20, 0xAF, 0xC2, 0xCD, 0x35}};
constexpr GUID kIID_IDirectDraw = {0x6C14DB80, 0xA733, 0x11CE, {0xA5, 0x21, 0x00, 0x20, 0xAF, 0x0B, 0xE5, 0x60}};

constexpr int kLockTries = 3;
constexpr int32_t kBytesPerPixel = 4;  // of a frame

DDSURFACEDESC NewDescription(DWORD flags, DWORD caps) {
    DDSURFACEDESC description = {};
    description.dwSize = sizeof(description);
    description.dwFlags = flags;
    description.ddsCaps.dwCaps = caps;
    return description;
}

// DDERR_SURFACELOST after the last try that ended so.
HRESULT LockAndRestore(IDirectDrawSurface& surface, IDirectDrawSurface& primary, DDSURFACEDESC& description) {
    HRESULT result = DDERR_SURFACELOST;
    for (int tries = 0; tries < kLockTries && result == DDERR_SURFACELOST; ++tries) {
        description = NewDescription(0, 0);
        result = surface.Lock(nullptr, &description, DDLOCK_WAIT, nullptr);
        if (result != DDERR_SURFACELOST) break;
        surface.Restore();
        primary.Restore();
    }
    return result;
}

void Clear(const DDSURFACEDESC& locked, int32_t height) {
    if (locked.lPitch > 0)
        std::memset(locked.lpSurface, 0, static_cast<size_t>(locked.lPitch) * static_cast<size_t>(height));
}

uint32_t FormatOfDisplay() {
    const uint32_t format = GetDisplayFormat();
    return format == FormatNone ? FormatRGB32 : format;
}

}  // namespace

CDDVizWindow::SurfaceParts CDDVizWindow::PartsOf(int index) {
    if (index == 0) return {Surface0, LockedPixels0, isToBeCleared0_};
    return {Surface1, LockedPixels1, isToBeCleared1_};
}

// ---- Start and end

// What was made stays when it gives false: StopDirectDraw clears up.
bool CDDVizWindow::StartDirectDraw() {
    const MutexLock lock(&ObjectLock);
    return (DirectDraw || MakeDirectDraw()) && (PrimarySurface || MakePrimarySurface());
}

bool CDDVizWindow::MakeDirectDraw() {
    if (!ComInitialized) {
        ComInitialized = SUCCEEDED(CoInitialize(nullptr));
        comThread_ = GetCurrentThreadId();
    }
    if (FAILED(CoCreateInstance(kCLSID_DirectDraw, nullptr, CLSCTX_ALL, kIID_IDirectDraw, DirectDraw.ReceiveVoid())))
        return false;
    if (FAILED(DirectDraw->Initialize(nullptr))) return false;
    DirectDraw->SetCooperativeLevel(Window, DDSCL_NORMAL);
    DDCAPS caps = {};
    caps.dwSize = sizeof(caps);
    return DirectDraw->GetCaps(&caps, nullptr) == DD_OK && (caps.dwCaps & DDCAPS_BLTSTRETCH) != 0;
}

bool CDDVizWindow::MakePrimarySurface() {
    DDSURFACEDESC description = NewDescription(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE);
    if (FAILED(DirectDraw->CreateSurface(&description, PrimarySurface.Receive(), nullptr))) return false;
    RefPtr<IDirectDrawClipper> clipper;
    if (DirectDraw->CreateClipper(0, clipper.Receive(), nullptr) != DD_OK) return false;
    // Without the clip the picture would have no place.
    return clipper->SetHWnd(0, Window) == DD_OK && PrimarySurface->SetClipper(clipper.Get()) == DD_OK;
}

void CDDVizWindow::StopDirectDraw() {
    const MutexLock lock(&ObjectLock);
    UnlockSurface(0);
    UnlockSurface(1);
    Surface0.Reset();
    Surface1.Reset();
    PrimarySurface.Reset();
    DirectDraw.Reset();
    // The count is the thread's: after that thread was ended by force nothing of it is left to give back.
    if (std::exchange(ComInitialized, false) && comThread_ == GetCurrentThreadId()) CoUninitialize();
}

// ---- Surfaces

void CDDVizWindow::BuildSurfaces(int32_t width, int32_t height) {
    if (UseGDI) return CVizWindow::BuildSurfaces(width, height);
    if (width < 1 || height < 1 || (StartDirectDraw() && MakeSurfaces(width, height))) return;
    StopDirectDraw();
    UseGDI = true;
    CVizWindow::BuildSurfaces(width, height);
}

void CDDVizWindow::FreeSurfaces() {
    if (UseGDI) return CVizWindow::FreeSurfaces();
    FreeFrameBuffers();
    StopDirectDraw();
}

bool CDDVizWindow::MakeSurfaces(int32_t width, int32_t height) {
    const int32_t frameWidth = std::min(width, kMaxFrameWidth), frameHeight = std::min(height, kMaxFrameHeight);
    const uint32_t format = FormatOfDisplay();
    const bool sameSize = frameWidth == FrameWidth && frameHeight == FrameHeight;
    if (Surface0 && Surface1 && sameSize && format == DisplayFormat) return true;
    const MutexLock lock0(&SurfaceLock0);
    const MutexLock lock1(&SurfaceLock1);
    UnlockSurface(0);
    UnlockSurface(1);
    Surface0.Reset();
    Surface1.Reset();
    surfacePitch_ = kBytesPerPixel * frameWidth;
    if (!MakeSurface(0, frameWidth, frameHeight) || !MakeSurface(1, frameWidth, frameHeight)) return false;
    FrameWidth = frameWidth;
    FrameHeight = frameHeight;
    Surface0IsFront = true;
    return ChooseMode(format);
}

// In the display's format. Its first picture is black, whatever stood in that memory; if it can't be restored at once,
// the next frame tries again.
bool CDDVizWindow::MakeSurface(int index, int32_t width, int32_t height) {
    const SurfaceParts parts = PartsOf(index);
    DDSURFACEDESC description = NewDescription(DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, DDSCAPS_SYSTEMMEMORY);
    description.dwWidth = static_cast<DWORD>(width);
    description.dwHeight = static_cast<DWORD>(height);
    if (FAILED(DirectDraw->CreateSurface(&description, parts.surface.Receive(), nullptr))) return false;
    const HRESULT result = LockAndRestore(*parts.surface.Get(), *PrimarySurface.Get(), description);
    parts.isToBeCleared = result == DDERR_SURFACELOST;
    if (result != DD_OK) return parts.isToBeCleared;
    surfacePitch_ = description.lPitch;
    Clear(description, height);
    parts.surface->Unlock(nullptr);
    return true;
}

// Effects go from row to row in whole pixels.
bool CDDVizWindow::SuitsFrames(int32_t pitch) const {
    return NeedsConversion || (pitch >= kBytesPerPixel * FrameWidth && pitch % kBytesPerPixel == 0);
}

// False if the surfaces can't show the frames.
bool CDDVizWindow::ChooseMode(uint32_t displayFormat) {
    const MutexLock lock(&SizeLock);
    FrameFormat = FormatRGB32;
    DisplayFormat = displayFormat;
    FreeFrameBuffers();
    NeedsConversion = displayFormat != FrameFormat;
    if (!NeedsConversion) {
        FramePitch = DisplayPitch = -surfacePitch_;
        return SuitsFrames(surfacePitch_);
    }
    ChooseConverter();
    if (NeedsConversion) MakeFrameBuffers();
    return NeedsConversion;
}

// ---- Locks

void CDDVizWindow::EnterSurface(int index) {
    SurfaceLock0.Lock();
    if (index == 1) SurfaceLock1.Lock();
}

void CDDVizWindow::LeaveSurface(int index) {
    if (index == 1) SurfaceLock1.Unlock();
    SurfaceLock0.Unlock();
}

void* CDDVizWindow::LockSurface(int index) {
    const SurfaceParts parts = PartsOf(index);
    if (!parts.surface || parts.pixels) return parts.pixels;
    EnterSurface(index);
    DDSURFACEDESC description = {};
    HRESULT result = LockAndRestore(*parts.surface.Get(), *PrimarySurface.Get(), description);
    if (result == DD_OK && !SuitsFrames(description.lPitch)) {
        parts.surface->Unlock(nullptr);
        result = DDERR_UNSUPPORTED;
    }
    if (result == DD_OK) {
        if (std::exchange(parts.isToBeCleared, false)) Clear(description, FrameHeight);
        parts.pixels = description.lpSurface;
        DisplayPitch = NeedsConversion ? description.lPitch : -description.lPitch;
        if (!NeedsConversion) FramePitch = DisplayPitch;
        return parts.pixels;
    }
    // A lost surface costs this frame only.
    if (result != DDERR_SURFACELOST) FallBack();
    LeaveSurface(index);
    return nullptr;
}

void CDDVizWindow::UnlockSurface(int index) {
    const SurfaceParts parts = PartsOf(index);
    if (!parts.pixels) return;
    parts.surface->Unlock(nullptr);
    parts.pixels = nullptr;
    LeaveSurface(index);
}

// In the middle of a frame, so at the frame's size. The window's size follows when the frame has ended, ahead of what
// somebody has asked for meanwhile.
void CDDVizWindow::FallBack() {
    const int32_t width = DisplayWidth, height = DisplayHeight;
    FreeSurfaces();
    UseGDI = true;
    BuildSurfaces(FrameWidth, FrameHeight);
    if (width == DisplayWidth && height == DisplayHeight) return;
    ResizeAfterFrame(width, height);
}

}  // namespace tdkviz
