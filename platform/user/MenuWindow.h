// The windows of open menus: one for each, of a class of their own.
#pragma once

#include "platform/user/MenuLayout.h"

namespace tdkp {

constexpr const char* kMenuClass = "#32768";

WNDCLASSA MenuClass();

// What an open menu shows. It belongs to the thread that shows it, like its window, and stays where it is as long
// as that stands.
struct OpenMenu {
    HMENU menu = nullptr;
    HWND window = nullptr;
    MenuItems items;
    MenuLayout layout;
    HFONT font = nullptr;
    int selected = -1;
    int opener = -1;  // of a submenu: the item of the menu before that opened it
};

// Shows the window, above all others and without taking the focus. Null if the display makes none.
HWND ShowMenuWindow(OpenMenu* open, POINT corner, HWND owner);
void Select(OpenMenu* open, int item);
// Where the item lies on the screen.
RECT ScreenRectOf(const OpenMenu& open, int item);

}  // namespace tdkp
