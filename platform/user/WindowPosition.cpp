#include "platform/user/WindowPosition.h"

#include <algorithm>

#include "platform/user/Focus.h"
#include "platform/user/Paint.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

void EraseTree(HWND window) {
    std::vector<HWND> windows;
    {
        const uint32_t thread = CurrentThreadId();
        DispatcherGuard guard(DispatcherLock());
        for (const HWND handle : TreeOf(guard, window)) {
            if (FindWindowState(guard, handle)->thread == thread) windows.push_back(handle);
        }
    }
    for (const HWND handle : windows) EraseNow(handle);
}

// Sets or clears WS_VISIBLE; false if the window has gone.
bool MarkVisible(HWND window, bool visible) {
    DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr) return false;
    state->style = visible ? state->style | WS_VISIBLE : state->style & ~WS_VISIBLE;
    if (!visible) {
        state->update = RECT{0, 0, 0, 0};
        state->erase = false;
    }
    return true;
}

bool ShowOnOwner(HWND window, bool show, bool activate) {
    bool was = false;
    bool topLevel = false;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr || (show && state->destroying)) return false;
        was = (state->style & WS_VISIBLE) != 0;
        topLevel = state->TopLevel();
    }
    if (was != show) {
        CallProcedure(window, WM_SHOWWINDOW, show, 0);
        if (!show) LeaveWindow(window);
        if (!MarkVisible(window, show)) return was;
    }
    Display* display = DisplayOf(window);
    if (display != nullptr && (was != show || (show && topLevel && activate)))
        display->Show(IdOf(window), show, topLevel && activate);
    if (!was && show) {
        {
            DispatcherGuard guard(DispatcherLock());
            InvalidateTree(guard, window);
        }
        EraseTree(window);
    }
    if (show && topLevel && activate) Activate(window);
    return was;
}

// Erases what a change of size uncovers and lets it be painted; all of the window if the class wants so.
void InvalidateResized(HWND window, const RECT& former) {
    RECT client;
    LONG edges = 0;
    bool whole = false;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return;
        client = state->Client();
        edges = 2 * state->edge;
        whole = (state->windowClass->info.style & (CS_HREDRAW | CS_VREDRAW)) != 0;
    }
    const LONG keptWidth = whole ? 0 : std::min(former.right - former.left - edges, client.right);
    const LONG keptHeight = whole ? 0 : std::min(former.bottom - former.top - edges, client.bottom);
    const RECT right = {keptWidth, 0, client.right, keptHeight};
    const RECT below = {0, keptHeight, client.right, client.bottom};
    RECT uncovered;
    if (!UnionRect(&uncovered, &right, &below)) return;
    const bool rightErased = ErasePart(window, right);
    const bool belowErased = ErasePart(window, below);
    DispatcherGuard guard(DispatcherLock());
    if (Window* state = FindWindowState(guard, window))
        InvalidateState(guard, *state, uncovered, !rightErased || !belowErased);
}

// Tells the window of its new place. Messages in the order of the published default handling.
void AnnouncePlace(HWND window, const RECT& former, bool redraw) {
    RECT place;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return;
        place = state->bounds;
    }
    const bool sized = place.right - place.left != former.right - former.left ||
                       place.bottom - place.top != former.bottom - former.top;
    if (place.left != former.left || place.top != former.top) SendMove(window);
    if (sized) SendSize(window);
    if (sized && redraw) InvalidateResized(window, former);
}

bool CoversScreen(const Window& window, const RECT& place, SIZE screen) {
    return window.TopLevel() && (window.style & (WS_CAPTION | WS_THICKFRAME)) == 0 && place.left <= 0 &&
           place.top <= 0 && place.right >= screen.cx && place.bottom >= screen.cy;
}

bool PlaceOnOwner(HWND window, const RECT& place, bool redraw) {
    Display* display = DisplayOf(window);
    if (display == nullptr) return false;
    const SIZE screen = display->ScreenSize();
    RECT former;
    POINT corner;
    bool fullScreen = false;
    bool wasFullScreen = false;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        former = state->bounds;
        wasFullScreen = state->fullScreen;
        fullScreen = state->fullScreen = CoversScreen(*state, place, screen);
        state->bounds = place;
        corner = PlaceOnDisplay(guard, *state);
    }
    if (wasFullScreen != fullScreen) display->SetFullScreen(IdOf(window), fullScreen);
    const bool changed = place.left != former.left || place.top != former.top || place.right != former.right ||
                         place.bottom != former.bottom;
    if (changed)
        display->Move(IdOf(window), corner.x, corner.y, std::max(place.right - place.left, 1),
                      std::max(place.bottom - place.top, 1));
    if (changed) AnnouncePlace(window, former, redraw);
    return true;
}

// Puts a child window behind `after` in its parent's order.
void ReorderChild(HWND window, HWND after) {
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        Window* parent = state != nullptr ? FindWindowState(guard, state->parent) : nullptr;
        if (parent == nullptr || after == window) return;
        std::vector<HWND>& order = parent->children;
        std::erase(order, window);
        auto at = order.begin();
        if (after == HWND_BOTTOM)
            at = order.end();
        else if (const auto found = std::find(order.begin(), order.end(), after); found != order.end())
            at = found + 1;
        order.insert(at, window);
    }
    RaiseSiblings(window);
}

void ReorderOnOwner(HWND window, HWND after) {
    bool topLevel = false;
    bool foreign = false;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        if (state == nullptr) return;
        topLevel = state->TopLevel();
        foreign = state->foreignParent != nullptr;
        if (topLevel && after == HWND_TOPMOST)
            state->exStyle |= WS_EX_TOPMOST;
        else if (topLevel && after == HWND_NOTOPMOST)
            state->exStyle &= ~WS_EX_TOPMOST;
    }
    Display* display = DisplayOf(window);
    if (!topLevel && !foreign)
        ReorderChild(window, after);
    else if (topLevel && (after == HWND_TOPMOST || after == HWND_NOTOPMOST))
        display->SetAlwaysOnTop(IdOf(window), after == HWND_TOPMOST);
    else if (after == HWND_TOP)
        display->Raise(IdOf(window));
}

