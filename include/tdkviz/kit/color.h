// Colours as 0x00RRGGBB words, chosen in OKLab: equal steps look equal, and colours of one lightness look
// equally bright (Björn Ottosson, "A perceptual color space for image processing").
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>

namespace viz {

using Color = uint32_t;

// A whole turn, in radians.
inline constexpr float kTurn = 6.2831853F;

// `share`/256 of a colour; share is 0 to 256.
inline Color Shade(Color color, uint32_t share) {
    return ((color & 0xFF00FF) * share >> 8 & 0xFF00FF) | ((color & 0xFF00) * share >> 8 & 0xFF00);
}

// A part from 0 to 1 as a share of 256.
inline uint32_t ShareOf(float part) {
    return static_cast<uint32_t>(std::clamp(part, 0.0F, 1.0F) * 256);
}

// The colour at a part of its brightness, from 0 to 1.
inline Color Dimmed(Color color, float part) {
    return Shade(color, ShareOf(part));
}

// From one colour at 0 to the other at 1, byte by byte: for neighbours and for speed. A Palette takes even steps.
inline Color Mix(Color from, Color to, float part) {
    const uint32_t share = ShareOf(part);
    return Shade(from, 256 - share) + Shade(to, share);
}

// A colour in OKLab: lightness from 0 to 1, and how far it is from grey towards red and towards yellow, some -0.4 to
// 0.4.
struct Lab {
    float L, A, B;

    static Lab FromColor(Color color) {
        const auto linear = [&](int shift) {
            const float part = static_cast<float>(color >> shift & 255) / 255;
            return part <= 0.04045F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
        };
        const float r = linear(16), g = linear(8), b = linear(0);
        const float l = std::cbrt(0.4122215F * r + 0.5363325F * g + 0.0514460F * b);
        const float m = std::cbrt(0.2119035F * r + 0.6806995F * g + 0.1073970F * b);
        const float s = std::cbrt(0.0883025F * r + 0.2817188F * g + 0.6299787F * b);
        return {0.2104543F * l + 0.7936178F * m - 0.0040720F * s, 1.9779985F * l - 2.4285922F * m + 0.4505937F * s,
                0.0259040F * l + 0.7827718F * m - 0.8086758F * s};
    }
    // `chroma`: the distance from grey, 0 to some 0.3. Hue from 0 to 1, once round from pink over yellow, green and
    // blue.
    static Lab FromHue(float lightness, float chroma, float hue) {
        return {lightness, chroma * std::cos(hue * kTurn), chroma * std::sin(hue * kTurn)};
    }
    // What no screen can show becomes the nearest in each of red, green and blue.
    Color ToColor() const {
        const auto cube = [](float value) { return value * value * value; };
        const float l = cube(L + 0.3963378F * A + 0.2158038F * B);
        const float m = cube(L - 0.1055613F * A - 0.0638542F * B);
        const float s = cube(L - 0.0894842F * A - 1.2914855F * B);
        const auto byte = [](float linear) {
            const float part = linear <= 0.0031308F ? linear * 12.92F : 1.055F * std::pow(linear, 1 / 2.4F) - 0.055F;
            return static_cast<Color>(std::clamp(part, 0.0F, 1.0F) * 255 + 0.5F);
        };
        return byte(4.0767417F * l - 3.3077116F * m + 0.2309699F * s) << 16 |
               byte(-1.2684380F * l + 2.6097574F * m - 0.3413194F * s) << 8 |
               byte(-0.0041961F * l - 0.7034186F * m + 1.7076147F * s);
    }
};

// 256 colours, worked out once. Static ones cost nothing per frame.
class Palette {
public:
    // Even steps through these colours, of which there is at least one.
    Palette(std::initializer_list<Color> stops) {
        const auto last = static_cast<float>(stops.size() - 1);
        for (int i = 0; i < kSize; ++i) {
            const float place = last * static_cast<float>(i) / (kSize - 1);
            const auto from = static_cast<size_t>(place);
            const Lab a = Lab::FromColor(stops.begin()[from]);
            const Lab b = Lab::FromColor(stops.begin()[std::min(from + 1, stops.size() - 1)]);
            const float part = place - static_cast<float>(from);
            colors_[i] = Lab{a.L + (b.L - a.L) * part, a.A + (b.A - a.A) * part, a.B + (b.B - a.B) * part}.ToColor();
        }
    }
    // The circle of hues at one lightness.
    static Palette Wheel(float lightness, float chroma) {
        Palette wheel;
        for (int i = 0; i < kSize; ++i)
            wheel.colors_[i] = Lab::FromHue(lightness, chroma, static_cast<float>(i) / kSize).ToColor();
        return wheel;
    }

    // Taken modulo 256.
    Color operator[](size_t index) const { return colors_[index & (kSize - 1)]; }
    // From the first colour at 0 to the last at 1.
    Color At(float place) const {
        return colors_[static_cast<size_t>(std::clamp(place, 0.0F, 1.0F) * (kSize - 1) + 0.5F)];
    }
    // Round and round: 0 and 1 are the same.
    Color Around(float place) const { return colors_[static_cast<size_t>((place - std::floor(place)) * kSize) & 255]; }

private:
    Palette() = default;
    static constexpr int kSize = 256;
    std::array<Color, kSize> colors_{};
};

}  // namespace viz
