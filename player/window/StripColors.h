// The colours of the strip below the picture: dark and quiet, as what stands beside moving pictures should be.
#pragma once

#include <windows.h>

namespace tdkplay {

inline constexpr COLORREF kFaceColor = RGB(24, 25, 29);
inline constexpr COLORREF kEdgeColor = RGB(40, 42, 48);  // between picture and strip
inline constexpr COLORREF kHotColor = RGB(44, 47, 54);   // behind the button that the mouse is over
inline constexpr COLORREF kHeldColor = RGB(58, 62, 71);  // behind the one that is held down
inline constexpr COLORREF kLineColor = RGB(62, 66, 75);  // of a slider
inline constexpr COLORREF kAccentColor = RGB(88, 166, 230);
inline constexpr COLORREF kBrightColor = RGB(236, 238, 242);
inline constexpr COLORREF kTextColor = RGB(208, 211, 217);
inline constexpr COLORREF kDimColor = RGB(138, 143, 153);

}  // namespace tdkplay
