#include "platform/user/Static.h"

#include <cstdlib>

#include "platform/user/ControlPaint.h"

namespace tdkp {
namespace {

// Extra bytes: the font, the bitmap that is shown, and the one that the control has loaded itself.
constexpr INT kFontOffset = 0;
constexpr INT kBitmapOffset = sizeof(LONG_PTR);
constexpr INT kOwnBitmapOffset = 2 * sizeof(LONG_PTR);
constexpr INT kExtraBytes = 3 * sizeof(LONG_PTR);

UINT TypeOf(HWND control) {
    return static_cast<UINT>(GetWindowLongPtrA(control, GWL_STYLE)) & SS_TYPEMASK;
}

// The control takes the size of its bitmap.
LRESULT SetBitmap(HWND control, LPARAM bitmap) {
    if (TypeOf(control) != SS_BITMAP) return 0;
    const LONG_PTR former = SetWindowLongPtrA(control, kBitmapOffset, bitmap);
    BITMAP size;
    if (GetObjectA(reinterpret_cast<HANDLE>(bitmap), sizeof(size), &size) != 0)
        SetWindowPos(control, nullptr, 0, 0, size.bmWidth, size.bmHeight, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(control, nullptr, FALSE);
    return former;
}

LRESULT OnCreate(HWND control) {
    const std::string text = ControlText(control);
    if (TypeOf(control) != SS_BITMAP || text.empty() || text[0] != '#') return 0;
    const auto instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(control, GWLP_HINSTANCE));
    const auto number = static_cast<ULONG_PTR>(std::atoi(text.c_str() + 1));
    const auto bitmap = reinterpret_cast<LONG_PTR>(LoadBitmapA(instance, MAKEINTRESOURCEA(number)));
    SetWindowLongPtrA(control, kOwnBitmapOffset, bitmap);
    SetBitmap(control, bitmap);
    return 0;
}

void PaintBitmap(ControlPaint& paint, HBITMAP bitmap) {
    const HDC memory = CreateCompatibleDC(paint.Dc());
    const HGDIOBJ former = SelectObject(memory, bitmap);
    BitBlt(paint.Dc(), 0, 0, WidthOf(paint.Box()), HeightOf(paint.Box()), memory, 0, 0, SRCCOPY);
    SelectObject(memory, former);
    DeleteDC(memory);
}

LRESULT Paint(HWND control) {
    ControlPaint paint(control);
    const UINT type = TypeOf(control);
    const auto bitmap = reinterpret_cast<HBITMAP>(GetWindowLongPtrA(control, kBitmapOffset));
    paint.Fill(paint.Box(), COLOR_3DFACE);
    if (type == SS_BLACKFRAME)
        paint.Edge(paint.Box(), COLOR_WINDOWFRAME, COLOR_WINDOWFRAME);
    else if (type == SS_BITMAP && bitmap != nullptr)
        PaintBitmap(paint, bitmap);
    else if (type <= SS_RIGHT)  // whose numbers are those of DT_LEFT, DT_CENTER and DT_RIGHT
        paint.Label(ControlText(control), paint.Box(), type | DT_WORDBREAK | DT_EXPANDTABS);
    return 0;
}

LRESULT CALLBACK StaticProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            return OnCreate(control);
        case WM_NCDESTROY:
            DeleteObject(reinterpret_cast<HGDIOBJ>(GetWindowLongPtrA(control, kOwnBitmapOffset)));
            return 0;
        case WM_PAINT:
            return Paint(control);
        case WM_ERASEBKGND:
            return 1;
        case WM_ENABLE:
        case WM_SETTEXT:
            return PassOnAndRepaint(control, message, wParam, lParam);
        case WM_SETFONT:
            SetWindowLongPtrA(control, kFontOffset, static_cast<LONG_PTR>(wParam));
            return PassOnAndRepaint(control, message, wParam, lParam);
        case WM_GETFONT:
            return GetWindowLongPtrA(control, kFontOffset);
        case WM_GETDLGCODE:
            return DLGC_STATIC;
        case STM_SETIMAGE:
            return wParam == IMAGE_BITMAP ? SetBitmap(control, lParam) : 0;
        default:
            return DefWindowProcA(control, message, wParam, lParam);
    }
}

}  // namespace

WNDCLASSA StaticClass() {
    WNDCLASSA info = {};
    info.style = CS_HREDRAW | CS_VREDRAW;
    info.lpfnWndProc = StaticProcedure;
    info.cbWndExtra = kExtraBytes;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    return info;
}

}  // namespace tdkp
