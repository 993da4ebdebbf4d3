// What the tests of drawing share: a DIB section of any form in a memory context, read and written pixel by
// pixel in a way of its own, so that it can stand against the operations under test. Only the published interface.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace gditest {

struct Form {
    const char* name;
    int bits;
    DWORD compression;
    DWORD masks[3];
};

inline std::ostream& operator<<(std::ostream& out, const Form& form) {
    return out << form.name;
}

constexpr Form k8{"8", 8, BI_RGB, {}};
constexpr Form k555{"555", 16, BI_RGB, {}};
constexpr Form k565{"565", 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}};
constexpr Form k24{"24", 24, BI_RGB, {}};
constexpr Form k32{"32", 32, BI_RGB, {}};
constexpr Form kBgr32{"bgr32", 32, BI_BITFIELDS, {0xFF, 0xFF00, 0xFF0000}};
constexpr Form kForms[] = {k8, k555, k565, k24, k32, kBgr32};

// A header with room for what follows it.
struct Header {
    BITMAPINFOHEADER header;
    union {
        DWORD masks[3];
        RGBQUAD colors[256];
    };
    BITMAPINFO* Info() { return reinterpret_cast<BITMAPINFO*>(this); }
};

inline Header MakeHeader(const Form& form, int width, int height) {
    Header info;
    std::memset(&info, 0, sizeof(info));
    info.header.biSize = sizeof(BITMAPINFOHEADER);
    info.header.biWidth = width;
    info.header.biHeight = height;
    info.header.biPlanes = 1;
    info.header.biBitCount = static_cast<WORD>(form.bits);
    info.header.biCompression = form.compression;
    if (form.compression == BI_BITFIELDS) std::memcpy(info.masks, form.masks, sizeof(form.masks));
    // Colours that no arithmetic order follows.
    for (int i = 0; form.bits == 8 && i < 256; ++i)
        info.colors[i] = {static_cast<BYTE>(i * 7), static_cast<BYTE>(i * 77), static_cast<BYTE>(i * 151), 0};
    return info;
}

class Surface {
public:
    // A height below 0 makes it top-down.
    Surface(const Form& surfaceForm, int surfaceWidth, int signedHeight)
        : form(surfaceForm),
          width(surfaceWidth),
          height(signedHeight < 0 ? -signedHeight : signedHeight),
          topDown_(signedHeight < 0),
          info_(MakeHeader(form, width, signedHeight)) {
        void* bits = nullptr;
        dc = CreateCompatibleDC(nullptr);
        bitmap = CreateDIBSection(nullptr, info_.Info(), DIB_RGB_COLORS, &bits, nullptr, 0);
        bits_ = static_cast<uint8_t*>(bits);
        former_ = SelectObject(dc, bitmap);
    }
    ~Surface() {
        SelectObject(dc, former_);
        DeleteObject(bitmap);
        DeleteDC(dc);
    }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    // The stored pixel, y counted from the top.
    uint32_t Raw(int x, int y) const {
        uint32_t raw = 0;
        std::memcpy(&raw, At(x, y), static_cast<size_t>(form.bits / 8));
        return raw;
    }
    void SetRaw(int x, int y, uint32_t raw) { std::memcpy(At(x, y), &raw, static_cast<size_t>(form.bits / 8)); }

    // 0x00RRGGBB.
    uint32_t Color(int x, int y) const { return ColorOf(Raw(x, y)); }
    uint32_t ColorOf(uint32_t raw) const {
        const auto five = [&](int shift) { return (raw >> shift & 31) << 3 | (raw >> shift & 31) >> 2; };
        if (form.bits == 8) return PaletteColor(raw);
        if (form.bits == 16 && form.compression == BI_RGB) return five(10) << 16 | five(5) << 8 | five(0);
        if (form.bits == 16) return five(11) << 16 | ((raw >> 5 & 63) << 2 | (raw >> 5 & 63) >> 4) << 8 | five(0);
        if (form.compression == BI_BITFIELDS) return (raw & 0xFF) << 16 | (raw & 0xFF00) | (raw >> 16 & 0xFF);
        return raw & 0xFFFFFF;
    }
    // What a colour is stored as.
    uint32_t RawOf(uint32_t color) const {
        const uint32_t red = color >> 16 & 0xFF, green = color >> 8 & 0xFF, blue = color & 0xFF;
        if (form.bits == 8) return Nearest(color);
        if (form.bits == 16 && form.compression == BI_RGB) return red >> 3 << 10 | green >> 3 << 5 | blue >> 3;
        if (form.bits == 16) return red >> 3 << 11 | green >> 2 << 5 | blue >> 3;
        return form.compression == BI_BITFIELDS ? blue << 16 | green << 8 | red : color;
    }

    // A pattern that differs from pixel to pixel in every channel.
    void FillWithNoise(uint32_t seed) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                seed = seed * 1664525u + 1013904223u;
                SetRaw(x, y, RawOf(seed >> 8));
            }
        }
    }
    // Rows as they are stored.
    const uint8_t* Bits() const { return bits_; }
    std::vector<uint32_t> Picture() const {
        std::vector<uint32_t> all;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) all.push_back(Raw(x, y));
        }
        return all;
    }

    const Form form;
    const int width;
    const int height;
    HDC dc;
    HBITMAP bitmap;

private:
    uint8_t* At(int x, int y) const {
        const int pitch = (width * form.bits / 8 + 3) / 4 * 4;
        return bits_ + (topDown_ ? y : height - 1 - y) * pitch + x * (form.bits / 8);
    }
    uint32_t PaletteColor(uint32_t index) const {
        const RGBQUAD& quad = info_.colors[index];
        return static_cast<uint32_t>(quad.rgbRed << 16 | quad.rgbGreen << 8 | quad.rgbBlue);
    }
    uint32_t Nearest(uint32_t color) const {
        uint32_t best = 0;
        int64_t bestDistance = INT64_MAX;
        for (uint32_t i = 0; i < 256; ++i) {
            int64_t distance = 0;
            for (int shift = 0; shift <= 16; shift += 8) {
                const int64_t gap = int64_t{PaletteColor(i) >> shift & 0xFF} - int64_t{color >> shift & 0xFF};
                distance += gap * gap;
            }
            if (distance < bestDistance) {
                bestDistance = distance;
                best = i;
            }
        }
        return best;
    }

    const bool topDown_;
    Header info_;
    uint8_t* bits_ = nullptr;
    HGDIOBJ former_ = nullptr;
};

// The first pixel in which a surface differs from a picture, for messages; empty if none.
inline std::string FirstDifference(const Surface& surface, const std::vector<uint32_t>& expected) {
    const std::vector<uint32_t> picture = surface.Picture();
    for (size_t i = 0; i < picture.size(); ++i) {
        if (picture[i] != expected[i]) {
            char text[100];
            std::snprintf(text, sizeof(text), "(%d, %d): %06X instead of %06X", static_cast<int>(i) % surface.width,
                          static_cast<int>(i) / surface.width, picture[i], expected[i]);
            return text;
        }
    }
    return "";
}

}  // namespace gditest
