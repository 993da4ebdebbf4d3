// The colours of the system: the classic ones, all of them among the twenty that every palette has.
#include <windows.h>

#include <array>

#include "platform/gdi/StockObjects.h"
#include "platform/kernel/Dispatcher.h"

namespace {

constexpr INT kColors = 25;
constexpr COLORREF kBlack = RGB(0, 0, 0);
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kGray = RGB(192, 192, 192);
constexpr COLORREF kDarkGray = RGB(128, 128, 128);
constexpr COLORREF kNavy = RGB(0, 0, 128);
constexpr COLORREF kTeal = RGB(0, 128, 128);
constexpr COLORREF kInfo = RGB(255, 255, 225);

// By COLOR_ number.
constexpr std::array<COLORREF, kColors> kTable = {
    kGray, kTeal,  kNavy, kDarkGray, kGray,     kWhite, kBlack, kBlack, kBlack, kWhite, kGray,  kGray, kDarkGray,
    kNavy, kWhite, kGray, kDarkGray, kDarkGray, kBlack, kGray,  kWhite, kBlack, kGray,  kBlack, kInfo};

tdkp::LayerMutex brushLock;
std::array<HBRUSH, kColors> madeBrushes = {};

}  // namespace

TDKP_API DWORD GetSysColor(INT index) {
    return index >= 0 && index < kColors ? kTable[static_cast<size_t>(index)] : 0;
}

TDKP_API HBRUSH GetSysColorBrush(INT index) {
    if (index < 0 || index >= kColors) return nullptr;
    tdkp::LayerGuard guard(brushLock);
    HBRUSH& brush = madeBrushes[static_cast<size_t>(index)];
    if (brush == nullptr) brush = tdkp::MakeStockBrush(kTable[static_cast<size_t>(index)]);
    return brush;
}
