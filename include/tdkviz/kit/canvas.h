// A picture to paint on, for one thread and the length of one Paint: hides pitch and orientation, clips everything,
// draws smooth strokes and lights. All pixels are worked out in integers, a few operations each.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

#include <tdkviz/kit/color.h>

namespace viz {

// Pixels from the top left corner; the middle of the first pixel is 0.5, 0.5.
struct Point {
    float X, Y;
};

// A crisp line of `width` pixels in a glow that reaches `glowRadius` pixels from its middle and has
// `glowStrength` (0 to 1) beside the line.
class Pen {
public:
    Pen(float width, float glowRadius = 0, float glowStrength = 0)
        : reach_(std::min(std::max(width / 2 + 0.5F, glowRadius), kLongestReach)) {
        const float solid = std::min(1.0F, width);
        const int end = static_cast<int>(reach_ * kSteps);
        for (int i = 0; i < end; ++i) {
            const float distance = static_cast<float>(i) / kSteps;
            const float line = std::clamp(width / 2 + 0.5F - distance, 0.0F, 1.0F) * solid;
            const float nearness = glowRadius > distance ? 1 - distance / glowRadius : 0;
            shares_[i] = ShareOf(std::max(line, nearness * nearness * glowStrength)) * kLanes;
        }
        for (int i = end; i < end + 2 * kSteps; ++i) shares_[i] = 0;
    }
    // Pixels from the middle to the end of all light.
    float Reach() const { return reach_; }
    // How much of the colour, of 256, at a distance in 1/8 pixel of at most a pixel beyond the reach: the same
    // number in four lanes of 16 bits.
    uint64_t LanesAt(int distance) const { return shares_[distance]; }
    uint32_t ShareAt(int distance) const { return static_cast<uint16_t>(shares_[distance]); }

    static constexpr int kSteps = 8;

private:
    static constexpr uint64_t kLanes = 0x0001000100010001;
    static constexpr float kLongestReach = 120;
    float reach_;
    std::array<uint64_t, static_cast<size_t>(kLongestReach + 2) * kSteps> shares_;
};

class Canvas {
public:
    // The arguments of Draw, for the length of that call.
    Canvas(void* pixels, int width, int height, int pitch) : width_(width), height_(height), stride_(pitch) {
        // With a negative pitch the first row in memory is the lowest on screen.
        top_ = static_cast<uint8_t*>(pixels) + (pitch < 0 ? (height - 1) * -stride_ : 0);
    }

    // In pixels. The size can change from frame to frame.
    int Width() const { return width_; }
    int Height() const { return height_; }
    // The shorter side: what is measured in it fits pictures of any form.
    float Smaller() const { return static_cast<float>(std::min(width_, height_)); }
    // The width of a fine line: pictures of any size look alike.
    float Unit() const { return std::max(1.0F, Smaller() / 240); }

    // Where a point lies that is given from the picture's middle, in units of `size` pixels.
    Point FromMiddle(Point point, float size) const {
        return {static_cast<float>(width_) / 2 + point.X * size, static_cast<float>(height_) / 2 + point.Y * size};
    }
    // The same in parts of the shorter side.
    Point FromMiddle(Point point) const { return FromMiddle(point, Smaller()); }

    // Row y from the top as 0x00RRGGBB words.
    Color* Row(int y) const { return reinterpret_cast<Color*>(top_ + y * stride_); }

    // Keeps `share`/256 of all brightness, less one: everything gets black in the end.
    void Dim(uint16_t share) const {
        for (int y = 0; y < height_; ++y) {
            auto* bytes = reinterpret_cast<uint8_t*>(Row(y));
            const int count = width_ * 4;
            for (int i = 0; i < count; ++i) {
                const auto kept = static_cast<uint16_t>(bytes[i] * share) >> 8;
                bytes[i] = static_cast<uint8_t>(kept - (kept > 0));
            }
        }
    }

