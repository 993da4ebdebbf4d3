// What the handles of the drawing room stand for. Objects are counted: the table holds one reference while the
// handle is valid, and each device context one of everything that is selected into it.
#pragma once

#include <windef.h>
#include <wingdi.h>

#include <atomic>
#include <memory>

#include "platform/gdi/FontFace.h"
#include "platform/gdi/PixelCodec.h"
#include "platform/gdi/PixelMemory.h"
#include "platform/gdi/Raster.h"

namespace tdkp {

enum class GdiKind : uint8_t { kPen, kBrush, kContext, kFont, kBitmap };

struct GdiObject {
    explicit GdiObject(GdiKind objectKind) : kind(objectKind) {}
    virtual ~GdiObject() = default;
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;

    const GdiKind kind;
    bool stock = false;  // never deleted, not counted
};

struct Brush final : GdiObject {
    static constexpr GdiKind kKind = GdiKind::kBrush;
    Brush() : GdiObject(kKind) {}
    bool hollow = false;
    COLORREF color = 0;
};

struct Pen final : GdiObject {
    static constexpr GdiKind kKind = GdiKind::kPen;
    Pen() : GdiObject(kKind) {}
    UINT style = PS_SOLID;
    int width = 1;
    COLORREF color = 0;
};

struct Font final : GdiObject {
    static constexpr GdiKind kKind = GdiKind::kFont;
    explicit Font(const LOGFONTA& description) : GdiObject(kKind), logFont(description), face(description) {}
    const LOGFONTA logFont;
    const FontFace face;
};

struct Bitmap final : GdiObject {
    static constexpr GdiKind kKind = GdiKind::kBitmap;
    Bitmap() : GdiObject(kKind) {}

    Raster raster;  // palette, if any, is `colors`
    uint32_t colors[kPaletteEntries] = {};
    PixelMemory memory;
    bool isSection = false;
    DIBSECTION section = {};             // of DIB sections: what GetObject tells
    std::atomic<bool> selected = false;  // into a device context
};

struct DeviceContext final : GdiObject {
    static constexpr GdiKind kKind = GdiKind::kContext;
    enum class Ground : uint8_t { kScreen, kWindow, kMemory };
    DeviceContext(Ground where, HWND ofWindow);
    ~DeviceContext() override;

    const Ground ground;
    const HWND window;  // of Ground::kWindow
    std::shared_ptr<Bitmap> bitmap;
    std::shared_ptr<Brush> brush;
    std::shared_ptr<Pen> pen;
    std::shared_ptr<Font> font;
    HGDIOBJ bitmapHandle, brushHandle, penHandle, fontHandle;

    POINT position = {0, 0};
    int stylePhase = 0;  // pixels of the dash pattern used since the last MoveToEx
    int bkMode = OPAQUE;
    COLORREF bkColor = RGB(255, 255, 255);
    COLORREF textColor = RGB(0, 0, 0);
    int stretchMode = BLACKONWHITE;
    UINT textAlign = TA_LEFT | TA_TOP;
    bool clipped = false;
    RECT clip = {0, 0, 0, 0};  // of IntersectClipRect
};

}  // namespace tdkp
