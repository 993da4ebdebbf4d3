#include "player/window/Canvas.h"

#include <algorithm>
#include <cmath>

namespace tdkplay {

Canvas::Canvas(int width, int height) : width_(std::max(width, 1)), height_(std::max(height, 1)) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width_;
    info.bmiHeader.biHeight = -height_;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* pixels = nullptr;
    dc_ = CreateCompatibleDC(nullptr);
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    pixels_ = static_cast<DWORD*>(pixels);
    formerBitmap_ = SelectObject(dc_, bitmap_);
    SelectObject(dc_, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc_, TRANSPARENT);
}

Canvas::~Canvas() {
    SelectObject(dc_, formerBitmap_);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
}

void Canvas::Fill(const RECT& place, COLORREF color) {
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(dc_, &place, brush);
    DeleteObject(brush);
}

void Canvas::FillRounded(const RECT& place, double radius, COLORREF color) {
    FillShape(place, color, [&](double x, double y) {
        const double nearX = std::clamp(x, place.left + radius, std::max(place.right - radius, place.left + radius));
        const double nearY = std::clamp(y, place.top + radius, std::max(place.bottom - radius, place.top + radius));
        return std::hypot(x - nearX, y - nearY) <= radius;
    });
}

void Canvas::Text(const std::string& text, const RECT& place, COLORREF color, UINT alignment) {
    RECT box = place;
    SetTextColor(dc_, color);
    DrawTextA(dc_, text.c_str(), static_cast<int>(text.size()), &box,
              alignment | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

int Canvas::TextWidth(const std::string& text) const {
    SIZE extent = {};
    GetTextExtentPoint32A(dc_, text.c_str(), static_cast<int>(text.size()), &extent);
    return extent.cx;
}

void Canvas::Picture(HBITMAP picture, int left, int top) {
    BITMAP bitmap = {};
    if (!picture || !GetObjectA(picture, sizeof(bitmap), &bitmap)) return;
    const HDC source = CreateCompatibleDC(dc_);
    const HGDIOBJ former = SelectObject(source, picture);
    BitBlt(dc_, left, top, bitmap.bmWidth, bitmap.bmHeight, source, 0, 0, SRCCOPY);
    SelectObject(source, former);
    DeleteDC(source);
}

DWORD* Canvas::Pixels() const {
    GdiFlush();
    return pixels_;
}

void Canvas::Blend(int x, int y, COLORREF color, int part, int whole) {
    DWORD& pixel = pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
    const auto mix = [&](int shift, int wanted) {
        const int present = static_cast<int>(pixel >> shift) & 0xFF;
        return static_cast<DWORD>((present * (whole - part) + wanted * part) / whole) << shift;
    };
    pixel = mix(16, GetRValue(color)) | mix(8, GetGValue(color)) | mix(0, GetBValue(color));
}

}  // namespace tdkplay
