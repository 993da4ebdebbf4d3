// The screen, as far as the clipper's window shows on it.
#pragma once

#include <memory>

#include "platform/ddraw/ClipperObject.h"
#include "platform/ddraw/SurfaceObject.h"

namespace tdkp {

class PrimarySurface final : public SurfaceObject {
public:
    // Holds `life` for as long as it lives.
    explicit PrimarySurface(std::shared_ptr<void> life) : life_(std::move(life)) {}

    HRESULT Blt(RECT* toRect, IDirectDrawSurface* from, RECT* fromRect, DWORD flags, DDBLTFX* fx) override;
    HRESULT SetClipper(IDirectDrawClipper* clipper) override;

private:
    ~PrimarySurface() override;
    HRESULT FindWindow(HWND* window) const;

    const std::shared_ptr<void> life_;
    ClipperObject* clipper_ = nullptr;  // guarded by lock_; counted
};

}  // namespace tdkp
