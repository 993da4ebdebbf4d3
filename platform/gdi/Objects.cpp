// Making, selecting and describing pens, brushes, fonts and bitmaps.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/gdi/GdiObject.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/StockObjects.h"

namespace tdkp {
namespace {

// A selected bitmap stays; contexts go with DeleteDC and ReleaseDC as well.
bool MayDelete(GdiObject& object) {
    return object.kind != GdiKind::kBitmap || !static_cast<Bitmap&>(object).selected;
}

HGDIOBJ SelectBitmap(DeviceContext& dc, HGDIOBJ handle, std::shared_ptr<Bitmap> bitmap) {
    if (dc.ground != DeviceContext::Ground::kMemory) return nullptr;
    if (handle == dc.bitmapHandle) return handle;
    if (!bitmap->stock && bitmap->selected.exchange(true)) return nullptr;
    dc.bitmap->selected = false;
    dc.bitmap = std::move(bitmap);
    return std::exchange(dc.bitmapHandle, handle);
}

template <typename Object>
HGDIOBJ Select(std::shared_ptr<Object>* place, HGDIOBJ* placeHandle, HGDIOBJ handle,
               std::shared_ptr<GdiObject> object) {
    *place = std::static_pointer_cast<Object>(std::move(object));
    return std::exchange(*placeHandle, handle);
}

INT WidthBytes(const Bitmap& bitmap) {
    const int bits = BitsPerPixel(bitmap.raster.format) * bitmap.raster.width;
    constexpr int kWordBits = 16;
    return (bits + kWordBits - 1) / kWordBits * static_cast<int>(sizeof(WORD));
}

DIBSECTION Describe(const Bitmap& bitmap) {
    if (bitmap.isSection) return bitmap.section;
    DIBSECTION section = {};
    section.dsBm.bmWidth = bitmap.raster.width;
    section.dsBm.bmHeight = bitmap.raster.height;
    section.dsBm.bmWidthBytes = WidthBytes(bitmap);
    section.dsBm.bmPlanes = 1;
    section.dsBm.bmBitsPixel = static_cast<WORD>(BitsPerPixel(bitmap.raster.format));
    return section;
}

// Copies a description, if there is room for it, and gives its size. Without a place it gives the size alone.
template <typename Description>
INT Answer(const Description& description, INT size, LPVOID out) {
    constexpr INT kSize = sizeof(Description);
    if (out == nullptr) return kSize;
    if (size < kSize) return 0;
    std::memcpy(out, &description, sizeof(description));
    return kSize;
}

INT AnswerBitmap(const Bitmap& bitmap, INT size, LPVOID out) {
    const DIBSECTION description = Describe(bitmap);
    if (bitmap.isSection && out != nullptr && size >= static_cast<INT>(sizeof(DIBSECTION)))
        return Answer(description, size, out);
    return Answer(description.dsBm, size, out);
}

template <typename Object>
Object* As(GdiObject* object) {
    return static_cast<Object*>(object);
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API HGDIOBJ SelectObject(HDC dc, HGDIOBJ handle) {
    const auto context = FindContext(dc);
    const std::shared_ptr<GdiObject> object = ObjectTable::Instance().Find(handle);
    if (!context || !object) return nullptr;
    switch (object->kind) {
        case GdiKind::kBitmap:
            return SelectBitmap(*context, handle, std::static_pointer_cast<Bitmap>(object));
        case GdiKind::kBrush:
            return Select(&context->brush, &context->brushHandle, handle, object);
        case GdiKind::kPen:
            return Select(&context->pen, &context->penHandle, handle, object);
        case GdiKind::kFont:
            return Select(&context->font, &context->fontHandle, handle, object);
        case GdiKind::kContext:
            break;
    }
    return nullptr;
}

TDKP_API BOOL DeleteObject(HGDIOBJ handle) {
    const TerminationDeferral deferral;
    ObjectTable& table = ObjectTable::Instance();
    const auto object = table.Find(handle);
    // Nothing happens to a stock object, and that counts as success.
    return object && (object->stock || table.Remove(handle, MayDelete) != nullptr);
}

TDKP_API HGDIOBJ GetCurrentObject(HDC dc, UINT kind) {
    const auto context = FindContext(dc);
    if (!context) return nullptr;
    switch (kind) {
        case OBJ_PEN:
            return context->penHandle;
        case OBJ_BRUSH:
            return context->brushHandle;
        case OBJ_FONT:
            return context->fontHandle;
        case OBJ_BITMAP:
            return context->bitmapHandle;
        default:
            return nullptr;
    }
}

TDKP_API INT GetObjectA(HANDLE handle, INT size, LPVOID out) {
    const TerminationDeferral deferral;
    const auto object = ObjectTable::Instance().Find(handle);
    if (!object) return 0;
    switch (object->kind) {
        case GdiKind::kBitmap:
            return AnswerBitmap(*As<Bitmap>(object.get()), size, out);
        case GdiKind::kFont:
            return Answer(As<Font>(object.get())->logFont, size, out);
        case GdiKind::kPen: {
            const Pen& pen = *As<Pen>(object.get());
            return Answer(LOGPEN{pen.style, {pen.width, 0}, pen.color}, size, out);
        }
        case GdiKind::kBrush: {
            const Brush& brush = *As<Brush>(object.get());
            return Answer(LOGBRUSH{brush.hollow ? UINT{BS_HOLLOW} : UINT{BS_SOLID}, brush.color, 0}, size, out);
        }
        case GdiKind::kContext:
            break;
    }
    return 0;
}

TDKP_API HBRUSH CreateSolidBrush(COLORREF color) {
    const TerminationDeferral deferral;
    auto brush = std::make_shared<Brush>();
    brush->color = color & kColorMask;
    return static_cast<HBRUSH>(ObjectTable::Instance().Add(std::move(brush)));
}

TDKP_API HPEN CreatePen(INT style, INT width, COLORREF color) {
    const TerminationDeferral deferral;
    auto pen = std::make_shared<Pen>();
    pen->style = style >= PS_SOLID && style <= PS_NULL ? static_cast<UINT>(style) : UINT{PS_SOLID};
    pen->width = std::max(1, width);
    pen->color = color & kColorMask;
    return static_cast<HPEN>(ObjectTable::Instance().Add(std::move(pen)));
}

TDKP_API HFONT CreateFontIndirectA(const LOGFONTA* description) {
    const TerminationDeferral deferral;
    if (description == nullptr) return nullptr;
    return static_cast<HFONT>(ObjectTable::Instance().Add(std::make_shared<Font>(*description)));
}

TDKP_API HFONT CreateFontA(INT height, INT width, INT escapement, INT orientation, INT weight, DWORD italic,
                           DWORD underline, DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision,
                           DWORD quality, DWORD pitchAndFamily, LPCSTR faceName) {
    LOGFONTA description = {};
    description.lfHeight = height;
    description.lfWidth = width;
    description.lfEscapement = escapement;
    description.lfOrientation = orientation;
    description.lfWeight = weight;
    description.lfItalic = italic != 0;
    description.lfUnderline = underline != 0;
    description.lfStrikeOut = strikeOut != 0;
    description.lfCharSet = static_cast<BYTE>(charSet);
    description.lfOutPrecision = static_cast<BYTE>(outPrecision);
    description.lfClipPrecision = static_cast<BYTE>(clipPrecision);
    description.lfQuality = static_cast<BYTE>(quality);
    description.lfPitchAndFamily = static_cast<BYTE>(pitchAndFamily);
    if (faceName != nullptr) std::strncpy(description.lfFaceName, faceName, LF_FACESIZE - 1);
    return CreateFontIndirectA(&description);
}
