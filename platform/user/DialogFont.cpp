#include "platform/user/DialogFont.h"

#include <strings.h>

#include <algorithm>

#include "platform/gdi/Resolution.h"
#include "platform/user/ButtonFace.h"

namespace tdkp {
namespace {

constexpr int kPointsPerInch = 72;
constexpr int kUnitsPerWidth = 4;
constexpr int kUnitsPerHeight = 8;
constexpr LONG kLeastPart = 3;  // a font is made smaller down to three quarters
constexpr LONG kParts = 4;

int MultiplyDivide(int value, int factor, int divisor) {
    const int product = value * factor;
    return (product + (product < 0 ? -divisor : divisor) / 2) / divisor;
}

// Measures with one font.
class Measure {
public:
    explicit Measure(HFONT font) : dc_(CreateCompatibleDC(nullptr)) {
        former_ = SelectObject(dc_, font != nullptr ? font : GetStockObject(SYSTEM_FONT));
    }
    ~Measure() {
        SelectObject(dc_, former_);
        DeleteDC(dc_);
    }
    Measure(const Measure&) = delete;
    Measure& operator=(const Measure&) = delete;

    DialogUnits Units() const {
        TEXTMETRICA metrics = {};
        GetTextMetricsA(dc_, &metrics);
        return {metrics.tmAveCharWidth, metrics.tmHeight};
    }
    LONG Width(const std::string& text) const {
        RECT box = {0, 0, 0, 0};
        DrawTextA(dc_, text.c_str(), -1, &box, DT_SINGLELINE | DT_CALCRECT);
        return box.right;
    }

private:
    HDC dc_;
    HGDIOBJ former_;
};

// Does the control show all of its text?
bool Fits(const DialogItem& item, const DialogUnits& units, const Measure& measure) {
    const bool button = strcasecmp(item.className.c_str(), "Button") == 0;
    const bool isText = button || strcasecmp(item.className.c_str(), "Static") == 0;
    const POINT size = units.Scale(item.layout.cx, item.layout.cy);
    const bool hasLines = !button && size.y >= 2 * units.height;
    if (!isText || hasLines || item.title.empty() || item.title[0] == '#') return true;
    const bool check = button && (item.layout.style & BS_TYPEMASK) == BS_AUTOCHECKBOX;
    return measure.Width(item.title) + (check ? CheckLabelStart() : 0) <= size.x;
}

bool AllFit(const DialogLayout& dialog, const DialogUnits& units, HFONT font) {
    const Measure measure(font);
    return std::all_of(dialog.items.begin(), dialog.items.end(),
                       [&](const DialogItem& item) { return Fits(item, units, measure); });
}

}  // namespace

POINT DialogUnits::Scale(int x, int y) const {
    return {MultiplyDivide(x, width, kUnitsPerWidth), MultiplyDivide(y, height, kUnitsPerHeight)};
}

HFONT MakeDialogFont(const DialogLayout& dialog, DialogUnits* units) {
    if ((dialog.layout.style & DS_SETFONT) == 0) {
        *units = Measure(nullptr).Units();
        return nullptr;
    }
    LOGFONTA wanted = {};
    wanted.lfHeight = -MultiplyDivide(dialog.pointSize, PixelsPerInch(), kPointsPerInch);
    wanted.lfWeight = FW_NORMAL;
    wanted.lfCharSet = DEFAULT_CHARSET;
    dialog.faceName.copy(wanted.lfFaceName, LF_FACESIZE - 1);
    const LONG least = wanted.lfHeight * kLeastPart / kParts;
    HFONT font = CreateFontIndirectA(&wanted);
    *units = Measure(font).Units();
    while (!AllFit(dialog, *units, font) && wanted.lfHeight < least) {
        ++wanted.lfHeight;  // an em square is counted downwards
        DeleteObject(font);
        font = CreateFontIndirectA(&wanted);
    }
    return font;
}

}  // namespace tdkp
