#include "player/sound/Decoder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "player/base/ExitCode.h"
#include "player/sound/DemoPiece.h"
#include "player/sound/SndfileDecoder.h"

namespace tdkplay {
namespace {

void RequireReadableFile(const std::string& path) {
    struct stat status = {};
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) throw PlayerError(ExitCode::kFileUnreadable, path + ": " + std::strerror(errno));
    const bool isKnown = fstat(file, &status) == 0;
    close(file);
    if (isKnown && S_ISDIR(status.st_mode))
        throw PlayerError(ExitCode::kFileUnreadable, path + ": a folder without audio files");
    const bool isFile = isKnown && S_ISREG(status.st_mode);
    if (!isFile) throw PlayerError(ExitCode::kFileUnreadable, path + ": not a file");
}

}  // namespace

std::unique_ptr<Decoder> OpenDecoder(const std::string& path) {
    if (path.empty()) return std::make_unique<DemoDecoder>();
    RequireReadableFile(path);
    return std::make_unique<SndfileDecoder>(path);
}

}  // namespace tdkplay
