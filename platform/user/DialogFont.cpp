#include "platform/user/DialogFont.h"

#include <algorithm>

#include "platform/gdi/Resolution.h"
#include "platform/kernel/PathText.h"
#include "platform/user/ButtonFace.h"
#include "platform/user/TextMeasure.h"

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

DialogUnits UnitsOf(const TextMeasure& measure) {
    const TEXTMETRICA metrics = measure.Metrics();
    return {metrics.tmAveCharWidth, metrics.tmHeight};
}

// Does the control show all of its text?
bool Fits(const DialogItem& item, const DialogUnits& units, const TextMeasure& measure) {
    const bool button = EqualsIgnoringCase(item.className, "Button");
    const bool isText = button || EqualsIgnoringCase(item.className, "Static");
    const POINT size = units.Scale(item.layout.cx, item.layout.cy);
    const bool hasLines = !button && size.y >= 2 * units.height;
    if (!isText || hasLines || item.title.empty() || item.title[0] == '#') return true;
    const bool check = button && (item.layout.style & BS_TYPEMASK) == BS_AUTOCHECKBOX;
    return measure.Size(item.title, DT_SINGLELINE).cx + (check ? CheckLabelStart() : 0) <= size.x;
}

bool AllFit(const DialogLayout& dialog, const DialogUnits& units, HFONT font) {
    const TextMeasure measure(font);
    return std::all_of(dialog.items.begin(), dialog.items.end(),
                       [&](const DialogItem& item) { return Fits(item, units, measure); });
}

}  // namespace

POINT DialogUnits::Scale(int x, int y) const {
    return {MultiplyDivide(x, width, kUnitsPerWidth), MultiplyDivide(y, height, kUnitsPerHeight)};
}

HFONT MakeDialogFont(const DialogLayout& dialog, DialogUnits* units) {
    if ((dialog.layout.style & DS_SETFONT) == 0) {
        *units = UnitsOf(TextMeasure(nullptr));
        return nullptr;
    }
    LOGFONTA wanted = {};
    wanted.lfHeight = -MultiplyDivide(dialog.pointSize, PixelsPerInch(), kPointsPerInch);
    wanted.lfWeight = FW_NORMAL;
    wanted.lfCharSet = DEFAULT_CHARSET;
    dialog.faceName.copy(wanted.lfFaceName, LF_FACESIZE - 1);
    const LONG least = wanted.lfHeight * kLeastPart / kParts;
    HFONT font = CreateFontIndirectA(&wanted);
    *units = UnitsOf(TextMeasure(font));
    while (!AllFit(dialog, *units, font) && wanted.lfHeight < least) {
        ++wanted.lfHeight;  // an em square is counted downwards
        DeleteObject(font);
        font = CreateFontIndirectA(&wanted);
    }
    return font;
}

}  // namespace tdkp
