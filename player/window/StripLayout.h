// Where the parts of the strip below the picture stand. Pixels, in the strip.
#pragma once

#include <windows.h>

namespace tdkplay {

enum class StripPart { kNone, kSeek, kPrevious, kPlay, kNext, kVolume, kSettings };

// A part for which there is no room has an empty place.
struct StripLayout {
    static constexpr int kHeight = 54;
    static constexpr int kPadding = 7;       // inside the settings button
    static constexpr int kPictureSide = 16;  // of its picture

    RECT Seek = {};  // the seek bar, along the upper edge
    RECT Previous = {};
    RECT Play = {};
    RECT Next = {};
    RECT Time = {};
    RECT Title = {};
    RECT Volume = {};
    RECT Settings = {};
    bool HasLabel = false;  // the settings button shows its label beside its picture

    // For a strip of this width, with room for a time and for the label of the settings button.
    static StripLayout For(int width, int timeWidth, int labelWidth);
    // What the mouse works on at this place.
    StripPart PartAt(POINT point) const;
    RECT PlaceOf(StripPart part) const;
    // The part of the volume's place that is its slider; the rest is a sign.
    RECT VolumeSlider() const;
    RECT VolumeSign() const;
};

}  // namespace tdkplay
