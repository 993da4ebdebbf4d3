// VizEffectControl: a picture with one or two scales over it, and an arrow on each to drag a value.
//
// The control knows nothing of effects: its parent draws the picture when it is asked to, and is told of
// each change. With the focus, the arrow keys move the arrows by one; Home and End take the horizontal one to an
// end, Page Down and Page Up the vertical one.
// Its sources: VizEffectControl.cpp (life, values), VizEffectControlInput.cpp, VizEffectControlPaint.cpp.
// All on the thread that called Create. Pixels are those of the window's client area.
#pragma once

#include <windows.h>

#include <cstdint>

#include "src/render/VizSurface.h"
#include "src/settings/EffectScale.h"

namespace tdkviz {

// Posted to the parent when a value changed: wParam is Id, the low and high 16 bits of lParam are ValueX
// and ValueY, both signed.
inline constexpr UINT kMessageValueChanged = 4005;
// Sent to the parent during a paint: wParam is a memory device context that has the picture selected,
// filled black; lParam is the control [borrowed].
inline constexpr UINT kMessageDrawPicture = 4006;

class VizEffectControl {
public:
    // A scale by itself, or a set of them.
    static constexpr uint32_t kAxisX = 1;
    static constexpr uint32_t kAxisY = 2;
    static constexpr int32_t kNoValue = -1;

    VizEffectControl();
    ~VizEffectControl();
    VizEffectControl(const VizEffectControl&) = delete;
    VizEffectControl& operator=(const VizEffectControl&) = delete;

    // Makes the window and its picture. True if the window stands.
    bool Create(uint32_t id, HWND parent, int32_t x, int32_t y, int32_t width, int32_t height);
    // Each minimum is below its maximum. Stores the four numbers, nothing else.
    void SetRanges(int32_t minX, int32_t maxX, int32_t minY, int32_t maxY);
    // Clamps the value of one scale to its range and stores it, tells the parent, asks for a new picture.
    void SetValue(uint32_t axis, int32_t value);
    // The same for both at once: the parent never hears of a new value beside an old one.
    void SetValues(int32_t x, int32_t y);
    // Frees the picture and destroys the window. The destructor does the same.
    void Destroy();

    uint32_t Id = 0;
    HWND Window = nullptr;
    VizSurfacePtr Picture;  // FormatRGB32, of the size given to Create; null shows as black
    int32_t MinX = 0, MaxX = 100;
    int32_t MinY = 0, MaxY = 100;
    int32_t ValueX = kNoValue;
    int32_t ValueY = kNoValue;
    bool HasValueY = false;  // the vertical arrow stands for a value that has been set, which may well be -1
    uint32_t DragAxis = 0;
    bool HasFocus = false;  // shown by a dotted line around the client area
    uint32_t Axes = kAxisX;
    uint32_t SnapX = 0, SnapY = 0;  // EffectSnap
    bool PictureDirty = false;      // the parent draws the picture again at the next paint

private:
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // The frame of all geometry; both arrows' scales end on its edges.
    RECT Inner() const;
    EffectScale ScaleX(const RECT& inner) const { return {inner.right - inner.left, MinX, MaxX}; }
    EffectScale ScaleY(const RECT& inner) const { return {inner.bottom - inner.top, MinY, MaxY}; }
    // Where the arrows stand.
    int32_t ArrowX(const RECT& inner) const { return inner.left + ScaleX(inner).DistanceOf(ValueX); }
    int32_t ArrowY(const RECT& inner) const { return inner.bottom - ScaleY(inner).DistanceOf(ValueY); }

    void Store(uint32_t axis, int32_t value);
    void TellParent();
    void OnPress(int32_t x, int32_t y);
    void OnMove(int32_t x, int32_t y);
    void OnRelease();
    void EndDrag();
    void OnKey(WPARAM key);
    void OnFocus(bool has);
    void OnPaint();
    void AskForPicture(HDC target, const RECT& client);
    void DrawControl(HDC target, const RECT& client) const;
    void DrawScaleX(HDC target, const RECT& client) const;
    void DrawScaleY(HDC target, const RECT& client) const;
    void DrawArrows(HDC target) const;
    static void DrawFocus(HDC target, const RECT& client);
};

}  // namespace tdkviz
