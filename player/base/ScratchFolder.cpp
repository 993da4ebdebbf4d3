#include "player/base/ScratchFolder.h"

#include <stdlib.h>

#include <filesystem>
#include <system_error>

#include "player/base/ExitCode.h"

namespace tdkplay {

ScratchFolder::ScratchFolder() {
    std::error_code error;
    path_ = (std::filesystem::temp_directory_path(error) / "tdkplay-XXXXXX").string();
    if (error || !mkdtemp(path_.data()))
        throw PlayerError(ExitCode::kCannotWrite, "the folder for temporary files can't be written");
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace tdkplay
