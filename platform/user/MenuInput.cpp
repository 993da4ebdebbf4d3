// What mouse and keys do to an open menu.
#include <algorithm>
#include <cctype>

#include "platform/user/ControlPaint.h"
#include "platform/user/MenuTracker.h"

namespace tdkp {
namespace {

constexpr WPARAM kButtons = MK_LBUTTON | MK_RBUTTON | MK_MBUTTON;
constexpr WPARAM kLastPlainCharacter = 0x7F;

// The character that chooses the item: the marked one, else the first. 0 if it has none of the plain ones.
char KeyOf(const MenuItem& item) {
    const char marked = MnemonicOf(item.text);
    const char first = item.text.empty() ? '\0' : item.text[0];
    return marked != 0 ? marked : static_cast<char>(std::tolower(static_cast<unsigned char>(first)));
}

bool IsInput(UINT message) {
    return (message >= WM_KEYFIRST && message <= WM_KEYLAST) || (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST);
}

}  // namespace

// All input of the process is for the first menu's window.
bool MenuTracker::Take(const MSG& message) {
    if (message.hwnd != open_.front()->window) return false;
    switch (message.message) {
        case WM_MOUSEMOVE:
            return OnMove(message.pt, message.wParam), true;
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
            return OnPress(message.pt), true;
        case WM_LBUTTONUP:
            return OnRelease(message.pt, true), true;
        case WM_RBUTTONUP:
            return OnRelease(message.pt, (flags_ & TPM_RIGHTBUTTON) != 0), true;
        case WM_MBUTTONUP:
            return OnRelease(message.pt, false), true;
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return OnKey(message.wParam);
        case WM_KEYUP:
        case WM_SYSKEYUP:
            return OnKeyUp(message.wParam), true;
        case WM_CHAR:
            return OnCharacter(message.wParam), true;
        case WM_TIMER:
            return OnTimer(message.wParam), true;
        default:
            return IsInput(message.message);
    }
}

MenuTracker::Hit MenuTracker::HitAt(POINT screen) const {
    for (size_t level = open_.size(); level-- > 0;) {
        OpenMenu* open = open_[level].get();
        RECT place;
        if (!GetWindowRect(open->window, &place) || !PtInRect(&place, screen)) continue;
        return {open, level, open->layout.ItemAt({screen.x - place.left, screen.y - place.top})};
    }
    return {};
}

void MenuTracker::OnMove(POINT screen, WPARAM keys) {
    if (screen.x == lastPoint_.x && screen.y == lastPoint_.y) return;
    lastPoint_ = screen;
    armed_ = true;
    if (pressedOutside_ && (keys & kButtons) == 0) return End();  // another program was told of the release
    const Hit hit = HitAt(screen);
    if (hit.open == nullptr) return Select(&Innermost(), -1);
    if (hit.item < 0) return;
    Select(hit.open, hit.item);
    // On its way into a submenu the mouse may have crossed other items.
    for (size_t level = 0; level < hit.level; ++level) Select(open_[level].get(), open_[level + 1]->opener);
    SetTimer(open_.front()->window, kHoverTimer, kHoverDelay, nullptr);
}

void MenuTracker::OnPress(POINT screen) {
    const Hit hit = HitAt(screen);
    armed_ = true;
    pressedOutside_ = hit.open == nullptr;
    if (hit.item < 0) return;
    Select(hit.open, hit.item);
    FollowSelection();
}

void MenuTracker::OnRelease(POINT screen, bool chooses) {
    if (pressedOutside_) return End();
    const Hit hit = HitAt(screen);
    if (!armed_ || !chooses || hit.item < 0 || hit.open != &Innermost()) return;
    Select(hit.open, hit.item);
    if (SelectedItem()->Submenu() == nullptr) Activate();
}

bool MenuTracker::OnKey(WPARAM key) {
    OpenMenu& open = Innermost();
    const int last = static_cast<int>(open.items.size()) - 1;
    switch (key) {
        case VK_DOWN:
            return Step(open.selected, 1), true;
        case VK_UP:
            return Step(open.selected < 0 ? last + 1 : open.selected, -1), true;
        case VK_HOME:
            return Step(-1, 1), true;
        case VK_END:
            return Step(last + 1, -1), true;
        case VK_RIGHT:
            if (const MenuItem* item = SelectedItem(); item != nullptr && item->Submenu() != nullptr) Activate();
            return true;
        case VK_LEFT:
            if (open_.size() > 1) OnEscape();
            return true;
        case VK_RETURN:
            return Activate(), true;
        case VK_ESCAPE:
            return OnEscape(), true;
        case VK_MENU:
            return End(), true;
        case VK_F10:
            if (mayCloseByF10_) End();
            return true;
        case VK_APPS:
            appsIsDown_ = true;
            return true;
        default:
            return false;  // a character comes of it
    }
}

// The release of the menu key would open the next menu, so it is what closes this one. The F10 that opened it may be
// held.
void MenuTracker::OnKeyUp(WPARAM key) {
    if (key == VK_F10) mayCloseByF10_ = true;
    if (key == VK_APPS && appsIsDown_) End();
}

// Only one menu goes.
void MenuTracker::OnEscape() {
    if (open_.size() > 1)
        CloseFrom(open_.size() - 1);
    else
        End();
}

void MenuTracker::OnCharacter(WPARAM character) {
    if (character > kLastPlainCharacter) return;
    const char key = static_cast<char>(std::tolower(static_cast<int>(character)));
    OpenMenu& open = Innermost();
    const int count = static_cast<int>(open.items.size());
    int first = -1;
    int matches = 0;
    for (int step = 1; step <= count; ++step) {
        const int index = (open.selected + step) % count;
        const MenuItem& item = open.items[static_cast<size_t>(index)];
        if (item.Separates() || KeyOf(item) != key) continue;
        if (matches++ == 0) first = index;
    }
    if (matches == 0) return;
    Select(&open, first);
    if (matches == 1) Activate();
}

void MenuTracker::OnTimer(WPARAM timer) {
    if (timer == kHoverTimer) FollowSelection();
    if (timer == kGrabTimer) Grab();
}

// To the next item, round and round; separators are none.
void MenuTracker::Step(int from, int direction) {
    OpenMenu& open = Innermost();
    const int count = static_cast<int>(open.items.size());
    int at = from;
    for (int step = 0; step < count; ++step) {
        at = (at + direction + count) % count;
        if (!open.items[static_cast<size_t>(at)].Separates()) return Select(&open, at);
    }
}

// Opens the selected item's submenu, with its first item selected, or chooses the item.
void MenuTracker::Activate() {
    const MenuItem* item = SelectedItem();
    if (item == nullptr || !item->Enabled()) return;
    if (item->Submenu() != nullptr) {
        const size_t levels = open_.size();
        OpenSubmenu();
        if (open_.size() > levels) Step(-1, 1);
        return;
    }
    chosen_ = static_cast<UINT>(item->id);
    End();
}

}  // namespace tdkp
