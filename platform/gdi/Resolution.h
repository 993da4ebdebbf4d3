// Pixels per inch of the system: what sizes in points and the parts of controls are counted with.
#pragma once

namespace tdkp {

// TDKVIZ_DPI, 96 if that isn't set; within 48 and 480.
int PixelsPerInch();
// Pixels for a length that is `pixels` at 96 to the inch; at least 1.
int ScaledPixels(int pixels);

}  // namespace tdkp
