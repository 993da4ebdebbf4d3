// A folder of its own among the temporary files, for one run.
#pragma once

#include <string>

namespace tdkplay {

// It goes with everything in it.
class ScratchFolder {
public:
    // Throws PlayerError with kCannotWrite.
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string File(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

}  // namespace tdkplay
