#include "platform/user/Trackbar.h"

#include <commctrl.h>

#include <algorithm>

#include "platform/gdi/Resolution.h"
#include "platform/user/ControlPaint.h"

namespace tdkp {
namespace {

// Extra bytes, a LONG each.
enum Word : INT {
    kMinimum = 0,
    kMaximum = 4,
    kPosition = 8,
    kHold = 12,  // what the mouse holds
    kGrip = 16,  // from the thumb's left edge to where it is held
    kAim = 20,   // where the paging goes to
    kTickStep = 24,
    kExtraBytes = 28,
};
constexpr LONG kHoldsNothing = 0;
constexpr LONG kHoldsThumb = 1;
constexpr LONG kPages = 2;

constexpr LONG kFirstMaximum = 100;
constexpr LONG kPagesInRange = 5;
constexpr UINT_PTR kPageTimer = 1;
constexpr UINT kPageInterval = 200;

// At 96 pixels to the inch.
constexpr int kMargin = 3;
constexpr int kThumbWidth = 11;
constexpr int kThumbHeight = 21;
constexpr int kChannelHeight = 4;
constexpr int kTickHeight = 3;
constexpr int kTickGap = 1;  // to the thumb

LONG Get(HWND bar, Word word) {
    return GetWindowLongA(bar, word);
}

void Set(HWND bar, Word word, LONG value) {
    SetWindowLongA(bar, word, value);
}

LONG PageOf(HWND bar) {
    return std::max((Get(bar, kMaximum) - Get(bar, kMinimum)) / kPagesInRange, LONG{1});
}

// The columns that the thumb's left edge moves over.
struct Travel {
    LONG start;
    LONG length;
};

Travel TravelOf(HWND bar) {
    RECT client;
    GetClientRect(bar, &client);
    const LONG margin = ScaledPixels(kMargin);
    return {margin, std::max(client.right - 2 * margin - ScaledPixels(kThumbWidth), LONG{0})};
}

// Where the thumb's left edge is at this position.
LONG ColumnOf(HWND bar, LONG position) {
    const Travel travel = TravelOf(bar);
    const LONG range = Get(bar, kMaximum) - Get(bar, kMinimum);
    const int64_t along = int64_t{position} - Get(bar, kMinimum);
    return travel.start + (range > 0 ? static_cast<LONG>((along * travel.length + range / 2) / range) : 0);
}

// The rows between the tick marks.
struct Lane {
    LONG top;
    LONG bottom;
};

Lane LaneOf(HWND bar) {
    RECT client;
    GetClientRect(bar, &client);
    const LONG style = GetWindowLongA(bar, GWL_STYLE);
    const LONG ticks = (style & TBS_NOTICKS) != 0 ? 0 : ScaledPixels(kTickGap) + ScaledPixels(kTickHeight);
    return {(style & TBS_BOTH) != 0 ? ticks : 0, client.bottom - ticks};
}

RECT ThumbOf(HWND bar) {
    const Lane lane = LaneOf(bar);
    const LONG left = ColumnOf(bar, Get(bar, kPosition));
    const LONG height = std::min(LONG{ScaledPixels(kThumbHeight)}, lane.bottom - lane.top - 2);
    const LONG top = (lane.top + lane.bottom - height) / 2;
    return {left, top, left + ScaledPixels(kThumbWidth), top + height};
}

// The position at which the thumb's left edge is nearest to this column.
LONG PositionAt(HWND bar, LONG left) {
    const Travel travel = TravelOf(bar);
    const LONG range = Get(bar, kMaximum) - Get(bar, kMinimum);
    const int64_t along = std::clamp(left - travel.start, LONG{0}, travel.length);
    if (travel.length == 0) return Get(bar, kMinimum);
    return Get(bar, kMinimum) + static_cast<LONG>((along * range + travel.length / 2) / travel.length);
}

bool MoveTo(HWND bar, int64_t position) {
    const auto next = static_cast<LONG>(std::clamp<int64_t>(position, Get(bar, kMinimum), Get(bar, kMaximum)));
    if (next == Get(bar, kPosition)) return false;
    Set(bar, kPosition, next);
    InvalidateRect(bar, nullptr, FALSE);
    return true;
}

void Notify(HWND bar, WORD code) {
    const bool thumb = code == TB_THUMBPOSITION || code == TB_THUMBTRACK;
    const WORD position = thumb ? static_cast<WORD>(Get(bar, kPosition)) : WORD{0};
    if (const HWND parent = GetParent(bar))
        SendMessageA(parent, WM_HSCROLL, MAKEWPARAM(code, position), reinterpret_cast<LPARAM>(bar));
}

void Step(HWND bar, WORD code) {
    const int64_t position = Get(bar, kPosition);
    switch (code) {
        case TB_LINEUP:
            MoveTo(bar, position - 1);
            break;
        case TB_LINEDOWN:
            MoveTo(bar, position + 1);
            break;
        case TB_PAGEUP:
            MoveTo(bar, position - PageOf(bar));
            break;
        case TB_PAGEDOWN:
            MoveTo(bar, position + PageOf(bar));
            break;
        case TB_TOP:
            MoveTo(bar, Get(bar, kMinimum));
            break;
        default:
            MoveTo(bar, Get(bar, kMaximum));
            break;
    }
    Notify(bar, code);
}

struct StepKey {
    WPARAM key;
    WORD code;
};
constexpr StepKey kStepKeys[] = {{VK_LEFT, TB_LINEUP},   {VK_UP, TB_LINEUP},    {VK_RIGHT, TB_LINEDOWN},
                                 {VK_DOWN, TB_LINEDOWN}, {VK_PRIOR, TB_PAGEUP}, {VK_NEXT, TB_PAGEDOWN},
                                 {VK_HOME, TB_TOP},      {VK_END, TB_BOTTOM}};

LRESULT OnKey(HWND bar, bool down, WPARAM key) {
    for (const StepKey& each : kStepKeys) {
        if (each.key == key) down ? Step(bar, each.code) : Notify(bar, TB_ENDTRACK);
    }
    return 0;
}

// One page towards where the mouse is held, until the thumb is there.
LRESULT Page(HWND bar) {
    const RECT thumb = ThumbOf(bar);
    const LONG aim = Get(bar, kAim);
    if (Get(bar, kHold) == kPages && (aim < thumb.left || aim >= thumb.right))
        Step(bar, aim < thumb.left ? TB_PAGEUP : TB_PAGEDOWN);
    return 0;
}

LRESULT OnPress(HWND bar, POINT point) {
    SetFocus(bar);
    SetCapture(bar);
    const RECT thumb = ThumbOf(bar);
    const bool onThumb = point.x >= thumb.left && point.x < thumb.right;
    Set(bar, kHold, onThumb ? kHoldsThumb : kPages);
    Set(bar, kGrip, point.x - thumb.left);
    Set(bar, kAim, point.x);
    if (onThumb) return 0;
    SetTimer(bar, kPageTimer, kPageInterval, nullptr);
    return Page(bar);
}

LRESULT OnMove(HWND bar, POINT point) {
    if (Get(bar, kHold) == kPages) Set(bar, kAim, point.x);
    if (Get(bar, kHold) == kHoldsThumb && MoveTo(bar, PositionAt(bar, point.x - Get(bar, kGrip))))
        Notify(bar, TB_THUMBTRACK);
    return 0;
}

LRESULT OnRelease(HWND bar) {
    const LONG hold = Get(bar, kHold);
    if (hold == kHoldsNothing) return 0;
    Set(bar, kHold, kHoldsNothing);
    KillTimer(bar, kPageTimer);
    if (GetCapture() == bar) ReleaseCapture();
    if (hold == kHoldsThumb) Notify(bar, TB_THUMBPOSITION);
    Notify(bar, TB_ENDTRACK);
    return 0;
}

LRESULT OnSetRange(HWND bar, LPARAM range) {
    const LONG low = static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(range)));
    const LONG high = static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(range)));
    Set(bar, kMinimum, low);
    Set(bar, kMaximum, std::max(low, high));
    MoveTo(bar, Get(bar, kPosition));
    InvalidateRect(bar, nullptr, FALSE);
    return 0;
}

