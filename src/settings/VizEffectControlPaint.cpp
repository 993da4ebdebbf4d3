// How a VizEffectControl looks.
#include "src/settings/VizEffectControl.h"

namespace tdkviz {

namespace {

constexpr COLORREF kScaleColor = RGB(255, 255, 0);
constexpr COLORREF kRestingArrow = RGB(0, 255, 0);
constexpr COLORREF kDraggedArrow = kScaleColor;
constexpr COLORREF kFocusColor = kScaleColor;
constexpr int32_t kMarkLength = 4;
constexpr int32_t kArrowLength = 5;
constexpr int32_t kArrowGap = 2;  // from the scale to an arrow's point, and to the dots
constexpr int32_t kDotStep = 3;
constexpr int32_t kDotMargin = 2;  // what the dots leave free at both ends

// A memory device context with something of the owner's selected for its own life.
class MemoryContext {
public:
    MemoryContext(HDC like, HGDIOBJ bitmap)
        : context_(CreateCompatibleDC(like)), earlier_(SelectObject(context_, bitmap)) {}
    ~MemoryContext() {
        SelectObject(context_, earlier_);
        DeleteDC(context_);
    }
    MemoryContext(const MemoryContext&) = delete;
    MemoryContext& operator=(const MemoryContext&) = delete;
    HDC Get() const { return context_; }

private:
    const HDC context_;
    const HGDIOBJ earlier_;
};

void DrawLine(HDC target, POINT from, POINT to) {
    MoveToEx(target, from.x, from.y, nullptr);
    LineTo(target, to.x, to.y);
}

void FillBlack(HDC target, const RECT& area) {
    FillRect(target, &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

}  // namespace

void VizEffectControl::OnPaint() {
    PAINTSTRUCT paint;
    const HDC target = BeginPaint(Window, &paint);
    RECT client = {};
    GetClientRect(Window, &client);
    if (PictureDirty) AskForPicture(target, client);

    const HBITMAP bitmap = CreateCompatibleBitmap(target, client.right, client.bottom);
    {
        const MemoryContext buffer(target, bitmap);
        DrawControl(buffer.Get(), client);
        BitBlt(target, 0, 0, client.right, client.bottom, buffer.Get(), 0, 0, SRCCOPY);
    }
    DeleteObject(bitmap);
    EndPaint(Window, &paint);
}

void VizEffectControl::AskForPicture(HDC target, const RECT& client) {
    PictureDirty = false;
    if (!Picture) return;
    const MemoryContext picture(target, Picture->Bitmap);
    FillBlack(picture.Get(), client);
    SendMessageA(GetParent(Window), kMessageDrawPicture, reinterpret_cast<WPARAM>(picture.Get()),
                 reinterpret_cast<LPARAM>(this));
}

void VizEffectControl::DrawControl(HDC target, const RECT& client) const {
    if (Picture) {
        const MemoryContext picture(target, Picture->Bitmap);
        BitBlt(target, 0, 0, client.right, client.bottom, picture.Get(), 0, 0, SRCCOPY);
    } else {
        FillBlack(target, client);
    }
    const HPEN pen = CreatePen(PS_SOLID, 1, kScaleColor);
    const HGDIOBJ earlier = SelectObject(target, pen);
    if (Axes & kAxisX) DrawScaleX(target, client);
    if (Axes & kAxisY) DrawScaleY(target, client);
    SelectObject(target, earlier);
    DeleteObject(pen);
    if (HasFocus) DrawFocus(target, client);
    DrawArrows(target);
}

void VizEffectControl::DrawScaleX(HDC target, const RECT& client) const {
    const RECT inner = Inner();
    const auto mark = [&](int32_t x) { DrawLine(target, {x, inner.bottom}, {x, inner.bottom - kMarkLength}); };
    MoveToEx(target, inner.right, inner.bottom - kMarkLength, nullptr);
    LineTo(target, inner.right, inner.bottom);
    LineTo(target, inner.left, inner.bottom);
    LineTo(target, inner.left, inner.bottom - kMarkLength);
    const EffectScale scale = ScaleX(inner);
    if (scale.HasMarkPerValue()) {
        for (int32_t value = MinX; value <= MaxX; ++value) mark(inner.left + scale.DistanceOf(value));
        return;
    }
    const int32_t centre = client.right / 2;
    for (int32_t i = 0; i < centre - kDotMargin; i += kDotStep) {
        SetPixel(target, centre + i, inner.bottom - kArrowGap, kScaleColor);
        SetPixel(target, centre - i, inner.bottom - kArrowGap, kScaleColor);
    }
    if (SnapX & kSnapCentre) mark(centre);
}

void VizEffectControl::DrawScaleY(HDC target, const RECT& client) const {
    const RECT inner = Inner();
    const auto mark = [&](int32_t y) { DrawLine(target, {inner.left, y}, {inner.left + kMarkLength, y}); };
    MoveToEx(target, inner.left + kMarkLength, inner.top, nullptr);
    LineTo(target, inner.left, inner.top);
    LineTo(target, inner.left, inner.bottom);
    LineTo(target, inner.left + kMarkLength, inner.bottom);
    const EffectScale scale = ScaleY(inner);
    if (scale.HasMarkPerValue()) {
        for (int32_t value = MinY; value <= MaxY; ++value) mark(inner.bottom - scale.DistanceOf(value));
        return;
    }
    const int32_t centre = client.bottom / 2;
    for (int32_t i = 0; i < centre - kDotMargin; i += kDotStep) {
        SetPixel(target, inner.left + kArrowGap, centre + i, kScaleColor);
        SetPixel(target, inner.left + kArrowGap, centre - i, kScaleColor);
    }
    if (SnapY & kSnapCentre) mark(centre);
}

// Every other pixel of the margin that the scales leave free.
void VizEffectControl::DrawFocus(HDC target, const RECT& client) {
    const auto dot = [&](int32_t x, int32_t y) {
        if ((x + y) % 2 == 0) SetPixel(target, x, y, kFocusColor);
    };
    for (int32_t x = 0; x < client.right; ++x) dot(x, 0), dot(x, client.bottom - 1);
    for (int32_t y = 0; y < client.bottom; ++y) dot(0, y), dot(client.right - 1, y);
}

// Both point on to their scales.
void VizEffectControl::DrawArrows(HDC target) const {
    const RECT inner = Inner();
    const auto color = [this](uint32_t axis) { return DragAxis & axis ? kDraggedArrow : kRestingArrow; };
    const bool drawX = (Axes & kAxisX) != 0;
    const int32_t arrowX = ArrowX(inner), arrowY = ArrowY(inner);
    for (int32_t row = 0; drawX && row < kArrowLength; ++row) {
        for (int32_t x = arrowX - row; x <= arrowX + row; ++x) {
            SetPixel(target, x, inner.bottom - kArrowGap - row, color(kAxisX));
        }
    }
    for (int32_t column = 0; HasValueY && column < kArrowLength; ++column) {
        for (int32_t y = arrowY - column; y <= arrowY + column; ++y) {
            SetPixel(target, inner.left + kArrowGap + column, y, color(kAxisY));
        }
    }
}

}  // namespace tdkviz
