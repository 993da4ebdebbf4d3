// What the add-on asks of a colour converter library: a companion, looked for among the codecs. [any]
#pragma once

#include <stdint.h>

// Pixel formats. The numbers are shared with the library; they never change.
enum FormatId : uint32_t {
    FormatI420 = 0,
    FormatYV12 = 1,
    FormatYVU9 = 2,
    FormatYUY2 = 3,
    FormatUYVY = 4,
    FormatRGB32 = 5,  // all frames: 0x00RRGGBB words
    FormatRGB24 = 6,
    FormatRGB565 = 7,
    FormatRGB555 = 8,
    FormatRGB8 = 9,
    FormatZVQN = 10,
    FormatARGB = 11,
    FormatYUVA = 12,
    FormatNone = 13,  // what nothing matches; no bitmap can be made for it, nor for ids above 22
    FormatBGR32 = 14,
    FormatBGR24 = 15,
    FormatBGR565 = 16,
    FormatBGR555 = 17,
    FormatMC12 = 18,
    FormatMCAM = 19,
    FormatMCS3 = 20,
    FormatIGOR = 21,
    FormatDVPF = 22,
};
inline constexpr uint32_t kFormatCount = 23;

// Takes a picture of one format and size to another, scaling as needed. The pixels are the first byte in memory
// of an image; pitches are signed bytes from one row to the next, and with a negative one the rows lie bottom-up:
// the lowest row of the picture is the first in memory. Rectangles count from the picture's top left corner and
// are clipped to their images. The result is not looked at.
using ColorConverterFunction = int32_t (*)(void* destination, int32_t destinationWidth, int32_t destinationHeight,
                                           int32_t destinationPitch, int32_t destinationX, int32_t destinationY,
                                           int32_t destinationRectWidth, int32_t destinationRectHeight,
                                           const void* source, int32_t sourceWidth, int32_t sourceHeight,
                                           int32_t sourcePitch, int32_t sourceX, int32_t sourceY,
                                           int32_t sourceRectWidth, int32_t sourceRectHeight);

// The exports that are called. The library's other exports are its own business.
using InitColorConverterFunction = int32_t (*)();
// Equal ids for scaling alone; null if there is no such converter. Good as long as the library stays loaded. There
// is none to FormatRGB8 as long as the library has no palette, and the add-on sets none: on a screen with a palette
// views are black, and their surfaces have the format of the frames.
using GetColorConverterFunction = ColorConverterFunction (*)(uint32_t from, uint32_t to);
