#include "player/window/StripFace.h"

#include <algorithm>

#include "player/window/StripColors.h"
#include "player/window/StripIcons.h"

namespace tdkplay {
namespace {

constexpr int kCorner = 5;
constexpr int kDetailGap = 10;  // between title and detail

}  // namespace

void StripFace::Paint(Canvas& canvas, const StripLayout& layout) const {
    canvas.Fill({0, 0, canvas.Width(), canvas.Height()}, kFaceColor);
    canvas.Fill({0, 0, canvas.Width(), 1}, kEdgeColor);
    Seek.Paint(canvas, IsHot(StripPart::kSeek) && State.Length > 0.0);
    for (const StripPart part : {StripPart::kPrevious, StripPart::kPlay, StripPart::kNext, StripPart::kSettings})
        PaintButton(canvas, layout, part);
    PaintStepSign(canvas, layout.Previous, kTextColor, -1);
    PaintStepSign(canvas, layout.Next, kTextColor, 1);
    if (State.IsPlaying)
        PaintPauseSign(canvas, layout.Play, kBrightColor);
    else
        PaintPlaySign(canvas, layout.Play, kBrightColor);
    if (!IsRectEmpty(&layout.Time)) canvas.Text(Time, layout.Time, kDimColor);
    if (!IsRectEmpty(&layout.Title)) PaintTitle(canvas, layout.Title);
    if (!IsRectEmpty(&layout.Volume)) {
        PaintVolumeSign(canvas, layout.VolumeSign(), kDimColor, State.Volume);
        Volume.Paint(canvas, IsHot(StripPart::kVolume));
    }
    PaintSettings(canvas, layout);
}

void StripFace::PaintButton(Canvas& canvas, const StripLayout& layout, StripPart part) const {
    const bool isDown = (Held == part && Hot == part) || (part == StripPart::kSettings && IsChecked);
    if (isDown || IsHot(part)) canvas.FillRounded(layout.PlaceOf(part), kCorner, isDown ? kHeldColor : kHotColor);
}

void StripFace::PaintSettings(Canvas& canvas, const StripLayout& layout) const {
    RECT place = layout.Settings;
    if (IsRectEmpty(&place)) return;
    place.left += StripLayout::kPadding;
    if (Picture) {
        constexpr int kSide = StripLayout::kPictureSide;
        canvas.Picture(Picture, place.left, (place.top + place.bottom - kSide) / 2);
        place.left += kSide + StripLayout::kPadding;
    }
    if (layout.HasLabel) canvas.Text(Label, place, kTextColor);
}

void StripFace::PaintTitle(Canvas& canvas, const RECT& place) const {
    if (!Notice.empty()) return canvas.Text(Notice, place, kTextColor);
    canvas.Text(State.Title, place, kTextColor);
    const int width = canvas.TextWidth(State.Title) + kDetailGap;
    if (width + canvas.TextWidth(State.Detail) > place.right - place.left) return;
    canvas.Text(State.Detail, {place.left + width, place.top, place.right, place.bottom}, kDimColor);
}

}  // namespace tdkplay
