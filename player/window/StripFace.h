// What is seen of the strip, and how it is painted.
#pragma once

#include <windows.h>

#include <string>

#include "player/window/Canvas.h"
#include "player/window/Slider.h"
#include "player/window/StripLayout.h"

namespace tdkplay {

// The music as the strip shows it.
struct StripState {
    std::string Title;   // of the piece
    std::string Detail;  // stands behind it, less bright
    bool IsPlaying = false;
    int Volume = 0;       // percent
    double Position = 0;  // seconds
    double Length = 0;    // seconds; 0: unknown
};

struct StripFace {
    StripState State;
    std::string Notice;         // stands in the place of the title if it isn't empty
    std::string Time;           // "1:23 / 3:45"
    HBITMAP Picture = nullptr;  // of the settings button; the strip's
    std::string Label;
    bool IsChecked = false;  // the settings button looks held down
    Slider Seek;
    Slider Volume;
    StripPart Hot = StripPart::kNone;   // the mouse is over it
    StripPart Held = StripPart::kNone;  // and was pressed there

    void Paint(Canvas& canvas, const StripLayout& layout) const;

private:
    void PaintButton(Canvas& canvas, const StripLayout& layout, StripPart part) const;
    void PaintSettings(Canvas& canvas, const StripLayout& layout) const;
    void PaintTitle(Canvas& canvas, const RECT& place) const;
    bool IsHot(StripPart part) const { return Hot == part && (Held == part || Held == StripPart::kNone); }
};

}  // namespace tdkplay
