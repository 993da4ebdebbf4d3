// What the controls are drawn with.
#pragma once

#include <windows.h>

#include <string>

namespace tdkp {

// The painting of a control, from BeginPaint to EndPaint, with its own font (WM_GETFONT) and without text
// background.
class ControlPaint {
public:
    explicit ControlPaint(HWND control);
    ~ControlPaint();
    ControlPaint(const ControlPaint&) = delete;
    ControlPaint& operator=(const ControlPaint&) = delete;

    HDC Dc() const { return paint_.hdc; }
    const RECT& Box() const { return box_; }  // the client area

    void Fill(const RECT& box, INT color);
    // A line of one pixel along the box: COLOR_ numbers for its upper left and its lower right.
    void Edge(const RECT& box, INT topLeft, INT bottomRight);
    // Every other pixel along the box.
    void FocusRect(const RECT& box);
    // The control's text with DT_ flags; embossed if the control is disabled.
    void Label(const std::string& text, RECT box, UINT format);

private:
    HWND control_;
    PAINTSTRUCT paint_;
    RECT box_;
    HGDIOBJ formerFont_;
};

std::string ControlText(HWND control);
// The character behind the first single '&', which stands for the control or the item, in lower case; 0 if there is
// none.
char MnemonicOf(const std::string& text);

// For a message that changes what the control shows.
LRESULT PassOnAndRepaint(HWND control, UINT message, WPARAM wParam, LPARAM lParam);

// Parts of the box, for callers that cut it up.
constexpr LONG WidthOf(const RECT& box) {
    return box.right - box.left;
}
constexpr LONG HeightOf(const RECT& box) {
    return box.bottom - box.top;
}

// In a mouse message: the place in the client area.
inline POINT PointOf(LPARAM position) {
    return {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(position))),
            static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(position)))};
}

}  // namespace tdkp
