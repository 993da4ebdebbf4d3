#include "platform/user/MenuTracker.h"

#include <algorithm>

#include "platform/gdi/Resolution.h"
#include "platform/user/Input.h"
#include "platform/user/WindowPosition.h"
#include "platform/user/WindowRaster.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr int kFontHeight = 12;  // pixels of the em square at 96 to the inch
constexpr UINT kGrabInterval = 50;

thread_local MenuTracker* trackerOfThisThread = nullptr;

HFONT MakeMenuFont() {
    return CreateFontA(-ScaledPixels(kFontHeight), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0,
                       "MS Sans Serif");
}

}  // namespace

MenuTracker::MenuTracker(HWND owner, UINT flags) : owner_(owner), flags_(flags), font_(MakeMenuFont()) {
    trackerOfThisThread = this;
    GetCursorPos(&lastPoint_);
}

MenuTracker::~MenuTracker() {
    CloseFrom(0);
    DeleteObject(font_);
    trackerOfThisThread = nullptr;
}

MenuTracker* MenuTracker::OfThisThread() {
    return trackerOfThisThread;
}

bool MenuTracker::Open(HMENU menu, POINT at) {
    NotifyOwner(WM_ENTERMENULOOP, TRUE, 0);
    if (ShowFirst(menu, at)) return true;
    CloseFrom(0);
    NotifyOwner(WM_EXITMENULOOP, TRUE, 0);
    return false;
}

bool MenuTracker::ShowFirst(HMENU menu, POINT at) {
    ReleaseCapture();
    std::unique_ptr<OpenMenu> open = Prepare(menu, 0);
    if (!open) return false;
    const POINT corner = PlaceMenu(open->layout.size, at, flags_, DisplaySize());
    if (ShowMenuWindow(open.get(), corner, owner_) == nullptr) return false;
    open_.push_back(std::move(open));
    if (!BeginMenuInput(Innermost().window)) {
        SetLastError(ERROR_POPUP_ALREADY_ACTIVE);
        return false;
    }
    Grab();
    return true;
}

// Another program may hold the mouse for a moment, as a window manager does while it handles a click.
void MenuTracker::Grab() {
    const HWND root = open_.front()->window;
    Display* display = DisplayOf(root);
    if (display == nullptr || display->GrabInput(IdOf(root)))
        KillTimer(root, kGrabTimer);
    else
        SetTimer(root, kGrabTimer, kGrabInterval, nullptr);
}

std::unique_ptr<OpenMenu> MenuTracker::Prepare(HMENU menu, UINT position) {
    NotifyOwner(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), static_cast<LPARAM>(position));
    std::optional<MenuItems> items = ItemsOf(menu);
    if (!items) return nullptr;
    auto open = std::make_unique<OpenMenu>();
    open->menu = menu;
    open->items = std::move(*items);
    open->font = font_;
    open->layout = LayOutMenu(open->items, font_, DisplaySize());
    return open;
}

void MenuTracker::OpenSubmenu() {
    const OpenMenu& parent = Innermost();
    const MenuItem* item = SelectedItem();
    if (item == nullptr || !item->Enabled() || item->Submenu() == nullptr) return;
    const int opener = parent.selected;
    std::unique_ptr<OpenMenu> open = Prepare(item->Submenu(), static_cast<UINT>(opener));
    if (!open || open->items.empty()) return;
    open->opener = opener;
    const POINT corner = PlaceSubmenu(open->layout.size, ScreenRectOf(parent, opener), DisplaySize());
    if (ShowMenuWindow(open.get(), corner, owner_) != nullptr) open_.push_back(std::move(open));
}

void MenuTracker::CloseFrom(size_t level) {
    if (level == 0 && !open_.empty()) {
        const HWND root = open_.front()->window;
        Display* display = DisplayOf(root);
        if (EndMenuInput(root) && display != nullptr) display->ReleaseInput();
    }
    while (open_.size() > level) {
        DestroyWindow(Innermost().window);
        open_.pop_back();
    }
}

void MenuTracker::FollowSelection() {
    KillTimer(open_.front()->window, kHoverTimer);
    for (size_t level = 1; level < open_.size(); ++level) {
        if (open_[level]->opener != open_[level - 1]->selected) CloseFrom(level);
    }
    OpenSubmenu();
}

void MenuTracker::NotifyOwner(UINT message, WPARAM wParam, LPARAM lParam) const {
    if ((flags_ & TPM_NONOTIFY) == 0) SendMessageA(owner_, message, wParam, lParam);
}

const MenuItem* MenuTracker::SelectedItem() const {
    const OpenMenu& open = Innermost();
    return open.selected >= 0 ? &open.items[static_cast<size_t>(open.selected)] : nullptr;
}

UINT MenuTracker::Run() {
    while (!ended_) {
        MSG message;
        if (GetMessageA(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(static_cast<INT>(message.wParam));  // meant for the loop outside
            break;
        }
        if (!Take(message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        if (!IsWindow(open_.front()->window)) break;  // it went with its owner
    }
    CloseFrom(0);
    NotifyOwner(WM_EXITMENULOOP, TRUE, 0);
    return chosen_;
}

void MenuTracker::End() {
    ended_ = true;
    PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
}

}  // namespace tdkp

TDKP_API BOOL TrackPopupMenu(HMENU menu, UINT flags, INT x, INT y, INT, HWND window, const RECT*) {
    if (!IsMenu(menu) || GetMenuItemCount(menu) == 0) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
        return FALSE;
    }
    if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    if (tdkp::MenuTracker::OfThisThread() != nullptr || tdkp::AnyMenuHasInput()) {
        SetLastError(ERROR_POPUP_ALREADY_ACTIVE);
        return FALSE;
    }
    tdkp::MenuTracker tracker(window, flags);
    if (!tracker.Open(menu, POINT{x, y})) return FALSE;
    const UINT chosen = tracker.Run();
    if ((flags & TPM_RETURNCMD) != 0) return static_cast<BOOL>(chosen);
    if (chosen != 0 && (flags & TPM_NONOTIFY) == 0) PostMessageA(window, WM_COMMAND, MAKEWPARAM(LOWORD(chosen), 0), 0);
    return TRUE;
}

TDKP_API BOOL EndMenu() {
    tdkp::MenuTracker* tracker = tdkp::MenuTracker::OfThisThread();
    if (tracker != nullptr) tracker->End();
    return tracker != nullptr;
}
