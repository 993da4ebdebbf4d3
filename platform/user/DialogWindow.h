// The windows of dialogs: their class, what it does with the messages that a dialog's procedure leaves over, and
// the order of the controls.
#pragma once

#include <windows.h>

namespace tdkp {

constexpr const char* kDialogClass = "#32770";

WNDCLASSA DialogClass();

// Extra bytes behind DWLP_USER.
constexpr INT kDialogFontOffset = 24;  // goes with the window
constexpr INT kDefaultIdOffset = 32;

// The dialog that a window is, or lies inside of. Null if there is none.
HWND DialogOf(HWND window);
// The button that Enter presses while no push button has the focus.
INT DefaultId(HWND dialog);

// The next control, or the one before, that is shown, enabled and has WS_TABSTOP; from the dialog itself or null
// the first or the last one. Null if there is none.
HWND NextTabStop(HWND dialog, HWND from, bool back);
// The same among the controls of a group, for the arrow keys.
HWND NextInGroup(HWND dialog, HWND from, bool back);
// The next control whose text marks this character, or null.
HWND FindMnemonic(HWND dialog, HWND from, char character);

}  // namespace tdkp
