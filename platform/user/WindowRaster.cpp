#include "platform/user/WindowRaster.h"

#include <algorithm>

#include "platform/gdi/Rects.h"
#include "platform/user/DisplayUse.h"
#include "platform/user/Paint.h"
#include "platform/user/Picture.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

// The parts of `piece` outside of `hole`, at most four.
int Subtract(const RECT& piece, const RECT& hole, RECT* parts) {
    RECT common;
    if (!IntersectRect(&common, &piece, &hole)) {
        parts[0] = piece;
        return 1;
    }
    const RECT around[] = {{piece.left, piece.top, piece.right, common.top},
                           {piece.left, common.top, common.left, common.bottom},
                           {common.right, common.top, piece.right, common.bottom},
                           {piece.left, common.bottom, piece.right, piece.bottom}};
    int count = 0;
    for (const RECT& part : around) {
        if (!IsRectEmpty(&part)) parts[count++] = part;
    }
    return count;
}

// Takes `hole` out of the pieces. False, and nothing done, if they would be more than fit.
bool TakeOut(const RECT& hole, RECT* pieces, int* count) {
    constexpr int kMaxParts = 4;
    RECT left[WindowRasterLock::kMaxClip + kMaxParts];
    int leftCount = 0;
    for (int piece = 0; piece < *count; ++piece) {
        leftCount += Subtract(pieces[piece], hole, left + leftCount);
        if (leftCount > WindowRasterLock::kMaxClip) return false;
    }
    std::copy(left, left + leftCount, pieces);
    *count = leftCount;
    return true;
}

// With more pieces than fit the clip stays larger than it could be: child windows cover what is below them.
int ClipOf(const DispatcherGuard& guard, const Window& window, const RECT& all, RECT* clip) {
    clip[0] = all;
    int count = 1;
    if ((window.style & WS_CLIPCHILDREN) == 0) return count;
    for (const HWND handle : window.children) {
        const Window* child = FindWindowState(guard, handle);
        if (child == nullptr || (child->style & WS_VISIBLE) == 0) continue;
        if (!TakeOut(child->bounds, clip, &count)) break;
    }
    return count;
}

Raster InsideEdge(Raster raster, LONG edge) {
    if (edge == 0 || raster.topRow == nullptr) return raster;
    raster.topRow +=
        static_cast<ptrdiff_t>(edge) * raster.pitch + static_cast<ptrdiff_t>(edge) * BytesPerPixel(raster.format);
    raster.width -= 2 * edge;
    raster.height -= 2 * edge;
    return raster;
}

}  // namespace

WindowRasterLock::WindowRasterLock(HWND window) : window_(window) {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    Window* state = HoldPicture(guard, window, thread);
    if (state == nullptr) return;
    if (!FitPicture(guard, *state)) {
        LetGoPicture(guard, *state);
        return;
    }
    state_ = state;
    raster = InsideEdge(state->picture.raster, state->edge);
    clipCount = ClipOf(guard, *state, BoundsOf(raster), clip);
}

WindowRasterLock::~WindowRasterLock() {
    if (state_ == nullptr) return;
    Window& state = *static_cast<Window*>(state_);
    const RECT all = BoundsOf(raster);
    RECT damaged;
    if (IntersectRect(&damaged, &damage_, &all)) {
        OffsetRect(&damaged, state.edge, state.edge);
        TerminationDeferral deferral;
        state.display->PutPicture(IdOf(window_), damaged);
    }
    DispatcherGuard guard(DispatcherLock());
    LetGoPicture(guard, state);
}

void WindowRasterLock::Damage(const RECT& rect) {
    const RECT former = damage_;
    UnionRect(&damage_, &former, &rect);
}

void WindowContextTaken(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr) return;
    if (InsideLayerPaint()) {
        ++state->layerContexts;
        return;
    }
    ++state->contexts;
    state->hadContext = true;
}

void WindowContextReturned(HWND window) {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr) return;
    int32_t& count = InsideLayerPaint() ? state->layerContexts : state->contexts;
    count = std::max(count - 1, 0);
    if (state->MayHavePicture() || state->picture.raster.topRow == nullptr) return;
    state = HoldPicture(guard, window, thread);
    if (state == nullptr) return;
    if (!state->MayHavePicture()) DropHeldPicture(guard, *state);
    LetGoPicture(guard, *state);
}

PixelFormat DisplayPixelFormat() {
    return DisplayUse()->Format();
}
SIZE DisplaySize() {
    return DisplayUse()->ScreenSize();
}

}  // namespace tdkp