    // Takes `less` off every byte: what the effects fade too slowly to end gets black.
    void Sink(uint8_t less) const {
        for (int y = 0; y < height_; ++y) {
            auto* bytes = reinterpret_cast<uint8_t*>(Row(y));
            const int count = width_ * 4;
            for (int i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(std::max(bytes[i], less) - less);
        }
    }

    // One colour everywhere.
    void Clear(Color color = 0) const {
        for (int y = 0; y < height_; ++y) std::fill_n(Row(y), width_, color);
    }

    // Whole pixels from `left` to before `right`.
    void FillRow(int y, int left, int right, Color color) const {
        ChangeRow(y, left, right, [color](Color& pixel) { pixel = color; });
    }

    // The same, but lifts pixels to its own brightness.
    void LiftRow(int y, int left, int right, Color color) const {
        ChangeRow(y, left, right, [color](Color& pixel) { Lift(pixel, color); });
    }

    // Calls `change` with each pixel from `left` to before `right` of the row, as far as it lies in the picture.
    template <typename Change>
    void ChangeRow(int y, int left, int right, Change change) const {
        if (y < 0 || y >= height_) return;
        Color* row = Row(y);
        for (int x = std::max(left, 0); x < std::min(right, width_); ++x) change(row[x]);
    }

    // A stroke with flat ends, each carried on by `overlap` pixels so that pieces of a curve join without a
    // gap. It lifts pixels to its own brightness; strokes that meet leave no beads.
    void Stroke(Point from, Point to, Color color, const Pen& pen, float overlap = 1) const {
        const float length = std::sqrt(Square(to.X - from.X) + Square(to.Y - from.Y));
        if (!(length < kTooFar)) return;
        const float ux = length > 0.001F ? (to.X - from.X) / length : 1;
        const float uy = length > 0.001F ? (to.Y - from.Y) / length : 0;
        const float reach = pen.Reach();
        const float rise = std::fabs(uy) * overlap + std::fabs(ux) * reach;
        const Slope along(ux), across(uy);
        const int end = ClampTo(std::max(from.Y, to.Y) + rise + 1, height_);
        const auto step = static_cast<int32_t>(uy * kOne);
        for (int y = ClampTo(std::min(from.Y, to.Y) - rise, height_); y < end; ++y) {
            const float py = static_cast<float>(y) + 0.5F - from.Y;
            float left = -kTooFar, right = kTooFar;
            along.Narrow(left, right, -overlap - py * uy, length + overlap - py * uy);
            across.Narrow(left, right, py * ux - reach, py * ux + reach);
            const int first = ClampTo(from.X + left + 0.5F, width_);
            const int last = ClampTo(from.X + right + 0.5F, width_);
            const float off = (static_cast<float>(first) + 0.5F - from.X) * uy - py * ux;
            StrokeRow(Row(y) + first, last - first, static_cast<int32_t>(off * kOne), step, color, pen);
        }
    }

    // A soft round light that adds to what is there: full in the middle, nothing at `radius`.
    void Light(Point centre, float radius, Color color) const { Disc(centre, radius, color, Add); }

    // The same, but lifts pixels to its own brightness: it can be repeated without growing.
    void Blot(Point centre, float radius, Color color) const { Disc(centre, radius, color, Lift); }

    // Adds, byte by byte, up to 255.
    static void Add(Color& pixel, Color color) {
        uint32_t redBlue = (pixel & 0xFF00FF) + (color & 0xFF00FF);
        uint32_t green = (pixel & 0xFF00) + (color & 0xFF00);
        redBlue |= (redBlue & 0x1000100) - ((redBlue & 0x1000100) >> 8);
        green |= (green & 0x10000) - ((green & 0x10000) >> 8);
        pixel = (redBlue & 0xFF00FF) | (green & 0xFF00);
    }

    // Makes each byte at least as bright as the colour's.
    static void Lift(Color& pixel, Color color) {
        pixel = Higher<0xFF00FF>(pixel, color) | Higher<0x00FF00>(pixel, color);
    }

    // Whole, and from 0 to `limit`.
    static int ClampTo(float value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0F, static_cast<float>(limit)));
    }

private:
    static constexpr float kTooFar = 30000;
    static constexpr float kOne = 65536;
    static constexpr int kToPenSteps = 13;  // from 1/65536 of a pixel to 1/8

