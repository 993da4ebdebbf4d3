#include "player/base/PictureSize.h"

#include <algorithm>
#include <cstdio>

namespace tdkplay {

std::optional<PictureSize> PictureSize::FromText(const std::string& text) {
    PictureSize size;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%5dx%5d%c", &size.Width, &size.Height, &rest) != 2) return std::nullopt;
    return size;
}

bool PictureSize::IsWithinBounds() const {
    return std::min(Width, Height) >= kSmallestSide && std::max(Width, Height) <= kLargestSide;
}

}  // namespace tdkplay
