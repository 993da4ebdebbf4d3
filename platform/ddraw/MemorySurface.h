// A surface in the program's own memory, to be painted while it is locked and blitted while it isn't.
#pragma once

#include "platform/ddraw/SurfaceObject.h"
#include "platform/gdi/PixelMemory.h"

namespace tdkp {

class MemorySurface final : public SurfaceObject {
public:
    // Called once, right after construction. The pixels start as 0.
    HRESULT Allocate(DWORD width, DWORD height);

    HRESULT Lock(RECT* rect, DDSURFACEDESC* description, DWORD flags, HANDLE event) override;
    HRESULT Unlock(void* pixels) override;

    HRESULT GetSource(Raster* source) override;

private:
    // Fixed after Allocate, but for what stands in the pixels.
    Raster raster_;
    PixelMemory memory_;
    bool locked_ = false;  // guarded by lock_
};

}  // namespace tdkp
