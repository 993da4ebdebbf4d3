// A picture to paint on: hides pitch and orientation, draws smooth lines and rectangles.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace viz {

// Parts from 0 to 1.
struct Color {
    float R, G, B;
};

inline Color Scale(Color color, float factor) {
    return {color.R * factor, color.G * factor, color.B * factor};
}

inline Color Mix(Color from, Color to, float share) {
    return {from.R + (to.R - from.R) * share, from.G + (to.G - from.G) * share, from.B + (to.B - from.B) * share};
}

// The colour circle from 0 to 1: red, yellow, green, cyan, blue, violet. White at saturation 0.
inline Color FromHue(float hue, float saturation, float brightness) {
    const auto part = [&](float offset) {
        const float turn = (hue + offset - std::floor(hue + offset)) * 6;
        const float pure = std::clamp(std::fabs(turn - 3) - 1, 0.0F, 1.0F);
        return brightness * (1 - saturation + saturation * pure);
    };
    return {part(0), part(2.0F / 3), part(1.0F / 3)};
}

// Pixels from the top left corner; the middle of the first pixel is 0.5, 0.5.
struct Point {
    float X, Y;
};

// A crisp line of Width pixels in a glow that reaches GlowRadius pixels from its middle.
struct Pen {
    float Width;
    float GlowRadius;
    float GlowStrength;  // 0 to 1, beside the line
};

class Canvas {
public:
    // The arguments of Draw, for the length of that call.
    Canvas(void* pixels, int width, int height, int pitch)
        : lowest_(static_cast<uint8_t*>(pixels)), width_(width), height_(height), pitch_(pitch) {}

    int Width() const { return width_; }
    int Height() const { return height_; }

    // Row y from the top as 0x00RRGGBB words.
    uint32_t* Row(int y) const {
        const int inMemory = pitch_ < 0 ? height_ - 1 - y : y;
        return reinterpret_cast<uint32_t*>(lowest_ + static_cast<int64_t>(inMemory) * std::abs(pitch_));
    }

    // Keeps `share`/256 of all brightness, then takes away `less` (0 to 255) more: everything gets black in
    // the end, where a share alone leaves a grey that never goes.
    void Dim(uint32_t share, uint32_t less) const {
        for (int y = 0; y < height_; ++y) {
            uint32_t* row = Row(y);
            for (int x = 0; x < width_; ++x) {
                const uint32_t redBlue = Less((row[x] & kRedBlue) * share >> 8 & kRedBlue, less);
                const uint32_t green = Less((row[x] >> 8 & 0xFF) * share >> 8, less);
                row[x] = redBlue | green << 8;
            }
        }
    }

    // Covers a part (0 to 1) of a pixel with a colour.
    static void Cover(uint32_t& pixel, Color color, float part) {
        const auto mix = [&](int shift, float to) {
            const auto from = static_cast<float>(pixel >> shift & 255);
            const float value = from + (std::clamp(to, 0.0F, 1.0F) * 255 - from) * part;
            return static_cast<uint32_t>(value + 0.5F) << shift;
        };
        pixel = mix(16, color.R) | mix(8, color.G) | mix(0, color.B);
    }

    // Makes a pixel at least as bright as this part (0 to 1) of a colour: strokes that meet leave no beads.
    static void Light(uint32_t& pixel, Color color, float part) { Lift(pixel, Bytes(color), part); }

    // A rectangle with smooth edges whose colour at height y is colorAt(y).
    template <typename ColorAt>
    void Fill(float left, float top, float right, float bottom, ColorAt colorAt) const {
        left = std::max(left, 0.0F);
        top = std::max(top, 0.0F);
        const int endX = std::min(width_, static_cast<int>(std::ceil(right)));
        const int endY = std::min(height_, static_cast<int>(std::ceil(bottom)));
        for (int y = static_cast<int>(top); y < endY; ++y) {
            const float high = std::min<float>(bottom, y + 1.0F) - std::max<float>(top, static_cast<float>(y));
            const Color color = colorAt(y + 0.5F);
            uint32_t* row = Row(y);
            for (int x = static_cast<int>(left); x < endX; ++x) {
                const float wide = std::min<float>(right, x + 1.0F) - std::max<float>(left, static_cast<float>(x));
                if (high > 0 && wide > 0) Cover(row[x], color, high * wide);
            }
        }
    }

