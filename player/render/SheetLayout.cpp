#include "player/render/SheetLayout.h"

#include <algorithm>
#include <cmath>

namespace tdkplay {
namespace {

constexpr int kMargin = 24;    // around everything
constexpr int kGap = 4;        // between the pictures of a strip
constexpr int kStripGap = 22;  // between strips
constexpr double kShape = 4.0 / 3.0;

constexpr int kSmallestLetters = 12;
constexpr int kLargestLetters = 32;
constexpr int kLettersInPicture = 14;  // letters above each other

// With room for what hangs below the line.
int LineHeight(int letters) {
    return letters * 3 / 2;
}

}  // namespace

SheetLayout::SheetLayout(PictureSize picture, size_t strips, size_t moments)
    : picture_(picture), strips_(static_cast<int>(strips)), moments_(static_cast<int>(moments)) {
    for (int columns = 2; columns <= strips_; ++columns)
        if (MisshapeWith(columns) < MisshapeWith(columns_)) columns_ = columns;
}

int SheetLayout::CaptionHeight() const {
    return std::clamp(picture_.Height / kLettersInPicture, kSmallestLetters, kLargestLetters);
}

int SheetLayout::TitleHeight() const {
    return CaptionHeight() * 3 / 2;
}

int SheetLayout::StripWidth() const {
    return moments_ * (picture_.Width + kGap) - kGap;
}

int SheetLayout::StripHeight() const {
    return LineHeight(CaptionHeight()) + picture_.Height;
}

int SheetLayout::WidthWith(int columns) const {
    return 2 * kMargin + columns * (StripWidth() + kStripGap) - kStripGap;
}

int SheetLayout::HeightWith(int columns) const {
    const int rows = (strips_ + columns - 1) / columns;
    return 2 * kMargin + LineHeight(TitleHeight()) + rows * (StripHeight() + kStripGap) - kStripGap / 2;
}

double SheetLayout::MisshapeWith(int columns) const {
    return std::abs(std::log(static_cast<double>(WidthWith(columns)) / HeightWith(columns) / kShape));
}

RECT SheetLayout::TitlePlace() const {
    return {kMargin, kMargin, WidthWith(columns_) - kMargin, kMargin + LineHeight(TitleHeight())};
}

// Strips go on from left to right, row by row.
RECT SheetLayout::PicturePlace(size_t strip, size_t moment) const {
    const int index = static_cast<int>(strip);
    const int left =
        kMargin + index % columns_ * (StripWidth() + kStripGap) + static_cast<int>(moment) * (picture_.Width + kGap);
    const int top = TitlePlace().bottom + kStripGap / 2 + index / columns_ * (StripHeight() + kStripGap) +
                    LineHeight(CaptionHeight());
    return {left, top, left + picture_.Width, top + picture_.Height};
}

RECT SheetLayout::CaptionPlace(size_t strip) const {
    const RECT picture = PicturePlace(strip, 0);
    return {picture.left, picture.top - LineHeight(CaptionHeight()), picture.left + StripWidth(), picture.top};
}

}  // namespace tdkplay
