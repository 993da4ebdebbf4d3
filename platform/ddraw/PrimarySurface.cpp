#include "platform/ddraw/PrimarySurface.h"

#include <winuser.h>

#include <utility>

#include "platform/ddraw/CallSwitches.h"
#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"
#include "platform/user/WindowRaster.h"

namespace tdkp {
namespace {

bool Inside(const RECT& rect, const RECT& bounds) {
    return !IsEmpty(rect) && rect.left >= bounds.left && rect.top >= bounds.top && rect.right <= bounds.right &&
           rect.bottom <= bounds.bottom;
}

HRESULT PrepareFill(const DDBLTFX& fx, BlitJob& job) {
    job.rop = kRopCopyPattern;
    job.pattern = fx.dwFillColor;
    return DD_OK;
}

HRESULT PrepareCopy(IDirectDrawSurface* from, const RECT* fromRect, const DDBLTFX* fx, BlitJob& job) {
    const HRESULT result = static_cast<SurfaceObject*>(from)->GetSource(&job.from);
    if (result != DD_OK) return result;
    job.fromRect = fromRect != nullptr ? *fromRect : BoundsOf(job.from);
    if (!Inside(job.fromRect, BoundsOf(job.from))) return DDERR_INVALIDRECT;
    const DWORD effects = fx != nullptr ? fx->dwDDFX : 0;
    if ((effects & ~DDBLTFX_MIRRORUPDOWN) != 0) return DDERR_UNSUPPORTED;
    job.mirrorY = effects != 0;
    return DD_OK;
}

// Everything of the job but the target and its clip.
HRESULT PrepareJob(IDirectDrawSurface* from, const RECT* fromRect, DWORD flags, const DDBLTFX* fx, BlitJob& job) {
    const DWORD kind = flags & ~DDBLT_WAIT;
    if (kind != 0 && (fx == nullptr || fx->dwSize != sizeof(*fx))) return DDERR_INVALIDPARAMS;
    if (kind == DDBLT_COLORFILL) return PrepareFill(*fx, job);
    if (kind != 0 && kind != DDBLT_DDFX) return DDERR_UNSUPPORTED;
    if (from == nullptr) return DDERR_INVALIDPARAMS;
    return PrepareCopy(from, fromRect, kind == DDBLT_DDFX ? fx : nullptr, job);
}

void RunInWindow(HWND window, BlitJob& job) {
    const POINT origin = ScreenOriginTold(window);
    WindowRasterLock target(window);
    if (target.raster.topRow == nullptr) return;
    job.to = target.raster;
    job.toRect = Shift(job.toRect, -int64_t{origin.x}, -int64_t{origin.y});
    // Both have the display's palette.
    job.from.palette = job.to.palette;
    target.Damage(RunBlit(job, target.clip, target.clipCount));
}

}  // namespace

PrimarySurface::~PrimarySurface() {
    if (clipper_ != nullptr) clipper_->Release();
}

HRESULT PrimarySurface::SetClipper(IDirectDrawClipper* clipper) {
    if (const HRESULT fault = CountCall()) return fault;
    if (clipper != nullptr) clipper->AddRef();
    ClipperObject* former = nullptr;
    {
        const LayerGuard guard(lock_);
        former = std::exchange(clipper_, static_cast<ClipperObject*>(clipper));
    }
    if (former != nullptr) former->Release();
    return DD_OK;
}

HRESULT PrimarySurface::FindWindow(HWND* window) const {
    const LayerGuard guard(lock_);
    if (clipper_ == nullptr) return DDERR_NOCLIPPERATTACHED;
    *window = clipper_->Window();
    return *window != nullptr ? DD_OK : DDERR_NOHWND;
}

HRESULT PrimarySurface::Blt(RECT* toRect, IDirectDrawSurface* from, RECT* fromRect, DWORD flags, DDBLTFX* fx) {
    if (const HRESULT fault = CountCall()) return fault;
    if (Lost()) return DDERR_SURFACELOST;
    HWND window = nullptr;
    BlitJob job;
    HRESULT result = FindWindow(&window);
    if (result == DD_OK) result = PrepareJob(from, fromRect, flags, fx, job);
    if (result != DD_OK) return result;
    const SIZE screen = DisplaySize();
    job.toRect = toRect != nullptr ? *toRect : RECT{0, 0, screen.cx, screen.cy};
    if (IsEmpty(job.toRect)) return DDERR_INVALIDRECT;
    RunInWindow(window, job);
    return DD_OK;
}

}  // namespace tdkp
