// Width and height of the picture in the player's window.
#pragma once

#include <optional>
#include <string>

namespace tdkplay {

inline constexpr int kSmallestSide = 16;  // pixels
inline constexpr int kLargestSide = 8192;

struct PictureSize {
    int Width = 640;  // pixels
    int Height = 480;

    // From "WIDTHxHEIGHT"; nothing if it isn't that. The bounds are not looked at.
    static std::optional<PictureSize> FromText(const std::string& text);
    std::string Text() const { return std::to_string(Width) + "x" + std::to_string(Height); }
    bool IsWithinBounds() const;
    bool operator==(const PictureSize&) const = default;
};

}  // namespace tdkplay
