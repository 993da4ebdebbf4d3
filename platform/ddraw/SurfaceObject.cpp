#include "platform/ddraw/SurfaceObject.h"

#include "platform/ddraw/CallSwitches.h"
#include "platform/user/WindowRaster.h"

namespace tdkp {

SurfaceObject::SurfaceObject() : format_(DisplayPixelFormat()), losses_(LossesSoFar()) {}

bool SurfaceObject::HasDisplayFormat() const {
    return format_ == DisplayPixelFormat();
}

bool SurfaceObject::Lost() const {
    if (!HasDisplayFormat()) return true;
    const LayerGuard guard(lock_);
    return losses_ != LossesSoFar();
}

HRESULT SurfaceObject::Restore() {
    if (const HRESULT fault = CountCall()) return fault;
    if (!HasDisplayFormat()) return DDERR_WRONGMODE;
    const LayerGuard guard(lock_);
    losses_ = LossesSoFar();
    return DD_OK;
}

}  // namespace tdkp
