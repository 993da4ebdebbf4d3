#include "platform/user/Picture.h"

#include <algorithm>
#include <cstring>

#include "platform/gdi/PixelCodec.h"
#include "platform/gdi/RasterBlit.h"
#include "platform/gdi/Rects.h"
#include "platform/user/ClientEdge.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

void CopyRows(const Raster& from, uint8_t* to, int32_t toPitch, int32_t width, int32_t height) {
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(BytesPerPixel(from.format));
    for (ptrdiff_t row = 0; row < height; ++row) std::memcpy(to + row * toPitch, from.topRow + row * from.pitch, bytes);
}

bool MakeLarger(Display& display, HWND window, const RECT& size, const Raster& old, Raster* made) {
    const int32_t width = std::min(old.width, size.right);
    const int32_t height = std::min(old.height, size.bottom);
    const int32_t keptPitch = old.topRow != nullptr ? width * BytesPerPixel(old.format) : 0;
    std::vector<uint8_t> kept(static_cast<size_t>(keptPitch) * static_cast<size_t>(std::max(height, 0)));
    if (!kept.empty()) CopyRows(old, kept.data(), keptPitch, width, height);
    if (!display.MakePicture(IdOf(window), size.right, size.bottom, made) || made->topRow == nullptr) return false;
    FillPixels(*made, BoundsOf(*made), EncodeColor(*made, RGB(0, 0, 0)));
    if (!kept.empty() && old.format == made->format) {
        const Raster source = {kept.data(), keptPitch, width, height, old.format, nullptr};
        CopyRows(source, made->topRow, made->pitch, width, height);
    }
    return true;
}

}  // namespace

bool TryHoldPicture(DispatcherGuard&, Window& window, uint32_t thread) {
    WindowPicture& picture = window.picture;
    if (picture.depth != 0 && picture.holder != thread) return false;
    picture.holder = thread;
    ++picture.depth;
    return true;
}

Window* HoldPicture(DispatcherGuard& guard, HWND handle, uint32_t thread) {
    auto held = [&] {
        Window* window = FindWindowState(guard, handle);
        return window == nullptr || TryHoldPicture(guard, *window, thread);
    };
    WaitUntilReady(guard, held, kInfinite);
    return FindWindowState(guard, handle);
}

void LetGoPicture(DispatcherGuard& guard, Window& window) {
    WindowPicture& picture = window.picture;
    while (picture.depth == 1 && picture.raster.topRow != nullptr && !IsRectEmpty(&picture.exposed)) {
        const RECT all = BoundsOf(picture.raster);
        RECT shown;
        IntersectRect(&shown, &picture.exposed, &all);
        picture.exposed = RECT{0, 0, 0, 0};
        TerminationDeferral deferral;
        guard.unlock();
        if (!IsRectEmpty(&shown)) window.display->PutPicture(IdOf(window.handle), shown);
        guard.lock();
    }
    if (--picture.depth == 0) {
        picture.holder = 0;
        picture.exposed = RECT{0, 0, 0, 0};
        WakeWaiters(guard);
    }
}

bool FitPicture(DispatcherGuard& guard, Window& window) {
    WindowPicture& picture = window.picture;
    const RECT client = window.Client();
    const RECT all = {0, 0, window.Width(), window.Height()};
    if (IsRectEmpty(&client) || !window.MayHavePicture()) return false;
    const bool fits =
        picture.raster.topRow != nullptr && picture.raster.width == all.right && picture.raster.height == all.bottom;
    // Inside a nested hold the outer one still draws on the old memory.
    if (fits || picture.depth > 1) return picture.raster.topRow != nullptr;
    const Raster old = picture.raster;
    Raster made;
    TerminationDeferral deferral;
    guard.unlock();
    const bool works = MakeLarger(*window.display, window.handle, all, old, &made);
    if (works && window.edge > 0) DrawClientEdge(made);
    guard.lock();
    picture.raster = works ? made : Raster();
    // The frame is no part of what will be drawn, so it is shown when the picture is let go.
    if (works && window.edge > 0) picture.exposed = all;
    return works;
}

void DropHeldPicture(DispatcherGuard& guard, Window& window) {
    if (window.picture.raster.topRow == nullptr) return;
    window.picture.raster = Raster();
    TerminationDeferral deferral;
    guard.unlock();
    window.display->DropPicture(IdOf(window.handle));
    guard.lock();
}

void ForgetHolds(WindowPicture& picture, uint32_t thread) {
    if (picture.depth > 0 && picture.holder == thread) picture.depth = 0;
}

}  // namespace tdkp
