// A picture in memory to paint on, which goes to the screen in one piece. Shapes have smooth edges.
#pragma once

#include <windows.h>

#include <string>

namespace tdkplay {

// For one thread.
class Canvas {
public:
    // Where memory lacks, nothing is painted and there are no pixels.
    Canvas(int width, int height);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    int Width() const { return width_; }
    int Height() const { return height_; }
    void CopyTo(HDC dc) const { BitBlt(dc, 0, 0, width_, height_, dc_, 0, 0, SRCCOPY); }

    void Fill(const RECT& place, COLORREF color);
    // A bar with round ends and corners.
    void FillRounded(const RECT& place, double radius, COLORREF color);
    // Every place for which `inside(x, y)` is true, within these bounds.
    template <typename Shape>
    void FillShape(const RECT& bounds, COLORREF color, const Shape& inside);
    // For texts from now on, in the place of the system's; it stays its owner's, who takes it back before it ends.
    // Gives the one before.
    HGDIOBJ SetFont(HGDIOBJ font) { return SelectObject(dc_, font); }
    // One line of text, in the middle of the height; DT_LEFT, DT_CENTER or DT_RIGHT.
    void Text(const std::string& text, const RECT& place, COLORREF color, UINT alignment = DT_LEFT);
    int TextWidth(const std::string& text) const;
    void Picture(HBITMAP picture, int left, int top);
    // All rows without gaps, 0x00RRGGBB, top row first, with all that has been painted. Null if there are none.
    DWORD* Pixels() const;

private:
    static constexpr int kSamples = 4;  // across and down a pixel

    void Blend(int x, int y, COLORREF color, int part, int whole);

    const int width_;
    const int height_;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ formerBitmap_ = nullptr;
    DWORD* pixels_ = nullptr;
};

template <typename Shape>
void Canvas::FillShape(const RECT& bounds, COLORREF color, const Shape& inside) {
    RECT area = {0, 0, width_, height_};
    if (!Pixels() || !IntersectRect(&area, &area, &bounds)) return;
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            int hits = 0;
            for (int sample = 0; sample < kSamples * kSamples; ++sample)
                hits += inside(x + (sample % kSamples + 0.5) / kSamples, y + (sample / kSamples + 0.5) / kSamples);
            if (hits != 0) Blend(x, y, color, hits, kSamples * kSamples);
        }
    }
}

}  // namespace tdkplay
