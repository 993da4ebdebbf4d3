// Where everything stands on a contact sheet: a title, and for each plug-in a strip of pictures with its name. Strips
// stand in as many columns as make the sheet a little wider than high. Pixels.
#pragma once

#include <windows.h>

#include "player/base/PictureSize.h"

namespace tdkplay {

class SheetLayout {
public:
    // `strips` and `moments` are at least 1.
    SheetLayout(PictureSize picture, size_t strips, size_t moments);

    PictureSize Sheet() const { return {WidthWith(columns_), HeightWith(columns_)}; }
    RECT TitlePlace() const;
    RECT PicturePlace(size_t strip, size_t moment) const;
    // The line above the pictures.
    RECT CaptionPlace(size_t strip) const;
    // Of letters, by which their lines are measured.
    int TitleHeight() const;
    int CaptionHeight() const;

private:
    int StripWidth() const;
    int StripHeight() const;
    int WidthWith(int columns) const;
    int HeightWith(int columns) const;
    double MisshapeWith(int columns) const;

    const PictureSize picture_;
    const int strips_;
    const int moments_;
    int columns_ = 1;
};

}  // namespace tdkplay
