#include "player/render/RenderTarget.h"

#include <strings.h>

#include <filesystem>

namespace tdkplay {

std::optional<RenderTarget> RenderTarget::FromPath(const std::string& path) {
    std::error_code ignored;
    if (path.empty()) return std::nullopt;
    if (path.back() == '/' || std::filesystem::is_directory(path, ignored)) return RenderTarget{Kind::kPictures, path};
    const std::string ending = std::filesystem::path(path).extension().string();
    if (strcasecmp(ending.c_str(), ".mp4") == 0) return RenderTarget{Kind::kMp4, path};
    if (strcasecmp(ending.c_str(), ".mkv") == 0) return RenderTarget{Kind::kMatroska, path};
    if (strcasecmp(ending.c_str(), ".y4m") == 0) return RenderTarget{Kind::kY4m, path};
    return std::nullopt;
}

}  // namespace tdkplay
