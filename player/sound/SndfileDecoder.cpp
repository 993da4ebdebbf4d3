#include "player/sound/SndfileDecoder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr float kSampleScale = 32768.0f;
constexpr float kMinSample = -32768.0f;
constexpr float kMaxSample = 32767.0f;
constexpr float kMinus3Decibels = 0.70710678f;
constexpr int kSurroundChannels = 6;  // from here on the fourth channel is the low-frequency one

int16_t ToSample(float value) {
    const float scaled = std::clamp(value * kSampleScale, kMinSample, kMaxSample);
    return std::isnan(scaled) ? int16_t{0} : static_cast<int16_t>(std::lrint(scaled));
}

// The MP3 library prints its doubts about a file. The player's own line says it all.
class SilentStandardError {
public:
    SilentStandardError() : kept_(dup(STDERR_FILENO)) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (kept_ >= 0 && nowhere >= 0) dup2(nowhere, STDERR_FILENO);
        if (nowhere >= 0) close(nowhere);
    }
    ~SilentStandardError() {
        if (kept_ < 0) return;
        dup2(kept_, STDERR_FILENO);
        close(kept_);
    }
    SilentStandardError(const SilentStandardError&) = delete;
    SilentStandardError& operator=(const SilentStandardError&) = delete;

private:
    const int kept_;
};

SNDFILE* OpenQuietly(const std::string& path, SF_INFO& info) {
    const SilentStandardError silence;
    return sf_open(path.c_str(), SFM_READ, &info);
}

}  // namespace

SndfileDecoder::SndfileDecoder(const std::string& path) {
    SF_INFO info = {};
    file_.reset(OpenQuietly(path, info));
    if (!file_ || info.channels < 1 || info.samplerate < 1)
        throw PlayerError(ExitCode::kUnknownFormat, path + ": not an audio file of a known format");
    if (info.frames == 0) throw PlayerError(ExitCode::kUnknownFormat, path + ": holds no audio");
    fileChannels_ = info.channels;
    format_ = {static_cast<uint32_t>(info.samplerate), static_cast<uint16_t>(std::min(info.channels, 2))};
    // Streams of unknown length carry the largest number instead.
    if (info.frames > 0 && info.frames < SF_COUNT_MAX) totalFrames_ = static_cast<uint64_t>(info.frames);
    if (fileChannels_ > 2) downmix_ = DownmixWeights(fileChannels_);
}

// The usual orders: left, right, centre, low frequency (with six or more), then pairs of left and right.
// Four channels have no centre.
std::vector<SndfileDecoder::Weights> SndfileDecoder::DownmixWeights(int channels) {
    const bool hasCentre = channels != 4;
    const bool hasLowFrequency = channels >= kSurroundChannels;
    std::vector<Weights> weights = {{1, 0}, {0, 1}};
    if (hasCentre) weights.push_back({kMinus3Decibels, kMinus3Decibels});
    if (hasLowFrequency) weights.push_back({0, 0});
    for (bool left = true; static_cast<int>(weights.size()) < channels; left = !left)
        weights.push_back(left ? Weights{kMinus3Decibels, 0} : Weights{0, kMinus3Decibels});
    Weights sum = {0, 0};
    for (const Weights& weight : weights)
        for (size_t side = 0; side < sum.size(); ++side) sum[side] += weight[side];
    for (Weights& weight : weights)
        for (size_t side = 0; side < sum.size(); ++side) weight[side] /= sum[side];
    return weights;
}

std::string SndfileDecoder::Title() const {
    const char* const title = sf_get_string(file_.get(), SF_STR_TITLE);
    const char* const artist = sf_get_string(file_.get(), SF_STR_ARTIST);
    if (!title || *title == '\0') return {};
    return artist && *artist != '\0' ? std::string(artist) + " - " + title : title;
}

size_t SndfileDecoder::Read(int16_t* samples, size_t frames) {
    decoded_.resize(std::max(decoded_.size(), frames * static_cast<size_t>(fileChannels_)));
    const sf_count_t got = sf_readf_float(file_.get(), decoded_.data(), static_cast<sf_count_t>(frames));
    if (got <= 0) return 0;
    Convert(decoded_.data(), static_cast<size_t>(got), samples);
    return static_cast<size_t>(got);
}

void SndfileDecoder::Convert(const float* in, size_t frames, int16_t* out) const {
    if (downmix_.empty()) {
        std::transform(in, in + frames * static_cast<size_t>(fileChannels_), out, ToSample);
        return;
    }
    for (size_t frame = 0; frame < frames; ++frame) {
        float left = 0;
        float right = 0;
        for (const Weights& weight : downmix_) {
            left += *in * weight[0];
            right += *in * weight[1];
            ++in;
        }
        *out++ = ToSample(left);
        *out++ = ToSample(right);
    }
}

bool SndfileDecoder::Seek(uint64_t frame) {
    return sf_seek(file_.get(), static_cast<sf_count_t>(frame), SF_SEEK_SET) >= 0;
}

}  // namespace tdkplay
