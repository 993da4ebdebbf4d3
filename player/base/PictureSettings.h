// What the listener can say of the pictures.
#pragma once

#include <cstdint>
#include <optional>

namespace tdkplay {

// What changes the picture; absent: as the user has set it.
struct PictureSettings {
    std::optional<uint32_t> FrameRate;  // 10 to 30 a second
    std::optional<bool> Effects;
    std::optional<bool> Randomize;
};

}  // namespace tdkplay
