#include "platform/user/ControlPaint.h"

#include <cctype>

namespace tdkp {

ControlPaint::ControlPaint(HWND control) : control_(control) {
    BeginPaint(control, &paint_);
    GetClientRect(control, &box_);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0));
    formerFont_ = SelectObject(Dc(), font != nullptr ? font : GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(Dc(), TRANSPARENT);
}

ControlPaint::~ControlPaint() {
    SelectObject(Dc(), formerFont_);
    EndPaint(control_, &paint_);
}

void ControlPaint::Fill(const RECT& box, INT color) {
    FillRect(Dc(), &box, GetSysColorBrush(color));
}

void ControlPaint::Edge(const RECT& box, INT topLeft, INT bottomRight) {
    Fill({box.left, box.top, box.right - 1, box.top + 1}, topLeft);
    Fill({box.left, box.top, box.left + 1, box.bottom - 1}, topLeft);
    Fill({box.left, box.bottom - 1, box.right, box.bottom}, bottomRight);
    Fill({box.right - 1, box.top, box.right, box.bottom}, bottomRight);
}

void ControlPaint::FocusRect(const RECT& box) {
    const COLORREF color = GetSysColor(COLOR_BTNTEXT);
    for (LONG x = box.left; x < box.right; x += 2) {
        SetPixel(Dc(), x, box.top, color);
        SetPixel(Dc(), x, box.bottom - 1, color);
    }
    for (LONG y = box.top; y < box.bottom; y += 2) {
        SetPixel(Dc(), box.left, y, color);
        SetPixel(Dc(), box.right - 1, y, color);
    }
}

void ControlPaint::Label(const std::string& text, RECT box, UINT format) {
    const bool enabled = IsWindowEnabled(control_) != FALSE;
    const auto length = static_cast<INT>(text.size());
    if (!enabled) {
        RECT shadow = box;
        OffsetRect(&shadow, 1, 1);
        SetTextColor(Dc(), GetSysColor(COLOR_BTNHIGHLIGHT));
        DrawTextA(Dc(), text.c_str(), length, &shadow, format);
    }
    SetTextColor(Dc(), GetSysColor(enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    DrawTextA(Dc(), text.c_str(), length, &box, format);
}

std::string ControlText(HWND control) {
    const INT length = GetWindowTextLengthA(control);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(control, text.data(), length + 1)));
    return text;
}

char MnemonicOf(const std::string& text) {
    for (size_t at = text.find('&'); at != std::string::npos && at + 1 < text.size(); at = text.find('&', at + 2)) {
        if (text[at + 1] != '&') return static_cast<char>(std::tolower(static_cast<unsigned char>(text[at + 1])));
    }
    return 0;
}

LRESULT PassOnAndRepaint(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = DefWindowProcA(control, message, wParam, lParam);
    InvalidateRect(control, nullptr, FALSE);
    return result;
}

}  // namespace tdkp
