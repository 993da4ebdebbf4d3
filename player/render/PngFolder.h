// Frames as numbered pictures in a folder: frame-000001.png and so on.
#pragma once

#include <string>

#include "player/render/FrameSink.h"

namespace tdkplay {

class PngFolder final : public FrameSink {
public:
    // Makes the folder if it isn't there. Throws PlayerError with kCannotWrite.
    explicit PngFolder(const std::string& folder);

    void Write(const Picture& frame) override;
    void Finish() override {}

private:
    const std::string folder_;
    unsigned count_ = 0;
};

}  // namespace tdkplay
