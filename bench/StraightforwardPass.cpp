#include "bench/StraightforwardPass.h"

namespace {

uint32_t Part(uint32_t pixel, int bits) {
    return (pixel >> bits) & (0x01010101u * (255u >> bits));
}

uint32_t Average(uint32_t a, uint32_t b, uint32_t c) {
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t sum = ((a >> shift) & 255) + ((b >> shift) & 255) + ((c >> shift) & 255) + 3;
        result |= ((sum * 21845) >> 16) << shift;
    }
    return result;
}

uint32_t Cross(const uint32_t* c, int width, int bits) {
    return Part(c[-width], bits) + Part(c[width], bits) + Part(c[1], bits) + Part(c[-1], bits);
}

uint32_t Corners(const uint32_t* c, int width, int bits) {
    return Part(c[-width - 1], bits) + Part(c[-width + 1], bits) + Part(c[width - 1], bits) + Part(c[width + 1], bits);
}

uint32_t Blur(const uint32_t* c, int width, int kernel) {
    switch (kernel) {
        case 0:
        case 1:
            return *c;
        case 2:
            return Part(*c, 1) + Part(*c, 2) + Part(*c, 3) + (*c & 0x02020202) + (*c & 0x01010101) + Cross(c, width, 5);
        case 3:
            return Part(*c, 1) + Part(*c, 2) + (*c & 0x01010101) + Cross(c, width, 4);
        case 4:
            return Part(*c, 1) + (*c & 0x01010101) + Cross(c, width, 3);
        case 5:
            return Average(c[-width - 1], *c, c[width + 1]);
        case 6:
            return Average(c[-width + 1], *c, c[width - 1]);
        case 7:
            return Average(c[-width], *c, c[width]);
        case 8:
            return Average(c[-1], *c, c[1]);
        case 9:
            return Part(*c, 1) + (*c & 0x01010101) + Cross(c, width, 4) + Corners(c, width, 4);
        default:
            return Cross(c, width, 3) + Corners(c, width, 3);
    }
}

uint32_t Fade(uint32_t pixel, uint32_t color, int weight) {
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int byte = static_cast<int>((pixel >> shift) & 255), tint = static_cast<int>((color >> shift) & 255);
        result |= static_cast<uint32_t>((tint * weight + byte * (256 - weight) + 128) >> 8) << shift;
    }
    return result;
}

int Limit(int value, int low, int high) {
    return value < low ? low : value > high ? high : value;
}

}  // namespace

void StraightforwardPass(const uint32_t* source, uint32_t* destination, int width, int height, uint32_t frame,
                         const StraightforwardValues& values) {
    const int jitterX = static_cast<int>((frame * 49) & 255), jitterY = static_cast<int>((frame * 68) & 255);
    for (int y = 0; y < height; ++y) {
        const int v = (height >> 1) - y;
        const int rowX = v * values.rotate + jitterX + values.slideX * 256;
        const int rowY = v * values.zoomY + jitterY + values.slideY * 256;
        for (int x = 0; x < width; ++x) {
            const int u = (width >> 1) - x;
            int sourceX = x + ((u * values.zoomX + rowX) >> 8);
            int sourceY = y + ((-u * values.rotate + rowY) >> 8);
            if (values.clamp) {
                sourceX = Limit(sourceX, 1, width - 2);
                sourceY = Limit(sourceY, 1, height - 2);
            } else if (sourceX < 1 || sourceX > width - 2 || sourceY < 1 || sourceY > height - 2) {
                *destination++ = values.fadeColor;
                continue;
            }
            const uint32_t pixel = Blur(source + sourceY * width + sourceX, width, values.blur);
            *destination++ = values.fade != 0 ? Fade(pixel, values.fadeColor, values.fade) : pixel;
        }
    }
}
