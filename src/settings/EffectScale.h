// EffectScale: the arithmetic of one scale of an effect control, between values and pixels.
#pragma once

#include <cstdint>

namespace tdkviz {

// Where an arrow snaps, as a set.
enum EffectSnap : uint32_t {
    kSnapCentre = 1,  // draws a centre mark as well
    kSnapMinimum = 2,
    kSnapMaximum = 4,
};

// Distances are in pixels from the end of the scale that stands for Min: from the left of a horizontal
// scale, from the bottom of a vertical one. Max is above Min. Divisions truncate towards zero.
struct EffectScale {
    int32_t Span;  // pixels from end to end
    int32_t Min, Max;

    // Where the arrow of `value` stands.
    int32_t DistanceOf(int32_t value) const;
    // The value for a mouse at `distance`, snapped to what `snaps` names and within Min and Max.
    int32_t ValueAt(int32_t distance, uint32_t snaps) const;
    // Room for a mark for each value; otherwise the scale is dotted.
    bool HasMarkPerValue() const;
};

}  // namespace tdkviz
