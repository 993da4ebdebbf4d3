#include "platform/user/SystemColors.h"

#include <array>

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

HBRUSH MakeBrush(COLORREF color) {
    switch (color) {
        case kBlack:
            return static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
        case kWhite:
            return static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        case kGray:
            return static_cast<HBRUSH>(GetStockObject(LTGRAY_BRUSH));
        case kDarkGray:
            return static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH));
        default:
            return CreateSolidBrush(color);
    }
}

}  // namespace

namespace tdkp {

HBRUSH BrushOfClass(HBRUSH brush) {
    const auto number = reinterpret_cast<uintptr_t>(brush);
    return number >= 1 && number <= kColors ? GetSysColorBrush(static_cast<INT>(number) - 1) : brush;
}

bool IsSystemBrush(HBRUSH brush) {
    if (reinterpret_cast<uintptr_t>(brush) <= kColors) return true;
    LayerGuard guard(brushLock);
    for (const HBRUSH made : madeBrushes) {
        if (made == brush) return true;
    }
    return false;
}

}  // namespace tdkp

TDKP_API DWORD GetSysColor(INT index) {
    return index >= 0 && index < kColors ? kTable[static_cast<size_t>(index)] : 0;
}

TDKP_API HBRUSH GetSysColorBrush(INT index) {
    if (index < 0 || index >= kColors) return nullptr;
    tdkp::LayerGuard guard(brushLock);
    HBRUSH& brush = madeBrushes[static_cast<size_t>(index)];
    if (brush == nullptr) brush = MakeBrush(kTable[static_cast<size_t>(index)]);
    return brush;
}
