// A thin bar with a thumb that the mouse drags. It is painted by whoever owns it and holds a part of the whole, 0 to 1.
#pragma once

#include "player/window/Canvas.h"

namespace tdkplay {

class Slider {
public:
    void Place(const RECT& place) { place_ = place; }
    // While it is dragged, the mouse alone moves it. True if the thumb is at another pixel now.
    bool SetValue(double part);
    double Value() const { return value_; }

    // The mouse at this x, held down: the thumb follows it.
    void Drag(int x);
    void EndDrag() { isDragged_ = false; }
    bool IsDragged() const { return isDragged_; }
    // Where the thumb is, in the strip's coordinates.
    int ThumbX() const;

    // With a thumb if the mouse is over it or drags it.
    void Paint(Canvas& canvas, bool isHot) const;

private:
    RECT place_ = {};
    double value_ = 0;
    bool isDragged_ = false;
};

}  // namespace tdkplay
