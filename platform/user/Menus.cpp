#include "platform/user/Menus.h"

#include <algorithm>
#include <map>

#include "platform/kernel/Counts.h"
#include "platform/kernel/Dispatcher.h"
#include "platform/kernel/Immortal.h"

namespace tdkp {
namespace {

constexpr DWORD kNoItem = 0xFFFFFFFFu;
constexpr UINT kStoredFlags = MF_GRAYED | MF_DISABLED | MF_CHECKED | MF_POPUP | MF_SEPARATOR | MFT_RADIOCHECK;
constexpr uintptr_t kFirstHandle = 0x00100001;

struct Menus {
    LayerMutex mutex;
    // Guarded by it.
    std::map<HMENU, MenuItems> byHandle;
    uintptr_t nextHandle = kFirstHandle;
};

Menus& TheMenus() {
    return Immortal<Menus>();
}

// Null, with the last error set, if there is no such menu.
MenuItems* Find(Menus& menus, HMENU menu) {
    const auto found = menus.byHandle.find(menu);
    if (found != menus.byHandle.end()) return &found->second;
    SetLastError(ERROR_INVALID_MENU_HANDLE);
    return nullptr;
}

struct Place {
    MenuItems* items = nullptr;
    size_t index = 0;

    explicit operator bool() const { return items != nullptr; }
    MenuItem& operator*() const { return (*items)[index]; }
    MenuItem* operator->() const { return &**this; }
};

// Submenus are looked through where they stand; one that holds itself is a fault of the program.
Place FindCommand(Menus& menus, HMENU menu, UINT command) {
    MenuItems* items = Find(menus, menu);
    for (size_t index = 0; items != nullptr && index < items->size(); ++index) {
        MenuItem& item = (*items)[index];
        if (const HMENU submenu = item.Submenu()) {
            if (const Place inside = FindCommand(menus, submenu, command)) return inside;
        } else if (!item.Separates() && static_cast<UINT>(item.id) == command) {
            return {items, index};
        }
    }
    return {};
}

Place FindItem(Menus& menus, HMENU menu, UINT item, UINT flags) {
    Place place;
    if ((flags & MF_BYPOSITION) == 0)
        place = FindCommand(menus, menu, item);
    else if (MenuItems* items = Find(menus, menu); items != nullptr && item < items->size())
        place = {items, item};
    if (!place) SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
    return place;
}

bool Destroy(Menus& menus, HMENU menu) {
    auto node = menus.byHandle.extract(menu);
    if (!node) return false;
    for (const MenuItem& item : node.mapped()) Destroy(menus, item.Submenu());
    CountHandle(-1);
    return true;
}

}  // namespace

std::optional<MenuItems> ItemsOf(HMENU menu) {
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    const MenuItems* items = Find(menus, menu);
    return items != nullptr ? std::optional(*items) : std::nullopt;
}

}  // namespace tdkp

using tdkp::LayerGuard;
using tdkp::MenuItem;
using tdkp::MenuItems;
using tdkp::Menus;
using tdkp::TheMenus;

TDKP_API HMENU CreatePopupMenu() {
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    const auto menu = reinterpret_cast<HMENU>(menus.nextHandle++);
    menus.byHandle[menu];
    tdkp::CountHandle(1);
    return menu;
}

TDKP_API BOOL DestroyMenu(HMENU menu) {
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    if (tdkp::Destroy(menus, menu)) return TRUE;
    SetLastError(ERROR_INVALID_MENU_HANDLE);
    return FALSE;
}

TDKP_API BOOL IsMenu(HMENU menu) {
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    return menus.byHandle.count(menu) != 0;
}

TDKP_API BOOL AppendMenuA(HMENU menu, UINT flags, UINT_PTR item, LPCSTR text) {
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    MenuItems* items = tdkp::Find(menus, menu);
    if (items == nullptr) return FALSE;
    const bool opens = (flags & MF_POPUP) != 0;
    if (opens && tdkp::Find(menus, reinterpret_cast<HMENU>(item)) == nullptr) return FALSE;
    MenuItem added;
    added.state = flags & tdkp::kStoredFlags;
    added.id = item;
    if (!added.Separates() && text != nullptr) added.text = text;
    items->push_back(std::move(added));
    return TRUE;
}

TDKP_API BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT checked, UINT flags) {
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    const tdkp::Place place = tdkp::FindItem(menus, menu, checked, flags);
    if (!place) return FALSE;
    for (size_t index = 0; index < place.items->size(); ++index) {
        MenuItem& item = (*place.items)[index];
        const UINT_PTR number = (flags & MF_BYPOSITION) != 0 ? index : item.id;
        if (!item.Separates() && number >= first && number <= last) item.state &= ~MF_CHECKED;
    }
    place->state |= MF_CHECKED | MFT_RADIOCHECK;
    return TRUE;
}

TDKP_API INT GetMenuItemCount(HMENU menu) {
    const std::optional<MenuItems> items = tdkp::ItemsOf(menu);
    return items ? static_cast<INT>(items->size()) : -1;
}

TDKP_API UINT GetMenuState(HMENU menu, UINT item, UINT flags) {
    constexpr int kCountShift = 8;
    Menus& menus = TheMenus();
    const LayerGuard guard(menus.mutex);
    const tdkp::Place place = tdkp::FindItem(menus, menu, item, flags);
    if (!place) return tdkp::kNoItem;
    const HMENU submenu = place->Submenu();
    const MenuItems* inside = submenu != nullptr ? tdkp::Find(menus, submenu) : nullptr;
    const auto count = static_cast<UINT>(inside != nullptr ? inside->size() : 0);
    return submenu != nullptr ? (place->state & 0xFFu) | count << kCountShift : place->state;
}
