// Where the items of an open menu lie, and where the menu lies on the screen.
#pragma once

#include "platform/user/Menus.h"

namespace tdkp {

// In the menu's window.
struct MenuLayout {
    SIZE size = {0, 0};
    std::vector<RECT> items;

    // -1 if there is none.
    int ItemAt(POINT point) const;
};

// A menu that would be higher than the screen gets more columns of equal height.
MenuLayout LayOutMenu(const MenuItems& items, HFONT font, SIZE screen);

// A text is cut at its tab: the label, and what stands at the right edge.
struct MenuText {
    std::string label;
    std::string shortcut;
};
MenuText CutMenuText(const std::string& text);

// The parts of an item's row. Pixels.
LONG MenuMarkWidth();   // left of the label: the tick or the dot
LONG MenuArrowWidth();  // at the right edge: the sign of a submenu
LONG MenuBorder();      // around the items

// The upper left corner on the screen: by the TPM_ alignment at a place, on the other side of it if there is no room.
POINT PlaceMenu(SIZE size, POINT at, UINT flags, SIZE screen);
// Beside the item that opens it, to the left if there is room only there.
POINT PlaceSubmenu(SIZE size, const RECT& item, SIZE screen);

}  // namespace tdkp
