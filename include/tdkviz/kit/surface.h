// A bitmap that both a Canvas and the system's own drawing can paint on.
#pragma once

#include <windows.h>

#include <utility>

#include <tdkviz/kit/canvas.h>

namespace viz {

class Surface {
public:
    Surface() = default;
    // Black. Without pixels if there is no memory for it.
    Surface(int width, int height) : width_(width), height_(height) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;  // top row first
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels_, nullptr, 0);
        context_ = CreateCompatibleDC(nullptr);
        if (bitmap_ && context_) former_ = SelectObject(context_, bitmap_);
    }
    Surface(Surface&& other) noexcept { *this = std::move(other); }
    Surface& operator=(Surface&& other) noexcept {
        std::swap(bitmap_, other.bitmap_);
        std::swap(context_, other.context_);
        std::swap(former_, other.former_);
        std::swap(pixels_, other.pixels_);
        std::swap(width_, other.width_);
        std::swap(height_, other.height_);
        return *this;
    }
    ~Surface() {
        if (former_) SelectObject(context_, former_);
        if (context_) DeleteDC(context_);
        if (bitmap_) DeleteObject(bitmap_);
    }

    bool IsGood() const { return former_ != nullptr; }
    bool IsOfSize(int width, int height) const { return IsGood() && width == width_ && height == height_; }
    // This object's own; good while it lives and isn't moved from.
    HDC Context() const { return context_; }
    // For as long as the system isn't asked to draw on it.
    Canvas Paint() const {
        GdiFlush();
        return Canvas(pixels_, width_, height_, width_ * 4);
    }
    // To the top left corner of what `to` draws on.
    void CopyTo(HDC to) const { BitBlt(to, 0, 0, width_, height_, context_, 0, 0, SRCCOPY); }

private:
    HBITMAP bitmap_ = nullptr;
    HDC context_ = nullptr;
    HGDIOBJ former_ = nullptr;
    void* pixels_ = nullptr;
    int width_ = 0;
    int height_ = 0;
};

}  // namespace viz
