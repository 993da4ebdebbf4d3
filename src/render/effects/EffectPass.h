// EffectPass: all terms of one effect pass, worked out once per frame and shared by every implementation.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tdkviz {

inline constexpr int32_t kOffsetUnit = 256;  // displacements are in 1/256 of a pixel
inline constexpr int32_t kOffsetBits = 8;

// 32-bit arithmetic that wraps around, and the arithmetic shift.
constexpr int32_t WrapAdd(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t WrapMul(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
constexpr int32_t WholePixels(int32_t offset) {
    return offset >> kOffsetBits;
}

// Blur kernels, as the tables of both paths number them.
inline constexpr int kKernelCount = 11;
inline constexpr int kLastKernel = kKernelCount - 1;
constexpr int KernelOf(int32_t blurAmount) {
    return blurAmount < 0 || blurAmount > kLastKernel ? kLastKernel : blurAmount;
}

struct EffectPass {
    const uint8_t* source;
    uint8_t* destination;                          // packed
    int32_t width, height;                         // pixels, at least 1
    int32_t bytesPerPixel;                         // at least 1
    ptrdiff_t sourcePitch;                         // bytes
    int32_t zoomX, zoomY, rotate, slideX, slideY;  // active values x 256, wrapped
    int32_t jitterX, jitterY;                      // 0 to 255
    bool clamp;
    int kernel;  // 0 to kLastKernel
    uint32_t fadeColor;
    int32_t fade;  // weight of fadeColor, 1/256; any number

    // Weights outside of 0 to 256 don't blend: their bytes overflow into each other in packed arithmetic.
    bool FadeIsBlend() const { return fade >= 0 && fade <= kOffsetUnit; }
    // True if no 32-bit product or sum of the coordinates wraps around, so that they are linear in x.
    bool IsLinear() const;
    bool HasInnerPixels() const { return width >= 3 && height >= 3; }
};

using EffectPassFunction = void (*)(const EffectPass&);

// Source coordinates along one row, exact for any values: row terms once, two accumulators a column.
class RowWalk {
public:
    RowWalk(const EffectPass& pass, int32_t y)
        : pass_(pass),
          y_(y),
          zoom_(WrapMul(pass.width >> 1, pass.zoomX)),
          turn_(WrapMul(-(pass.width >> 1), pass.rotate)) {
        const int32_t v = (pass.height >> 1) - y;
        rowX_ = WrapAdd(WrapAdd(WholePixels(WrapMul(v, pass.rotate)), pass.slideX), pass.jitterX);
        rowY_ = WrapAdd(WrapAdd(WholePixels(WrapMul(v, pass.zoomY)), pass.slideY), pass.jitterY);
    }
    int32_t X() const { return WrapAdd(x_, WholePixels(WrapAdd(WholePixels(zoom_), rowX_))); }
    int32_t Y() const { return WrapAdd(y_, WholePixels(WrapAdd(WholePixels(turn_), rowY_))); }
    void Next() {
        ++x_;
        zoom_ = WrapAdd(zoom_, WrapMul(-1, pass_.zoomX));
        turn_ = WrapAdd(turn_, pass_.rotate);
    }

private:
    const EffectPass& pass_;
    int32_t x_ = 0;
    const int32_t y_;
    int32_t zoom_, turn_;
    int32_t rowX_, rowY_;
};

// The source coordinates that have all eight neighbours; those are the ones that show a source pixel.
struct SourceRange {
    int32_t lowX, highX, lowY, highY;

    explicit SourceRange(const EffectPass& pass) : lowX(1), highX(pass.width - 2), lowY(1), highY(pass.height - 2) {}
    // For the clamping rule: an axis without inner pixels has its outer ones.
    static SourceRange ForClamp(const EffectPass& pass) {
        SourceRange range(pass);
        if (pass.width < 3) range.lowX = 0, range.highX = pass.width - 1;
        if (pass.height < 3) range.lowY = 0, range.highY = pass.height - 1;
        return range;
    }
    bool Holds(int32_t x, int32_t y) const { return x >= lowX && x <= highX && y >= lowY && y <= highY; }
    int32_t LimitX(int32_t x) const { return x < lowX ? lowX : x > highX ? highX : x; }
    int32_t LimitY(int32_t y) const { return y < lowY ? lowY : y > highY ? highY : y; }
};

// Reads the neighbours of a source pixel in place. For pixels within SourceRange.
struct InnerReader {
    const uint8_t* centre;
    ptrdiff_t columnPitch, rowPitch;

    const uint8_t* operator()(int dx, int dy) const { return centre + dx * columnPitch + dy * rowPitch; }
};

// The same for any pixel of any frame: neighbours that don't exist are the nearest that do.
struct EdgeReader {
    const EffectPass& pass;
    int32_t x, y;

    const uint8_t* operator()(int dx, int dy) const {
        const auto limit = [](int32_t at, int32_t size) { return at < 0 ? 0 : at >= size ? size - 1 : at; };
        return pass.source + limit(y + dy, pass.height) * pass.sourcePitch +
               static_cast<ptrdiff_t>(limit(x + dx, pass.width)) * pass.bytesPerPixel;
    }
};

}  // namespace tdkviz
