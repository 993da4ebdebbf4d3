#include <windows.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/GdiObject.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/Rects.h"
#include "platform/gdi/Resolution.h"
#include "platform/gdi/StockObjects.h"

namespace tdkp {

DeviceContext::DeviceContext(Ground where, HWND ofWindow)
    : GdiObject(kKind),
      ground(where),
      window(ofWindow),
      bitmapHandle(DefaultBitmap()),
      brushHandle(GetStockObject(WHITE_BRUSH)),
      penHandle(GetStockObject(BLACK_PEN)),
      fontHandle(GetStockObject(SYSTEM_FONT)) {
    ObjectTable& table = ObjectTable::Instance();
    bitmap = table.Find<Bitmap>(bitmapHandle);
    brush = table.Find<Brush>(brushHandle);
    pen = table.Find<Pen>(penHandle);
    font = table.Find<Font>(fontHandle);
    if (ground == Ground::kWindow) WindowContextTaken(window);
}

DeviceContext::~DeviceContext() {
    bitmap->selected = false;
    if (ground == Ground::kWindow) WindowContextReturned(window);
}

namespace {

constexpr int kReservedColors = 20;  // of a palette that the system keeps
constexpr int kTenthsPerInch = 254;
constexpr int kIndexedBits = 8;
constexpr int kChannelBits = 18;  // of a palette's entries

// Programs take and return contexts with every frame: the memory of one that has gone serves the next.
template <typename T>
class ReusedMemory {
public:
    using value_type = T;
    ReusedMemory() = default;
    template <typename Other>
    ReusedMemory(const ReusedMemory<Other>&) {}
    template <typename Other>
    bool operator==(const ReusedMemory<Other>&) const {
        return true;
    }

