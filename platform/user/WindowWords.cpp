// A window's text, and the words that a program keeps with it.
#include <algorithm>
#include <cstring>

#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

LONG_PTR SwapWord(LONG_PTR* field, const LONG_PTR* value) {
    const LONG_PTR former = *field;
    if (value != nullptr) *field = *value;
    return former;
}

LONG_PTR SwapStyle(DWORD* field, const LONG_PTR* value, DWORD kept) {
    const DWORD former = *field;
    if (value != nullptr) *field = (static_cast<DWORD>(*value) & ~kept) | (former & kept);
    return static_cast<LONG_PTR>(former);
}

template <typename Pointer>
LONG_PTR SwapPointer(Pointer* field, const LONG_PTR* value) {
    const auto former = reinterpret_cast<LONG_PTR>(*field);
    if (value != nullptr) *field = reinterpret_cast<Pointer>(*value);
    return former;
}

LONG_PTR SwapExtra(std::vector<uint8_t>& extra, INT offset, const LONG_PTR* value, size_t size) {
    if (offset < 0 || static_cast<size_t>(offset) + size > extra.size()) {
        SetLastError(ERROR_INVALID_INDEX);
        return 0;
    }
    LONG_PTR former = 0;
    uint8_t* word = extra.data() + offset;
    if (size == sizeof(LONG)) {
        LONG narrow = 0;
        std::memcpy(&narrow, word, size);
        former = narrow;
    } else {
        std::memcpy(&former, word, size);
    }
    if (value != nullptr) std::memcpy(word, value, size);
    return former;
}

// Reads the word and, with a value, replaces it. `size` is that of an extra word. Whether a window is shown
// isn't changed through its style.
LONG_PTR AccessWord(HWND handle, INT index, const LONG_PTR* value, size_t size) {
    DispatcherGuard guard(DispatcherLock());
    Window* window = FindWindowState(guard, handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return 0;
    }
    switch (index) {
        case GWLP_WNDPROC:
            return SwapPointer(&window->procedure, value);
        case GWLP_HINSTANCE:
            return SwapPointer(&window->instance, value);
        case GWLP_HWNDPARENT:
            return reinterpret_cast<LONG_PTR>(window->TopLevel() ? window->owner : window->parent);
        case GWLP_ID:
            return SwapWord(&window->id, value);
        case GWLP_USERDATA:
            return SwapWord(&window->userData, value);
        case GWL_STYLE:
            return SwapStyle(&window->style, value, WS_VISIBLE | WS_CHILD);
        case GWL_EXSTYLE:
            return SwapStyle(&window->exStyle, value, WS_EX_TOPMOST);
        default:
            return SwapExtra(window->extra, index, value, size);
    }
}

}  // namespace
}  // namespace tdkp

TDKP_API LONG_PTR GetWindowLongPtrA(HWND window, INT index) {
    return tdkp::AccessWord(window, index, nullptr, sizeof(LONG_PTR));
}

TDKP_API LONG_PTR SetWindowLongPtrA(HWND window, INT index, LONG_PTR value) {
    return tdkp::AccessWord(window, index, &value, sizeof(LONG_PTR));
}

TDKP_API LONG GetWindowLongA(HWND window, INT index) {
    return static_cast<LONG>(tdkp::AccessWord(window, index, nullptr, sizeof(LONG)));
}

TDKP_API LONG SetWindowLongA(HWND window, INT index, LONG value) {
    const LONG_PTR wide = value;
    return static_cast<LONG>(tdkp::AccessWord(window, index, &wide, sizeof(LONG)));
}

TDKP_API BOOL SetWindowTextA(HWND window, LPCSTR text) {
    return SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0;
}

TDKP_API INT GetWindowTextA(HWND window, LPSTR text, INT size) {
    if (text == nullptr || size <= 0) return 0;
    *text = '\0';
    const auto out = reinterpret_cast<LPARAM>(text);
    return static_cast<INT>(SendMessageA(window, WM_GETTEXT, static_cast<WPARAM>(size), out));
}

TDKP_API INT GetWindowTextLengthA(HWND window) {
    return static_cast<INT>(SendMessageA(window, WM_GETTEXTLENGTH, 0, 0));
}

TDKP_API BOOL SetDlgItemTextA(HWND parent, INT id, LPCSTR text) {
    return SetWindowTextA(GetDlgItem(parent, id), text);
}
