#include "player/ToolStrip.h"

namespace tdkplay {
namespace {

constexpr char kClassName[] = "tdkplay strip";
constexpr int kMargin = 3;   // pixels, around the button
constexpr int kPadding = 6;  // inside of it, and in front of the text

void RegisterStripClass(WNDPROC procedure) {
    WNDCLASSA windowClass = {};
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);  // fails if it is registered already
}

void DrawLabel(HDC dc, const std::string& text, RECT place) {
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &place,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void DrawEdge(HDC dc, const RECT& box, int topLeft, int bottomRight) {
    const RECT sides[] = {{box.left, box.top, box.right, box.top + 1},
                          {box.left, box.top, box.left + 1, box.bottom},
                          {box.left, box.bottom - 1, box.right, box.bottom},
                          {box.right - 1, box.top, box.right, box.bottom}};
    for (int side = 0; side < 4; ++side) FillRect(dc, &sides[side], GetSysColorBrush(side < 2 ? topLeft : bottomRight));
}

}  // namespace

ToolStrip::ToolStrip(HWND parent, ToolStripEvents& events) : events_(events) {
    RegisterStripClass(Procedure);
    window_ = CreateWindowExA(0, kClassName, "", WS_CHILD | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ToolStrip::~ToolStrip() {
    SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
    if (picture_) DeleteObject(picture_);
}

void ToolStrip::Place(const RECT& place) {
    MoveWindow(window_, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
    ShowWindow(window_, IsRectEmpty(&place) ? SW_HIDE : SW_SHOWNA);
}

void ToolStrip::SetPicture(HBITMAP picture) {
    if (picture_) DeleteObject(picture_);
    picture_ = picture;
    Redraw();
}

void ToolStrip::SetLabel(const std::string& label) {
    label_ = label;
    SIZE extent = {};
    const HDC dc = GetDC(window_);
    const HGDIOBJ former = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    GetTextExtentPoint32A(dc, label_.c_str(), static_cast<int>(label_.size()), &extent);
    SelectObject(dc, former);
    ReleaseDC(window_, dc);
    labelWidth_ = extent.cx;
    Redraw();
}

void ToolStrip::SetText(const std::string& text) {
    if (text == text_) return;
    text_ = text;
    Redraw();
}

void ToolStrip::SetChecked(bool checked) {
    isChecked_ = checked;
    Redraw();
}

SIZE ToolStrip::PictureExtent() const {
    BITMAP bitmap = {};
    if (picture_) GetObjectA(picture_, sizeof(bitmap), &bitmap);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

RECT ToolStrip::ButtonPlace() const {
    const int picture = picture_ ? static_cast<int>(PictureExtent().cx) + kPadding : 0;
    return {kMargin, kMargin, kMargin + kPadding + picture + labelWidth_ + kPadding, kHeight - kMargin};
}

void ToolStrip::OnPaint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    RECT strip = {};
    GetClientRect(window_, &strip);
    Paint(dc, strip);
    EndPaint(window_, &paint);
}

void ToolStrip::Paint(HDC dc, const RECT& strip) const {
    FillRect(dc, &strip, GetSysColorBrush(COLOR_BTNFACE));
    PaintButton(dc);
    const RECT text = {ButtonPlace().right + kPadding, 0, strip.right - kPadding, strip.bottom};
    if (text.left < text.right) DrawLabel(dc, text_, text);
}

void ToolStrip::PaintButton(HDC dc) const {
    const RECT button = ButtonPlace();
    const bool isDown = isChecked_ || (isHeld_ && isOver_);
    DrawEdge(dc, button, isDown ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT, isDown ? COLOR_BTNHIGHLIGHT : COLOR_BTNSHADOW);
    RECT inside = button;
    InflateRect(&inside, -kPadding, 0);
    if (isDown) OffsetRect(&inside, 1, 1);
    if (picture_) {
        const SIZE extent = PictureExtent();
        PaintPicture(dc, inside.left, inside.top + (inside.bottom - inside.top - extent.cy) / 2);
        inside.left += extent.cx + kPadding;
    }
    inside.right = inside.left + labelWidth_ + 1;
    DrawLabel(dc, label_, inside);
}

void ToolStrip::PaintPicture(HDC dc, int left, int top) const {
    const SIZE extent = PictureExtent();
    const HDC memory = CreateCompatibleDC(dc);
    const HGDIOBJ former = SelectObject(memory, picture_);
    BitBlt(dc, left, top, extent.cx, extent.cy, memory, 0, 0, SRCCOPY);
    SelectObject(memory, former);
    DeleteDC(memory);
}

void ToolStrip::OnMouse(UINT message, LPARAM position) {
    const POINT point = {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(position))),
                         static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(position)))};
    const RECT button = ButtonPlace();
    const bool wasHeld = isHeld_;
    isOver_ = PtInRect(&button, point) != FALSE;
    if (message == WM_LBUTTONDOWN && isOver_) {
        isHeld_ = true;
        SetCapture(window_);
    } else if (message == WM_LBUTTONUP && wasHeld) {
        isHeld_ = false;
        ReleaseCapture();
    }
    if (wasHeld || isHeld_) Redraw();
    if (wasHeld && !isHeld_ && isOver_) events_.OnToolButton();
}

LRESULT CALLBACK ToolStrip::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<ToolStrip*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (!self) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            return self->OnPaint(), 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
            return self->OnMouse(message, lParam), 0;
        case WM_CAPTURECHANGED:
            self->isHeld_ = false;
            return self->Redraw(), 0;
        case kPictureWaits:
            return self->events_.OnPictureWaits(), 0;
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace tdkplay