    // Lights the columns between a line, which goes to the right, and a level one at height `rest`: full at
    // the line, nothing at the other.
    void Veil(Point from, Point to, float rest, Color color) const {
        for (int x = ClampTo(std::round(from.X), width_); x < ClampTo(std::round(to.X), width_); ++x) {
            const float y = from.Y + (to.Y - from.Y) * std::clamp((x + 0.5F - from.X) / (to.X - from.X), 0.0F, 1.0F);
            const float depth = std::fabs(y - rest);
            const int end = ClampTo(std::max(y, rest), height_);
            for (int row = ClampTo(std::min(y, rest), height_); row < end; ++row) {
                Light(Row(row)[x], color, std::clamp(std::fabs(row + 0.5F - rest) / depth, 0.0F, 1.0F));
            }
        }
    }

    // A straight stroke with round ends.
    void Stroke(Point from, Point to, Color color, const Pen& pen) const {
        const float reach = std::max(pen.Width / 2 + 0.5F, pen.GlowRadius);
        const float dx = to.X - from.X;
        const float dy = to.Y - from.Y;
        const float square = dx * dx + dy * dy;
        const uint32_t bytes = Bytes(color);
        const float slant = std::sqrt(square) / std::max(std::fabs(dy), 0.01F);
        const int firstY = ClampTo(std::min(from.Y, to.Y) - reach, height_);
        const int endY = ClampTo(std::max(from.Y, to.Y) + reach + 1, height_);
        for (int y = firstY; y < endY; ++y) {
            const float centreY = y + 0.5F;
            // Of the row, only what lies within reach of the line.
            float left = std::min(from.X, to.X);
            float right = std::max(from.X, to.X);
            if (std::fabs(dy) > 0.01F) {
                const float cross = from.X + (centreY - from.Y) / dy * dx;
                left = std::max(left, cross - reach * slant);
                right = std::min(right, cross + reach * slant);
            }
            const int firstX = ClampTo(left - reach, width_);
            const int endX = ClampTo(right + reach + 1, width_);
            uint32_t* row = Row(y);
            for (int x = firstX; x < endX; ++x) {
                const float px = x + 0.5F - from.X;
                const float py = centreY - from.Y;
                const float along = square > 0 ? std::clamp((px * dx + py * dy) / square, 0.0F, 1.0F) : 0.0F;
                const float offX = px - along * dx;
                const float offY = py - along * dy;
                const float distance = offX * offX + offY * offY;
                if (distance < reach * reach) Lift(row[x], bytes, PartOf(pen, std::sqrt(distance)));
            }
        }
    }

private:
    static constexpr uint32_t kRedBlue = 0xFF00FF;

    // Two bytes in lanes of 16 bits, each less an amount but not below 0.
    static uint32_t Less(uint32_t lanes, uint32_t amount) {
        const uint32_t rest = (lanes | 0x01000100) - amount * 0x00010001;
        return rest & (rest >> 8 & 0x00010001) * 0xFF;
    }
    static uint32_t Bytes(Color color) {
        uint32_t pixel = 0;
        Cover(pixel, color, 1);
        return pixel;
    }
    static void Lift(uint32_t& pixel, uint32_t color, float part) {
        const auto share = static_cast<uint32_t>(part * 256);
        const uint32_t redBlue = (color & kRedBlue) * share >> 8 & kRedBlue;
        const uint32_t green = (color & 0xFF00) * share >> 8 & 0xFF00;
        pixel = std::max(pixel & 0xFF0000, redBlue & 0xFF0000) | std::max(pixel & 0xFF00, green) |
                std::max(pixel & 0xFF, redBlue & 0xFF);
    }
    static int ClampTo(float value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0F, static_cast<float>(limit)));
    }
    static float PartOf(const Pen& pen, float distance) {
        const float line = std::clamp(pen.Width / 2 + 0.5F - distance, 0.0F, 1.0F);
        const float nearness = std::max(0.0F, 1 - distance / std::max(pen.GlowRadius, 0.01F));
        return std::max(line * std::min(1.0F, pen.Width), nearness * nearness * pen.GlowStrength);
    }

    uint8_t* lowest_;
    int width_;
    int height_;
    int pitch_;
};

}  // namespace viz