LRESULT OnSetTickStep(HWND bar, WPARAM step) {
    Set(bar, kTickStep, std::max(static_cast<LONG>(step), LONG{1}));
    InvalidateRect(bar, nullptr, FALSE);
    return 0;
}

// One mark below the thumb's middle at this position, and one above it.
void PaintTick(HWND bar, ControlPaint& paint, LONG position) {
    const LONG left = ColumnOf(bar, position) + ScaledPixels(kThumbWidth) / 2;
    const RECT thumb = ThumbOf(bar);
    const LONG gap = ScaledPixels(kTickGap), height = ScaledPixels(kTickHeight);
    const LONG below = thumb.bottom + gap, above = thumb.top - gap - height;
    paint.Fill({left, below, left + 1, below + height}, COLOR_BTNTEXT);
    if ((GetWindowLongA(bar, GWL_STYLE) & TBS_BOTH) != 0)
        paint.Fill({left, above, left + 1, above + height}, COLOR_BTNTEXT);
}

void PaintTicks(HWND bar, ControlPaint& paint) {
    const LONG style = GetWindowLongA(bar, GWL_STYLE);
    if ((style & TBS_NOTICKS) != 0) return;
    const LONG minimum = Get(bar, kMinimum), maximum = Get(bar, kMaximum);
    PaintTick(bar, paint, maximum);
    const int64_t step = (style & TBS_AUTOTICKS) != 0 ? Get(bar, kTickStep) : int64_t{maximum} - minimum;
    for (int64_t position = minimum; position < maximum; position += step)
        PaintTick(bar, paint, static_cast<LONG>(position));
}

