#include "src/render/DDVizWindow.h"

#include <algorithm>

#include <windows.h>

#include <objbase.h>

#include <ddraw.h>

namespace tdkviz {

namespace {

constexpr int32_t kLongestSide = 0x7FFF;  // what a window can have

}  // namespace

CDDVizWindow::CDDVizWindow(HMODULE module, HWND parent) : CVizWindow(module, parent) {
    CVizWindow::FreeSurfaces();
}

CDDVizWindow::~CDDVizWindow() {
    CDDVizWindow::FreeSurfaces();
}

bool CDDVizWindow::IsUnlocked() {
    if (!CVizWindow::IsUnlocked()) return false;
    for (KVAWinMutex* lock : {&ObjectLock, &SurfaceLock0, &SurfaceLock1}) {
        if (lock->TryLock() != S_OK) return false;
        lock->Unlock();
    }
    return true;
}

HRESULT CDDVizWindow::Resize(int32_t width, int32_t height) {
    if (UseGDI) return CVizWindow::Resize(width, height);
    const int32_t newWidth = std::clamp(width, 0, kLongestSide), newHeight = std::clamp(height, 0, kLongestSide);
    if (ResizeOnOwnThread(newWidth, newHeight)) return S_FALSE;
    DisplayWidth = newWidth;
    DisplayHeight = newHeight;
    SizeWindow(newWidth, newHeight);
    if (Window && DrawsFrames) BuildSurfaces(newWidth, newHeight);
    Present(false);
    return S_FALSE;
}

// ---- Frames

void* CDDVizWindow::GetFrontPixels() {
    if (!UseGDI && !NeedsConversion) {
        void* pixels = LockSurface(FrontIndex());
        if (!UseGDI) {
            const MutexLock lock(&SizeLock);
            frontInUse_ = pixels != nullptr;
            return pixels;
        }
    }
    return CVizWindow::GetFrontPixels();
}

void* CDDVizWindow::GetBackPixels() {
    if (!UseGDI && !NeedsConversion) {
        void* pixels = LockSurface(1 - FrontIndex());
        if (!UseGDI) {
            const MutexLock lock(&SizeLock);
            backInUse_ = pixels != nullptr;
            return pixels;
        }
    }
    return CVizWindow::GetBackPixels();
}

void CDDVizWindow::ReleaseFront() {
    CVizWindow::ReleaseFront();
    if (!UseGDI && !NeedsConversion) UnlockSurface(FrontIndex());
}

void CDDVizWindow::ReleaseBack() {
    CVizWindow::ReleaseBack();
    if (!UseGDI && !NeedsConversion) UnlockSurface(1 - FrontIndex());
}

void CDDVizWindow::SwapBuffers() {
    if (UseGDI || NeedsConversion) return CVizWindow::SwapBuffers();
    const MutexLock lock0(&SurfaceLock0);
    const MutexLock lock1(&SurfaceLock1);
    Surface0IsFront = !Surface0IsFront;
}

// ---- The way to the screen

void CDDVizWindow::Present(bool newFrame) {
    if (!UseGDI) {
        if (PartsOf(FrontIndex()).pixels) return;
        if (DrawsFrames) ShowFrame();
    }
    if (UseGDI) {
        CVizWindow::Present(newFrame);
    } else if (newFrame) {
        ServeDeferred();
    }
}

void CDDVizWindow::ShowFrame() {
    const int front = FrontIndex();
    const SurfaceParts parts = PartsOf(front);
    if (!parts.surface || !Window) return;
    EnterSurface(front);
    HRESULT result = DD_OK;
    if (NeedsConversion ? ConvertIntoSurface() : IsCleared(front)) {
        RECT place = PlaceOnScreen();
        DDBLTFX effects = {};
        effects.dwSize = sizeof(effects);
        effects.dwDDFX = NeedsConversion ? 0 : DDBLTFX_MIRRORUPDOWN;
        result = PrimarySurface->Blt(&place, parts.surface.Get(), nullptr, DDBLT_DDFX, &effects);
    }
    LeaveSurface(front);
    if (result != DDERR_SURFACELOST) return;
    PrimarySurface->Restore();
    UnlockSurface(front);
}

// A surface that was lost as soon as it was made has no picture yet.
bool CDDVizWindow::IsCleared(int index) {
    if (!PartsOf(index).isToBeCleared) return true;
    if (!LockSurface(index)) return false;
    UnlockSurface(index);
    return true;
}

// The frames' rows are bottom-up and the surface's top-down: the signs of the pitches make the converter turn them.
bool CDDVizWindow::ConvertIntoSurface() {
    void* pixels = LockSurface(0);
    if (!pixels) return false;
    if (FrontPixels) {
        ConvertFrame(pixels, FrameWidth, FrameHeight, DisplayPitch, 0, 0, FrameWidth, FrameHeight, FrontPixels,
                     FrameWidth, FrameHeight, FramePitch, 0, 0, FrameWidth, FrameHeight);
    }
    UnlockSurface(0);
    return true;
}

RECT CDDVizWindow::PlaceOnScreen() const {
    POINT corner = {0, 0};
    ClientToScreen(Window, &corner);
    return {corner.x, corner.y, corner.x + DisplayWidth, corner.y + DisplayHeight};
}

void CDDVizWindow::Blank() {
    if (UseGDI) return CVizWindow::Blank();
    if (!Window || !PrimarySurface) return;
    RECT place = PlaceOnScreen();
    DDBLTFX effects = {};
    effects.dwSize = sizeof(effects);
    effects.dwFillColor = 0;
    PrimarySurface->Blt(&place, nullptr, nullptr, DDBLT_COLORFILL, &effects);
}

}  // namespace tdkviz
