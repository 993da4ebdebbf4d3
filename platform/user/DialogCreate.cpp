// Dialogs from their templates.
#include <algorithm>
#include <limits>

#include "platform/user/DialogFont.h"
#include "platform/user/DialogWindow.h"
#include "platform/user/Focus.h"
#include "platform/user/WindowPosition.h"
#include "platform/user/WindowRaster.h"

namespace tdkp {
namespace {

// Where the dialog goes on the screen: all of it is seen if there is room for it.
RECT PlaceOf(const DialogLayout& dialog, const DialogUnits& units, HWND parent) {
    const DLGTEMPLATE& layout = dialog.layout;
    const SIZE screen = DisplaySize();
    const POINT size = units.Scale(layout.cx, layout.cy);
    RECT within = {0, 0, screen.cx, screen.cy};
    const bool onScreen = parent == nullptr || (layout.style & DS_ABSALIGN) != 0;
    if (!onScreen) GetWindowRect(parent, &within);
    POINT corner = units.Scale(layout.x, layout.y);
    corner.x += within.left;
    corner.y += within.top;
    if ((layout.style & DS_CENTER) != 0 || (layout.x == 0 && layout.y == 0)) {
        corner.x = within.left + (within.right - within.left - size.x) / 2;
        corner.y = within.top + (within.bottom - within.top - size.y) / 2;
    }
    corner = OntoScreen(corner, {size.x, size.y}, screen);
    return {corner.x, corner.y, corner.x + size.x, corner.y + size.y};
}

bool MakeControl(HWND dialog, HINSTANCE instance, const DialogItem& item, const DialogUnits& units, HFONT font) {
    const DLGITEMTEMPLATE& layout = item.layout;
    const POINT corner = units.Scale(layout.x, layout.y);
    const POINT size = units.Scale(layout.cx, layout.cy);
    const HWND control =
        CreateWindowExA(layout.dwExtendedStyle | WS_EX_NOPARENTNOTIFY, item.className.c_str(), item.title.c_str(),
                        layout.style | WS_CHILD, corner.x, corner.y, size.x, size.y, dialog,
                        reinterpret_cast<HMENU>(static_cast<ULONG_PTR>(layout.id)), instance, nullptr);
    if (control == nullptr) return false;
    if (font != nullptr) SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    const LRESULT code = SendMessageA(control, WM_GETDLGCODE, 0, 0);
    if ((code & DLGC_DEFPUSHBUTTON) != 0) SetWindowLongPtrA(dialog, kDefaultIdOffset, layout.id);
    return true;
}

HWND MakeWindow(const DialogLayout& dialog, HINSTANCE instance, HWND parent, DLGPROC procedure) {
    DialogUnits units;
    const HFONT font = MakeDialogFont(dialog, &units);
    const RECT place = PlaceOf(dialog, units, parent);
    const DWORD frame = (dialog.layout.style & DS_MODALFRAME) != 0 ? WS_EX_DLGMODALFRAME : 0;
    const HWND window = CreateWindowExA(
        dialog.layout.dwExtendedStyle | frame, kDialogClass, dialog.title.c_str(), dialog.layout.style & ~WS_VISIBLE,
        place.left, place.top, place.right - place.left, place.bottom - place.top, parent, nullptr, instance, nullptr);
    if (window == nullptr) {
        if (font != nullptr) DeleteObject(font);
        return nullptr;
    }
    SetWindowLongPtrA(window, kDialogFontOffset, reinterpret_cast<LONG_PTR>(font));
    SetWindowLongPtrA(window, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(procedure));
    if (font != nullptr) SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    const bool complete = std::all_of(dialog.items.begin(), dialog.items.end(), [&](const DialogItem& item) {
        return MakeControl(window, instance, item, units, font);
    });
    if (complete) return window;
    DestroyWindow(window);
    return nullptr;
}

HWND CreateDialogFrom(const void* data, size_t size, HINSTANCE instance, HWND parent, DLGPROC procedure,
                      LPARAM parameter) {
    const std::optional<DialogLayout> dialog = ReadDialogTemplate(data, size);
    if (!dialog || procedure == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const HWND window = MakeWindow(*dialog, instance, parent, procedure);
    if (window == nullptr) return nullptr;
    const auto first = reinterpret_cast<WPARAM>(NextTabStop(window, nullptr, false));
    // The program may have changed which control that is.
    if (SendMessageA(window, WM_INITDIALOG, first, parameter) != 0)
        FocusWhenActive(NextTabStop(window, nullptr, false));
    if ((dialog->layout.style & WS_VISIBLE) != 0) ShowWindow(window, SW_SHOW);
    return IsWindow(window) ? window : nullptr;
}

}  // namespace
}  // namespace tdkp

TDKP_API HWND CreateDialogParamA(HINSTANCE instance, LPCSTR name, HWND parent, DLGPROC procedure, LPARAM parameter) {
    const HRSRC found = FindResourceA(instance, name, RT_DIALOG);
    if (found == nullptr) return nullptr;
    const void* data = LockResource(LoadResource(instance, found));
    return tdkp::CreateDialogFrom(data, SizeofResource(instance, found), instance, parent, procedure, parameter);
}

TDKP_API HWND CreateDialogIndirectParamA(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                         LPARAM parameter) {
    constexpr size_t kUnknownSize = std::numeric_limits<size_t>::max();
    if (dialog == nullptr) return nullptr;
    return tdkp::CreateDialogFrom(dialog, kUnknownSize, instance, parent, procedure, parameter);
}
