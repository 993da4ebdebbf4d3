// The menus of the process, open or not. Any thread; guarded by a lock of their own.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace tdkp {

struct MenuItem {
    UINT state = 0;   // MF_ flags, and MFT_RADIOCHECK
    UINT_PTR id = 0;  // the command, or the handle of the submenu
    std::string text;

    bool Separates() const { return (state & MF_SEPARATOR) != 0; }
    bool Enabled() const { return (state & (MF_SEPARATOR | MF_GRAYED | MF_DISABLED)) == 0; }
    bool Checked() const { return (state & MF_CHECKED) != 0; }
    bool Radio() const { return (state & MFT_RADIOCHECK) != 0; }
    HMENU Submenu() const { return (state & MF_POPUP) != 0 ? reinterpret_cast<HMENU>(id) : nullptr; }
};
using MenuItems = std::vector<MenuItem>;

// What the menu holds now; nothing, with the last error set, if there is no such menu.
std::optional<MenuItems> ItemsOf(HMENU menu);

}  // namespace tdkp
