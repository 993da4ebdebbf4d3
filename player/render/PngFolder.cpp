#include "player/render/PngFolder.h"

#include <array>
#include <cstdio>
#include <filesystem>

#include "player/base/ExitCode.h"

namespace tdkplay {

PngFolder::PngFolder(const std::string& folder) : folder_(folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder))
        throw PlayerError(ExitCode::kCannotWrite, folder + ": " + error.message());
}

void PngFolder::Write(const Picture& frame) {
    std::array<char, 32> name = {};
    std::snprintf(name.data(), name.size(), "frame-%06u.png", ++count_);
    WritePng(frame, (std::filesystem::path(folder_) / name.data()).string());
}

}  // namespace tdkplay
