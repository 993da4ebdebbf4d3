#include "platform/gdi/StockObjects.h"

#include <windows.h>

#include <array>
#include <cstring>
#include <utility>

#include "platform/gdi/ObjectTable.h"

namespace tdkp {
namespace {

constexpr int kStockCount = DEFAULT_GUI_FONT + 1;
constexpr uintptr_t kLastColorHandle = 31;  // above the largest COLOR_ number plus 1
constexpr LONG kGuiFontHeight = -12;
constexpr LONG kSystemFontHeight = -13;

template <typename Object>
HGDIOBJ AddStock(std::shared_ptr<Object> object) {
    object->stock = true;
    return ObjectTable::Instance().Add(std::move(object));
}

HGDIOBJ StockBrush(COLORREF color, bool hollow) {
    auto brush = std::make_shared<Brush>();
    brush->color = color;
    brush->hollow = hollow;
    return AddStock(std::move(brush));
}

HGDIOBJ StockPen(COLORREF color, UINT style) {
    auto pen = std::make_shared<Pen>();
    pen->color = color;
    pen->style = style;
    return AddStock(std::move(pen));
}

HGDIOBJ StockFont(LONG height, BYTE pitch) {
    LOGFONTA description = {};
    description.lfHeight = height;
    description.lfWeight = FW_NORMAL;
    description.lfPitchAndFamily = pitch;
    return AddStock(std::make_shared<Font>(description));
}

HGDIOBJ MakeDefaultBitmap() {
    auto bitmap = std::make_shared<Bitmap>();
    Raster& raster = bitmap->raster;
    bitmap->memory.Allocate(sizeof(uint32_t));
    bitmap->colors[1] = kColorMask;
    raster = {bitmap->memory.Data(), sizeof(uint32_t), 1, 1, PixelFormat::kMono, bitmap->colors};
    return AddStock(std::move(bitmap));
}

using Stock = std::array<HGDIOBJ, kStockCount>;

Stock MakeStock() {
    Stock stock = {};
    stock[WHITE_BRUSH] = StockBrush(RGB(255, 255, 255), false);
    stock[LTGRAY_BRUSH] = StockBrush(RGB(192, 192, 192), false);
    stock[GRAY_BRUSH] = StockBrush(RGB(128, 128, 128), false);
    stock[DKGRAY_BRUSH] = StockBrush(RGB(64, 64, 64), false);
    stock[BLACK_BRUSH] = StockBrush(RGB(0, 0, 0), false);
    stock[NULL_BRUSH] = StockBrush(RGB(0, 0, 0), true);
    stock[WHITE_PEN] = StockPen(RGB(255, 255, 255), PS_SOLID);
    stock[BLACK_PEN] = StockPen(RGB(0, 0, 0), PS_SOLID);
    stock[NULL_PEN] = StockPen(RGB(0, 0, 0), PS_NULL);
    stock[OEM_FIXED_FONT] = StockFont(kSystemFontHeight, FIXED_PITCH);
    stock[ANSI_FIXED_FONT] = stock[SYSTEM_FIXED_FONT] = stock[OEM_FIXED_FONT];
    stock[SYSTEM_FONT] = StockFont(kSystemFontHeight, VARIABLE_PITCH);
    stock[DEVICE_DEFAULT_FONT] = stock[SYSTEM_FONT];
    stock[DEFAULT_GUI_FONT] = StockFont(kGuiFontHeight, VARIABLE_PITCH);
    stock[ANSI_VAR_FONT] = stock[DEFAULT_GUI_FONT];
    return stock;
}

}  // namespace

HBITMAP DefaultBitmap() {
    static const HGDIOBJ bitmap = MakeDefaultBitmap();
    return static_cast<HBITMAP>(bitmap);
}

HBRUSH MakeStockBrush(COLORREF color) {
    return static_cast<HBRUSH>(StockBrush(color, false));
}

std::shared_ptr<Brush> FindBrush(HBRUSH handle) {
    const uintptr_t value = reinterpret_cast<uintptr_t>(handle);
    if (value == 0 || value > kLastColorHandle) return ObjectTable::Instance().Find<Brush>(handle);
    auto brush = std::make_shared<Brush>();
    brush->color = GetSysColor(static_cast<INT>(value - 1));
    return brush;
}

}  // namespace tdkp

TDKP_API HGDIOBJ GetStockObject(INT index) {
    const tdkp::TerminationDeferral deferral;
    static const tdkp::Stock stock = tdkp::MakeStock();
    return index >= 0 && index < tdkp::kStockCount ? stock[static_cast<size_t>(index)] : nullptr;
}
