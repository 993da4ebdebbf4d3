#include "companions/qzcolor/Image.h"

#include <algorithm>
#include <cstdlib>

namespace qzcolor {

namespace {

// Cuts a range to 0 up to `limit`.
void ClipRange(int32_t& start, int32_t& length, int32_t limit) {
    const int64_t end = std::min(int64_t{start} + length, int64_t{limit});
    start = std::max(start, 0);
    length = static_cast<int32_t>(std::max(end - start, int64_t{0}));
}

Rows RowsOfPlane(uint8_t* plane, ptrdiff_t pitch, int32_t height, bool bottomUp) {
    if (!bottomUp) return {plane, pitch, 0, 0};
    return {plane + (height - 1) * pitch, -pitch, 0, 0};
}

int64_t RowBytes(uint32_t format, int32_t width) {
    if (format == FormatI420 || format == FormatYV12) return width;
    if (format == FormatYUY2 || format == FormatUYVY) return int64_t{2} * width;
    return int64_t{RgbBytesPerPixel(format)} * width;
}

}  // namespace

bool Image::Clip() {
    ClipRange(x, rectWidth, width);
    ClipRange(y, rectHeight, height);
    return rectWidth > 0 && rectHeight > 0;
}

Rows Image::Pixels(int32_t bytesPerPixel) const {
    Rows rows = RowsOfPlane(pixels, std::abs(ptrdiff_t{pitch}), height, pitch < 0);
    rows.first += y * rows.step + ptrdiff_t{x} * bytesPerPixel;
    rows.width = rectWidth;
    rows.height = rectHeight;
    return rows;
}

Rows Image::HalfPlane(int index) const {
    const ptrdiff_t lumaPitch = std::abs(ptrdiff_t{pitch}), halfPitch = lumaPitch / 2;
    uint8_t* plane = pixels + lumaPitch * height + index * halfPitch * (height / 2);
    Rows rows = RowsOfPlane(plane, halfPitch, height / 2, pitch < 0);
    rows.first += y / 2 * rows.step + x / 2;
    rows.width = rectWidth / 2;
    rows.height = rectHeight / 2;
    return rows;
}

int32_t RgbBytesPerPixel(uint32_t format) {
    switch (format) {
        case FormatRGB32:
        case FormatARGB:
        case FormatBGR32:
            return 4;
        case FormatRGB24:
        case FormatBGR24:
            return 3;
        case FormatRGB565:
        case FormatRGB555:
        case FormatBGR565:
        case FormatBGR555:
            return 2;
        case FormatRGB8:
            return 1;
        default:
            return 0;
    }
}

bool IsSound(uint32_t format, const Image& image) {
    return image.pixels && RowBytes(format, image.width) <= std::abs(int64_t{image.pitch}) &&
           image.rectWidth <= kMaxSide && image.rectHeight <= kMaxSide;
}

}  // namespace qzcolor
