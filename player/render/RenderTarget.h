// What a rendering writes to, as its name tells.
#pragma once

#include <optional>
#include <string>

namespace tdkplay {

struct RenderTarget {
    enum class Kind {
        kMp4,
        kMatroska,
        kY4m,
        kPictures,  // a folder of PNG files
    };
    Kind Form = Kind::kPictures;
    std::string Path;

    // By the end of the name: .mp4, .mkv, .y4m in any case, or a separator. A folder that exists needs none. Nothing
    // for other names.
    static std::optional<RenderTarget> FromPath(const std::string& path);
    // Made by the program ffmpeg, and may hold sound.
    bool IsEncoded() const { return Form == Kind::kMp4 || Form == Kind::kMatroska; }
};

}  // namespace tdkplay
