// Uncompressed video: YUV4MPEG2 with full colour resolution (C444), BT.601 in the limited range.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "player/render/FrameSink.h"

namespace tdkplay {

class Y4mWriter final : public FrameSink {
public:
    // Throws PlayerError with kCannotWrite.
    Y4mWriter(const std::string& path, const VideoFormat& format);

    void Write(const Picture& frame) override;
    void Finish() override;

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    void Put(const void* bytes, size_t size);

    const std::string path_;
    const std::unique_ptr<std::FILE, Closer> file_;
    const size_t pixels_;         // of a frame
    std::vector<uint8_t> bytes_;  // the frame's header, then its planes
};

}  // namespace tdkplay