bool PositionOnOwner(HWND window, HWND after, RECT place, UINT flags) {
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return false;
        const LONG width = (flags & SWP_NOSIZE) != 0 ? state->Width() : std::max(place.right, 0);
        const LONG height = (flags & SWP_NOSIZE) != 0 ? state->Height() : std::max(place.bottom, 0);
        if ((flags & SWP_NOMOVE) != 0) {
            place.left = state->bounds.left;
            place.top = state->bounds.top;
        }
        place.right = place.left + width;
        place.bottom = place.top + height;
    }
    if ((flags & (SWP_NOSIZE | SWP_NOMOVE)) != (SWP_NOSIZE | SWP_NOMOVE))
        PlaceOnOwner(window, place, (flags & SWP_NOREDRAW) == 0);
    // At its new place, where it may meet others.
    if ((flags & SWP_NOZORDER) == 0) ReorderOnOwner(window, after);
    const bool activate = (flags & (SWP_NOACTIVATE | SWP_NOZORDER)) == 0;
    if ((flags & SWP_HIDEWINDOW) != 0)
        ShowOnOwner(window, false, false);
    else if ((flags & SWP_SHOWWINDOW) != 0)
        ShowOnOwner(window, true, activate);
    return true;
}

}  // namespace

Display* DisplayOf(HWND window) {
    DispatcherGuard guard(DispatcherLock());
    const Window* state = FindWindowState(guard, window);
    return state != nullptr ? state->display : nullptr;
}

void TakeDisplayRect(HWND window) {
    RECT former;
    {
        DispatcherGuard guard(DispatcherLock());
        Window* state = FindWindowState(guard, window);
        if (state == nullptr) return;
        state->displayRectPending = false;
        former = state->bounds;
        state->bounds = state->displayRect;
    }
    AnnouncePlace(window, former, true);
}

void AnnounceIconified(HWND window, bool iconified) {
    RECT client = {};
    if (!iconified && !GetClientRect(window, &client)) return;
    CallProcedure(window, WM_SIZE, iconified ? SIZE_MINIMIZED : SIZE_RESTORED,
                  MAKELPARAM(static_cast<WORD>(client.right), static_cast<WORD>(client.bottom)));
}

void SendMove(HWND window) {
    POINT corner;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        if (state == nullptr) return;
        corner = POINT{state->bounds.left + state->edge, state->bounds.top + state->edge};
    }
    CallProcedure(window, WM_MOVE, 0, MAKELPARAM(static_cast<WORD>(corner.x), static_cast<WORD>(corner.y)));
}

void SendSize(HWND window) {
    RECT client;
    if (!GetClientRect(window, &client)) return;
    CallProcedure(window, WM_SIZE, SIZE_RESTORED,
                  MAKELPARAM(static_cast<WORD>(client.right), static_cast<WORD>(client.bottom)));
}

POINT OntoScreen(POINT corner, SIZE size, SIZE screen) {
    return {std::max(std::min(corner.x, screen.cx - size.cx), LONG{0}),
            std::max(std::min(corner.y, screen.cy - size.cy), LONG{0})};
}

void RaiseSiblings(HWND window) {
    std::vector<WindowId> above;
    Display* display = nullptr;
    {
        DispatcherGuard guard(DispatcherLock());
        const Window* state = FindWindowState(guard, window);
        const Window* parent = state != nullptr ? FindWindowState(guard, state->parent) : nullptr;
        if (parent == nullptr) return;
        display = state->display;
        bool meets = false;
        for (const HWND handle : StackOf(guard, *parent)) {
            const Window* sibling = FindWindowState(guard, handle);
            RECT common;
            meets = meets || (handle != window && IntersectRect(&common, &sibling->bounds, &state->bounds));
            above.push_back(IdOf(handle));
        }
        if (!meets) return;
    }
    for (auto id = above.rbegin(); id != above.rend(); ++id) display->Raise(*id);
}

}  // namespace tdkp

TDKP_API BOOL ShowWindow(HWND window, INT command) {
    const bool show = command != SW_HIDE;
    const bool activate = show && command != SW_SHOWNOACTIVATE && command != SW_SHOWNA &&
                          command != SW_SHOWMINNOACTIVE && command != SW_MINIMIZE && command != SW_SHOWMINIMIZED;
    return tdkp::RunOnOwner(window, [=] { return LRESULT{tdkp::ShowOnOwner(window, show, activate)}; }) != 0;
}

TDKP_API BOOL SetWindowPos(HWND window, HWND after, INT x, INT y, INT width, INT height, UINT flags) {
    const RECT place = {x, y, width, height};
    return tdkp::RunOnOwner(window, [=] { return LRESULT{tdkp::PositionOnOwner(window, after, place, flags)}; }) != 0;
}

TDKP_API BOOL MoveWindow(HWND window, INT x, INT y, INT width, INT height, BOOL repaint) {
    const UINT redraw = repaint ? 0 : SWP_NOREDRAW;
    return SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE | redraw);
}

// A top-level window that is shown becomes the active one, too.
TDKP_API BOOL BringWindowToTop(HWND window) {
    const bool child = (GetWindowLongA(window, GWL_STYLE) & static_cast<LONG>(WS_CHILD)) != 0;
    const bool activates = !child && IsWindowVisible(window);
    return SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | (activates ? SWP_SHOWWINDOW : 0));
}
