#include "player/window/StripLayout.h"

#include <algorithm>
#include <utility>

namespace tdkplay {
namespace {

constexpr int kMargin = 8;
constexpr int kSeekTop = 2;
constexpr int kSeekBottom = 18;
constexpr int kRowTop = 18;
constexpr int kRowBottom = 48;
constexpr int kButtonWidth = 30;
constexpr int kGap = 10;
constexpr int kVolumeWidth = 96;
constexpr int kNarrowVolumeWidth = 64;
constexpr int kVolumeSign = 20;

// From here on there is room for the label, and for the long volume slider.
constexpr int kWide = 560;
constexpr int kLeastTitle = 60;

// Takes its share from the left or the right of what is left of the row.
class Row {
public:
    explicit Row(int width) : left_(kMargin), right_(width - kMargin) {}
    int Room() const { return right_ - left_; }
    RECT TakeLeft(int width, int gap) {
        if (width > Room()) return {};
        const RECT place = {left_, kRowTop, left_ + width, kRowBottom};
        left_ += width + gap;
        return place;
    }
    RECT TakeRight(int width, int gap) {
        if (width > Room()) return {};
        const RECT place = {right_ - width, kRowTop, right_, kRowBottom};
        right_ -= width + gap;
        return place;
    }

private:
    int left_;
    int right_;
};

}  // namespace

StripLayout StripLayout::For(int width, int timeWidth, int labelWidth) {
    StripLayout layout;
    Row row(width);
    layout.HasLabel = width >= kWide;
    layout.Seek = {kMargin, kSeekTop, std::max(width - kMargin, kMargin), kSeekBottom};
    // In the order in which they are missed.
    layout.Play = row.TakeLeft(kButtonWidth, 0);
    layout.Settings = row.TakeRight(2 * kPadding + kPictureSide + (layout.HasLabel ? kPadding + labelWidth : 0), kGap);
    layout.Previous = row.TakeLeft(kButtonWidth, 0);
    layout.Next = row.TakeLeft(kButtonWidth, kGap);
    if (IsRectEmpty(&layout.Next))
        layout.Previous = {};
    else
        std::swap(layout.Play, layout.Previous);
    layout.Time = row.TakeLeft(timeWidth, kGap);
    layout.Volume = row.TakeRight(width >= kWide ? kVolumeWidth : kNarrowVolumeWidth, kGap);
    if (row.Room() >= kLeastTitle) layout.Title = row.TakeLeft(row.Room(), 0);
    return layout;
}

RECT StripLayout::PlaceOf(StripPart part) const {
    switch (part) {
        case StripPart::kSeek:
            return Seek;
        case StripPart::kPrevious:
            return Previous;
        case StripPart::kPlay:
            return Play;
        case StripPart::kNext:
            return Next;
        case StripPart::kVolume:
            return Volume;
        case StripPart::kSettings:
            return Settings;
        case StripPart::kNone:
            break;
    }
    return {};
}

StripPart StripLayout::PartAt(POINT point) const {
    for (const StripPart part : {StripPart::kSeek, StripPart::kPrevious, StripPart::kPlay, StripPart::kNext,
                                 StripPart::kVolume, StripPart::kSettings}) {
        const RECT place = PlaceOf(part);
        if (PtInRect(&place, point)) return part;
    }
    return StripPart::kNone;
}

RECT StripLayout::VolumeSign() const {
    return {Volume.left, Volume.top, std::min(Volume.left + kVolumeSign, Volume.right), Volume.bottom};
}

RECT StripLayout::VolumeSlider() const {
    return {VolumeSign().right, Volume.top, Volume.right, Volume.bottom};
}

}  // namespace tdkplay