    // Limits a range of x to where low <= x * slope <= high.
    struct Slope {
        explicit Slope(float slope) : Flat(std::fabs(slope) < 1e-5F), Inverse(Flat ? 0 : 1 / slope) {}
        void Narrow(float& left, float& right, float low, float high) const {
            if (Flat) {
                if (low > 0 || high < 0) right = left;
                return;
            }
            const float a = low * Inverse;
            const float b = high * Inverse;
            left = std::max(left, std::min(a, b));
            right = std::min(right, std::max(a, b));
        }
        bool Flat;
        float Inverse;
    };

    template <typename Put>
    void Disc(Point centre, float radius, Color color, Put put) const {
        if (!(radius > 0.01F && radius < kTooFar)) return;
        const float soften = std::min(1.0F, radius * radius);  // smaller than a pixel is fainter
        radius = std::max(radius, 1.0F);
        const float scale = 1 / (radius * radius);
        const float full = soften * 256;
        const int endY = ClampTo(centre.Y + radius + 0.5F, height_);
        for (int y = ClampTo(centre.Y - radius, height_); y < endY; ++y) {
            const float dy = static_cast<float>(y) + 0.5F - centre.Y;
            const float wide = std::sqrt(std::max(0.0F, radius * radius - dy * dy));
            const int first = ClampTo(centre.X - wide + 0.5F, width_);
            const int count = ClampTo(centre.X + wide + 0.5F, width_) - first;
            const float left = static_cast<float>(first) + 0.5F - centre.X;
            Color* row = Row(y) + first;
            for (int i = 0; i < count; ++i) {
                const float dx = left + static_cast<float>(i);
                const float nearness = 1 - (dx * dx + dy * dy) * scale;
                put(row[i], Shade(color, static_cast<uint32_t>(static_cast<int>(nearness * nearness * full))));
            }
        }
    }

    using Bytes = uint8_t __attribute__((vector_size(16)));
    using Words = uint16_t __attribute__((vector_size(16)));

    // Two pixels of a colour given as eight words, by their shares.
    static Words ShadePair(Words color, uint64_t first, uint64_t second) {
        const uint64_t shares[2] = {first, second};
        Words words;
        std::memcpy(&words, shares, sizeof words);
        return color * words >> 8;
    }

    // Pixels at distances that change by `step`, in 1/65536 of a pixel, from the middle of the stroke.
    static void StrokeRow(Color* pixels, int count, int32_t off, int32_t step, Color color, const Pen& pen) {
        const auto next = [&] {
            const int distance = std::abs(off) >> kToPenSteps;
            off += step;
            return distance;
        };
        const auto blue = static_cast<uint16_t>(color & 255), green = static_cast<uint16_t>(color >> 8 & 255),
                   red = static_cast<uint16_t>(color >> 16 & 255);
        const Words wide = {blue, green, red, 0, blue, green, red, 0};
        int i = 0;
        for (; i + 4 <= count; i += 4) {
            const int a = next(), b = next(), c = next(), d = next();
            const Words left = ShadePair(wide, pen.LanesAt(a), pen.LanesAt(b));
            const Words right = ShadePair(wide, pen.LanesAt(c), pen.LanesAt(d));
            const Bytes light = __builtin_shufflevector(reinterpret_cast<Bytes>(left), reinterpret_cast<Bytes>(right),
                                                        0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
            Bytes place;
            std::memcpy(&place, pixels + i, sizeof place);
            place = place > light ? place : light;
            std::memcpy(pixels + i, &place, sizeof place);
        }
        for (; i < count; ++i) Lift(pixels[i], Shade(color, pen.ShareAt(next())));
    }

    // The higher of each of the bytes in `lanes`, which have a free bit above them.
    template <uint32_t lanes>
    static uint32_t Higher(uint32_t a, uint32_t b) {
        constexpr uint32_t kAbove = (lanes << 1) & ~lanes & 0x1010100;
        a &= lanes;
        b &= lanes;
        const uint32_t notBelow = ((a | kAbove) - b) & kAbove;
        return b ^ ((a ^ b) & (notBelow - (notBelow >> 8)));
    }

    static float Square(float value) { return value * value; }

    uint8_t* top_;
    int width_;
    int height_;
    int64_t stride_;
};

}  // namespace viz
