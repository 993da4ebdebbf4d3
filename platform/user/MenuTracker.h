// The modal loop of an open menu: it serves all messages of its thread, and takes mouse and keys for the menu.
#pragma once

#include <memory>

#include "platform/user/MenuWindow.h"

namespace tdkp {

// Belongs to one thread, that of the window which the menu is for.
class MenuTracker {
public:
    // `flags` are those of TrackPopupMenu.
    MenuTracker(HWND owner, UINT flags);
    ~MenuTracker();
    MenuTracker(const MenuTracker&) = delete;
    MenuTracker& operator=(const MenuTracker&) = delete;

    // False, with the last error set, if the menu can't be shown.
    bool Open(HMENU menu, POINT at);
    // Comes back when something was chosen, with its command, or when the menu was left, with 0.
    UINT Run();
    // Lets Run come back.
    void End();

    // Null if the calling thread shows no menu.
    static MenuTracker* OfThisThread();

private:
    // Timers of the first menu's window.
    static constexpr UINT_PTR kHoverTimer = 1;
    static constexpr UINT kHoverDelay = 250;  // milliseconds
    static constexpr UINT_PTR kGrabTimer = 2;

    struct Hit {
        OpenMenu* open = nullptr;  // null: outside of all
        size_t level = 0;
        int item = -1;
    };

    bool ShowFirst(HMENU menu, POINT at);
    void Grab();
    // What the program puts into a menu when it opens is shown already.
    std::unique_ptr<OpenMenu> Prepare(HMENU menu, UINT position);
    // Opens what stands behind the selected item of the innermost menu.
    void OpenSubmenu();
    void CloseFrom(size_t level);
    // Makes the open submenus those of the selected items.
    void FollowSelection();
    void NotifyOwner(UINT message, WPARAM wParam, LPARAM lParam) const;

    bool Take(const MSG& message);
    Hit HitAt(POINT screen) const;
    void OnMove(POINT screen, WPARAM keys);
    void OnPress(POINT screen);
    void OnRelease(POINT screen, bool chooses);
    bool OnKey(WPARAM key);
    void OnKeyUp(WPARAM key);
    void OnCharacter(WPARAM character);
    void OnEscape();
    void OnTimer(WPARAM timer);
    void Step(int from, int direction);
    void Activate();

    OpenMenu& Innermost() const { return *open_.back(); }
    const MenuItem* SelectedItem() const;

    const HWND owner_;
    const UINT flags_;
    const HFONT font_;
    std::vector<std::unique_ptr<OpenMenu>> open_;  // each was opened from the one before
    POINT lastPoint_ = {0, 0};
    bool armed_ = false;           // the mouse was moved or pressed, so that a release chooses
    bool pressedOutside_ = false;  // the menu goes when that button is released, which nobody else is told
    bool mayCloseByF10_ = GetKeyState(VK_F10) >= 0;
    bool appsIsDown_ = false;
    bool ended_ = false;
    UINT chosen_ = 0;
};

}  // namespace tdkp
