// The order of a dialog's controls, as keys go through it.
#include <algorithm>
#include <cctype>

#include "platform/user/ControlPaint.h"
#include "platform/user/DialogWindow.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr int kNowhere = -1;

struct Control {
    HWND window;
    DWORD style;
    std::string text;

    bool Takes() const { return (style & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE; }
};

std::vector<Control> ControlsOf(HWND dialog) {
    DispatcherGuard guard(DispatcherLock());
    std::vector<Control> controls;
    const Window* state = FindWindowState(guard, dialog);
    for (const HWND child : state != nullptr ? state->children : std::vector<HWND>()) {
        const Window* control = FindWindowState(guard, child);
        controls.push_back({child, control->style, control->title});
    }
    return controls;
}

int IndexOf(const std::vector<Control>& controls, HWND window) {
    const auto found = std::find_if(controls.begin(), controls.end(),
                                    [window](const Control& control) { return control.window == window; });
    return found != controls.end() ? static_cast<int>(found - controls.begin()) : kNowhere;
}

bool IsStatic(HWND control) {
    return (SendMessageA(control, WM_GETDLGCODE, 0, 0) & DLGC_STATIC) != 0;
}

}  // namespace

HWND NextTabStop(HWND dialog, HWND from, bool back) {
    const std::vector<Control> controls = ControlsOf(dialog);
    const int count = static_cast<int>(controls.size());
    int at = IndexOf(controls, from);
    if (at == kNowhere && back) at = count;
    for (int i = 1; i <= count; ++i) {
        const Control& control = controls[static_cast<size_t>(((back ? at - i : at + i) + count) % count)];
        if (control.Takes() && (control.style & WS_TABSTOP) != 0) return control.window;
    }
    return nullptr;
}

HWND NextInGroup(HWND dialog, HWND from, bool back) {
    const std::vector<Control> controls = ControlsOf(dialog);
    const auto begins = [](const Control& control) { return (control.style & WS_GROUP) != 0; };
    const int at = IndexOf(controls, from);
    if (at == kNowhere) return nullptr;
    const auto self = controls.begin() + at;
    const auto end = std::find_if(self + 1, controls.end(), begins);
    auto start = self;
    while (start != controls.begin() && !begins(*start)) --start;
    const auto count = end - start;
    for (ptrdiff_t i = 1; i < count; ++i) {
        const Control& control = *(start + (self - start + (back ? count - i : i)) % count);
        if (control.Takes() && !IsStatic(control.window)) return control.window;
    }
    return nullptr;
}

HWND FindMnemonic(HWND dialog, HWND from, char character) {
    const std::vector<Control> controls = ControlsOf(dialog);
    const int count = static_cast<int>(controls.size());
    const int at = IndexOf(controls, from);
    const char wanted = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    for (int i = 1; i <= count; ++i) {
        const Control& control = controls[static_cast<size_t>((at + i) % count)];
        if (control.Takes() && MnemonicOf(control.text) == wanted) return control.window;
    }
    return nullptr;
}

}  // namespace tdkp
