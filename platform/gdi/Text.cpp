// Text operations.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/ObjectTable.h"
#include "platform/gdi/Rects.h"
#include "platform/gdi/Resolution.h"
#include "platform/gdi/TextLayout.h"
#include "platform/gdi/TextPainter.h"

namespace tdkp {
namespace {

constexpr UINT kHorizontalAlign = TA_CENTER;  // its bits hold TA_LEFT and TA_RIGHT too
constexpr UINT kVerticalAlign = TA_BASELINE;  // and TA_TOP and TA_BOTTOM
constexpr RECT kEverywhere = {std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::min(),
                              std::numeric_limits<LONG>::max(), std::numeric_limits<LONG>::max()};

std::string_view TextOf(LPCSTR text, INT length) {
    return {text, length < 0 ? std::strlen(text) : static_cast<size_t>(length)};
}

int Aligned(int low, int high, int size, bool middle, bool end) {
    const int64_t room = int64_t{high} - low - size;
    return ClampToLong(low + (middle ? room / 2 : end ? room : 0));
}

// Where the first line begins.
int TopOf(const RECT& rect, int height, UINT format) {
    if ((format & DT_SINGLELINE) == 0) return rect.top;
    return Aligned(rect.top, rect.bottom, height, (format & DT_VCENTER) != 0, (format & DT_BOTTOM) != 0);
}

void DrawLines(const DeviceContext& dc, const std::vector<TextLine>& lines, const RECT& rect, UINT format) {
    const FontFace& face = dc.font->face;
    const int height = face.Metrics().Height();
    const RECT limit = (format & DT_NOCLIP) != 0 ? kEverywhere : rect;
    int y = TopOf(rect, height, format);
    DrawTarget target(dc);
    TextPainter painter(dc, target);
    for (const TextLine& line : lines) {
        const int x = Aligned(rect.left, rect.right, line.width, (format & DT_CENTER) != 0, (format & DT_RIGHT) != 0);
        painter.Draw(x, y, line.text, limit);
        if (line.underlined < line.text.size()) {
            const std::string_view text = line.text;
            const int before = face.Advance(text.substr(0, line.underlined));
            const size_t end = line.underlined + CharacterLength(text, line.underlined);
            painter.Underline(x + before, y, face.Advance(text.substr(0, end)) - before, limit);
        }
        y += height;
    }
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API BOOL TextOutA(HDC dc, INT x, INT y, LPCSTR text, INT length) {
    const auto context = FindContext(dc);
    if (!context || text == nullptr || length < 0) return FALSE;
    const std::string_view drawn = TextOf(text, length);
    const FontFace& face = context->font->face;
    const UINT horizontal = context->textAlign & kHorizontalAlign;
    if (horizontal != TA_LEFT) x -= horizontal == TA_CENTER ? face.Advance(drawn) / 2 : face.Advance(drawn);
    const UINT vertical = context->textAlign & kVerticalAlign;
    if (vertical != TA_TOP) y -= vertical == TA_BASELINE ? face.Metrics().ascent : face.Metrics().Height();
    DrawTarget target(*context);
    TextPainter(*context, target).Draw(x, y, drawn, kEverywhere);
    return TRUE;
}

TDKP_API BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, INT length, SIZE* size) {
    const auto context = FindContext(dc);
    if (!context || text == nullptr || length < 0 || size == nullptr) return FALSE;
    const FontFace& face = context->font->face;
    *size = {face.Advance(TextOf(text, length)), face.Metrics().Height()};
    return TRUE;
}

TDKP_API BOOL GetTextMetricsA(HDC dc, TEXTMETRICA* metrics) {
    const auto context = FindContext(dc);
    if (!context || metrics == nullptr) return FALSE;
    const FontMetrics face = context->font->face.Metrics();
    const LOGFONTA& description = context->font->logFont;
    *metrics = {};
    metrics->tmHeight = face.Height();
    metrics->tmAscent = face.ascent;
    metrics->tmDescent = face.descent;
    metrics->tmInternalLeading = face.leading;
    metrics->tmExternalLeading = face.lineGap;
    metrics->tmAveCharWidth = face.averageWidth;
    metrics->tmMaxCharWidth = face.maxWidth;
    metrics->tmWeight = description.lfWeight != FW_DONTCARE ? description.lfWeight : FW_NORMAL;
    metrics->tmDigitizedAspectX = metrics->tmDigitizedAspectY = PixelsPerInch();
    metrics->tmFirstChar = metrics->tmBreakChar = ' ';
    metrics->tmLastChar = 0xFF;
    metrics->tmDefaultChar = '?';
    metrics->tmItalic = description.lfItalic;
    metrics->tmUnderlined = description.lfUnderline;
    metrics->tmStruckOut = description.lfStrikeOut;
    const bool fixed = (description.lfPitchAndFamily & (FIXED_PITCH | VARIABLE_PITCH)) == FIXED_PITCH;
    metrics->tmPitchAndFamily = fixed ? FF_MODERN : (FF_SWISS | TMPF_FIXED_PITCH);
    return TRUE;
}

TDKP_API INT DrawTextA(HDC dc, LPCSTR text, INT length, RECT* rect, UINT format) {
    const auto context = FindContext(dc);
    if (!context || text == nullptr || rect == nullptr) return 0;
    const FontFace& face = context->font->face;
    const int width = ClampToLong(int64_t{rect->right} - rect->left);
    const std::vector<TextLine> lines = LayOutText(face, TextOf(text, length), format, width);
    const int height = static_cast<int>(lines.size()) * face.Metrics().Height();
    if ((format & DT_CALCRECT) == 0) {
        DrawLines(*context, lines, *rect, format);
        return TopOf(*rect, height, format) - rect->top + height;
    }
    int widest = 0;
    for (const TextLine& line : lines) widest = std::max(widest, line.width);
    rect->right = ClampToLong(int64_t{rect->left} + widest);
    rect->bottom = ClampToLong(int64_t{rect->top} + height);
    return height;
}