    T* allocate(size_t count) {
        T* const kept = kept_.exchange(nullptr);
        return kept != nullptr ? kept : std::allocator<T>().allocate(count);
    }
    void deallocate(T* memory, size_t count) {
        if (T* const former = kept_.exchange(memory)) std::allocator<T>().deallocate(former, count);
    }

private:
    static inline constinit std::atomic<T*> kept_{nullptr};  // for one object
};

HDC MakeContext(DeviceContext::Ground ground, HWND window) {
    auto made = std::allocate_shared<DeviceContext>(ReusedMemory<DeviceContext>(), ground, window);
    return static_cast<HDC>(ObjectTable::Instance().Add(std::move(made)));
}

bool IsContext(GdiObject& object) {
    return object.kind == GdiKind::kContext;
}

bool IsMemoryContext(GdiObject& object) {
    return IsContext(object) && static_cast<DeviceContext&>(object).ground == DeviceContext::Ground::kMemory;
}

int Millimetres(int pixels) {
    return pixels * kTenthsPerInch / (PixelsPerInch() * 10);
}

// A memory context answers for the display until a bitmap of another depth is selected.
int BitsOf(const DeviceContext& dc) {
    return BitsPerPixel(dc.bitmap->stock ? DisplayPixelFormat() : dc.bitmap->raster.format);
}

// Sets one property of a context and gives its former value, `failure` if there is no such context.
template <typename Value>
Value Exchange(HDC dc, Value DeviceContext::*field, Value value, Value failure) {
    const auto context = FindContext(dc);
    return context ? std::exchange(*context.*field, value) : failure;
}

template <typename Value>
Value Get(HDC dc, Value DeviceContext::*field, Value failure) {
    const auto context = FindContext(dc);
    return context ? *context.*field : failure;
}

INT KindOfArea(const RECT& rect) {
    return IsEmpty(rect) ? NULLREGION : SIMPLEREGION;
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API HDC CreateDCA(LPCSTR driver, LPCSTR, LPCSTR, const DEVMODEA*) {
    const TerminationDeferral deferral;
    if (driver == nullptr || std::strcmp(driver, "DISPLAY") != 0) return nullptr;
    return MakeContext(DeviceContext::Ground::kScreen, nullptr);
}

TDKP_API HDC CreateCompatibleDC(HDC dc) {
    const TerminationDeferral deferral;
    if (dc != nullptr && !FindContext(dc)) return nullptr;
    return MakeContext(DeviceContext::Ground::kMemory, nullptr);
}

TDKP_API BOOL DeleteDC(HDC dc) {
    const TerminationDeferral deferral;
    return ObjectTable::Instance().Remove(dc, IsContext) != nullptr;
}

TDKP_API HDC GetDC(HWND window) {
    const TerminationDeferral deferral;
    if (window == nullptr || window == GetDesktopWindow()) return MakeContext(DeviceContext::Ground::kScreen, nullptr);
    return IsWindow(window) ? MakeContext(DeviceContext::Ground::kWindow, window) : nullptr;
}

TDKP_API INT ReleaseDC(HWND, HDC dc) {
    const TerminationDeferral deferral;
    const auto mayRemove = [](GdiObject& object) { return IsContext(object) && !IsMemoryContext(object); };
    return ObjectTable::Instance().Remove(dc, mayRemove) != nullptr;
}

TDKP_API INT GetDeviceCaps(HDC dc, INT index) {
    const auto context = FindContext(dc);
    if (!context) return 0;
    const bool hasPalette = BitsOf(*context) <= kIndexedBits;
    switch (index) {
        case TECHNOLOGY:
            return DT_RASDISPLAY;
        case HORZSIZE:
            return Millimetres(DisplaySize().cx);
        case VERTSIZE:
            return Millimetres(DisplaySize().cy);
        case HORZRES:
            return DisplaySize().cx;
        case VERTRES:
            return DisplaySize().cy;
        case BITSPIXEL:
            return BitsOf(*context);
        case PLANES:
            return 1;
        case NUMBRUSHES:
        case NUMPENS:
            return -1;
        case NUMCOLORS:
            return hasPalette ? kReservedColors : -1;
        case RASTERCAPS:
            return RC_BITBLT | RC_BITMAP64 | RC_DI_BITMAP | RC_DIBTODEV | RC_STRETCHBLT | RC_STRETCHDIB |
                   (hasPalette ? RC_PALETTE : 0);
        case LOGPIXELSX:
        case LOGPIXELSY:
            return PixelsPerInch();
        case SIZEPALETTE:
            return hasPalette ? kPaletteEntries : 0;
        case NUMRESERVED:
            return hasPalette ? kReservedColors : 0;
        case COLORRES:
            return hasPalette ? kChannelBits : 0;
        default:
            return 0;
    }
}

TDKP_API INT SetStretchBltMode(HDC dc, INT mode) {
    if (mode < BLACKONWHITE || mode > HALFTONE) return 0;
    return Exchange(dc, &DeviceContext::stretchMode, mode, 0);
}

TDKP_API INT GetStretchBltMode(HDC dc) {
    return Get(dc, &DeviceContext::stretchMode, 0);
}

TDKP_API INT SetBkMode(HDC dc, INT mode) {
    if (mode != TRANSPARENT && mode != OPAQUE) return 0;
    return Exchange(dc, &DeviceContext::bkMode, mode, 0);
}

TDKP_API INT GetBkMode(HDC dc) {
    return Get(dc, &DeviceContext::bkMode, 0);
}

TDKP_API COLORREF SetBkColor(HDC dc, COLORREF color) {
    return Exchange(dc, &DeviceContext::bkColor, color & kColorMask, CLR_INVALID);
}

TDKP_API COLORREF GetBkColor(HDC dc) {
    return Get(dc, &DeviceContext::bkColor, CLR_INVALID);
}

TDKP_API COLORREF SetTextColor(HDC dc, COLORREF color) {
    return Exchange(dc, &DeviceContext::textColor, color & kColorMask, CLR_INVALID);
}

TDKP_API COLORREF GetTextColor(HDC dc) {
    return Get(dc, &DeviceContext::textColor, CLR_INVALID);
}

TDKP_API UINT SetTextAlign(HDC dc, UINT align) {
    return Exchange(dc, &DeviceContext::textAlign, align, GDI_ERROR);
}

TDKP_API INT IntersectClipRect(HDC dc, INT left, INT top, INT right, INT bottom) {
    const auto context = FindContext(dc);
    if (!context) return ERROR;
    const RECT rect = Ordered({left, top, right, bottom});
    context->clip = context->clipped ? Intersect(context->clip, rect) : rect;
    context->clipped = true;
    return KindOfArea(context->clip);
}

TDKP_API BOOL GdiFlush(void) {
    return TRUE;
}
