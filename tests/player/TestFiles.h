// Audio files for tests to play, and picture files that were made.
#pragma once

#include <png.h>
#include <sndfile.h>

#include <cmath>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace tdkplay {

// A sine of its own for each channel: channel c has (c + 1) * 200 Hz and half of full scale.
inline bool WriteSines(const std::string& path, int format, int rate, int channels, double seconds) {
    SF_INFO info = {};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) return false;
    const auto frames = static_cast<size_t>(seconds * rate);
    std::vector<float> samples(frames * static_cast<size_t>(channels));
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto channel = static_cast<double>(i % static_cast<size_t>(channels));
        const double t = static_cast<double>(i / static_cast<size_t>(channels)) / rate;
        samples[i] = 0.5f * static_cast<float>(std::sin(2.0 * M_PI * 200.0 * (channel + 1.0) * t));
    }
    constexpr size_t kChunk = 4096;  // some encoders overflow their stack with more at once
    for (size_t frame = 0; frame < frames; frame += kChunk)
        sf_writef_float(file, samples.data() + frame * static_cast<size_t>(channels),
                        static_cast<sf_count_t>(std::min(kChunk, frames - frame)));
    return sf_close(file) == 0;
}

struct Pixels {
    unsigned Width = 0;
    unsigned Height = 0;
    std::vector<unsigned char> Bytes;  // red, green, blue
    // The part of all pixels that somebody would call lit.
    double LitPart() const {
        size_t lit = 0;
        for (size_t i = 0; i < Bytes.size(); i += 3) lit += Bytes[i] + Bytes[i + 1] + Bytes[i + 2] > 60;
        return static_cast<double>(lit) / std::max(1.0, static_cast<double>(Bytes.size()) / 3);
    }
};

inline Pixels ReadPng(const std::string& path) {
    Pixels pixels;
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return pixels;
    image.format = PNG_FORMAT_RGB;
    pixels.Bytes.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, pixels.Bytes.data(), 0, nullptr)) {
        pixels.Width = image.width;
        pixels.Height = image.height;
    }
    return pixels;
}

}  // namespace tdkplay
