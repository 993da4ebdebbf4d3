#include "player/PrivateRegistry.h"

#include <stdlib.h>

#include <filesystem>
#include <system_error>

#include "player/ExitCode.h"

namespace tdkplay {

PrivateRegistry::PrivateRegistry() {
    std::error_code error;
    folder_ = (std::filesystem::temp_directory_path(error) / "tdkplay-XXXXXX").string();
    if (error || !mkdtemp(folder_.data()))
        throw PlayerError(ExitCode::kCannotWrite, "the folder for temporary files can't be written");
    setenv("TDKVIZ_REGISTRY", (folder_ + "/registry.db").c_str(), 1);
}

PrivateRegistry::~PrivateRegistry() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

}  // namespace tdkplay