LRESULT Paint(HWND bar) {
    ControlPaint paint(bar);
    const RECT& all = paint.Box();
    paint.Fill(all, COLOR_3DFACE);
    PaintTicks(bar, paint);
    const LONG height = ScaledPixels(kChannelHeight);
    const Lane lane = LaneOf(bar);
    const LONG top = (lane.top + lane.bottom - height) / 2;
    const LONG margin = ScaledPixels(kMargin);
    RECT channel = {margin, top, all.right - margin, top + height};
    paint.Edge(channel, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    InflateRect(&channel, -1, -1);
    paint.Edge(channel, COLOR_3DDKSHADOW, COLOR_3DLIGHT);
    RECT thumb = ThumbOf(bar);
    paint.Fill(thumb, COLOR_BTNFACE);
    paint.Edge(thumb, COLOR_BTNHIGHLIGHT, COLOR_3DDKSHADOW);
    InflateRect(&thumb, -1, -1);
    paint.Edge(thumb, COLOR_3DLIGHT, COLOR_BTNSHADOW);
    if (GetFocus() == bar) paint.FocusRect(all);
    return 0;
}

LRESULT CALLBACK TrackbarProcedure(HWND bar, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            Set(bar, kTickStep, 1);
            return Set(bar, kMaximum, kFirstMaximum), 0;
        case WM_PAINT:
            return Paint(bar);
        case WM_ERASEBKGND:
            return 1;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            return InvalidateRect(bar, nullptr, FALSE), 0;
        case WM_KEYDOWN:
        case WM_KEYUP:
            return OnKey(bar, message == WM_KEYDOWN, wParam);
        case WM_LBUTTONDOWN:
            return OnPress(bar, PointOf(lParam));
        case WM_MOUSEMOVE:
            return OnMove(bar, PointOf(lParam));
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            return OnRelease(bar);
        case WM_TIMER:
            return Page(bar);
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case TBM_GETPOS:
            return Get(bar, kPosition);
        case TBM_SETPOS:
            return MoveTo(bar, static_cast<LONG>(lParam)), 0;
        case TBM_SETRANGE:
            return OnSetRange(bar, lParam);
        case TBM_SETTICFREQ:
            return OnSetTickStep(bar, wParam);
        default:
            return DefWindowProcA(bar, message, wParam, lParam);
    }
}

}  // namespace

WNDCLASSA TrackbarClass() {
    WNDCLASSA info = {};
    info.style = CS_HREDRAW | CS_VREDRAW;
    info.lpfnWndProc = TrackbarProcedure;
    info.cbWndExtra = kExtraBytes;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    return info;
}

}  // namespace tdkp

TDKP_API VOID InitCommonControls() {}
