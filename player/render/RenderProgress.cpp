#include "player/render/RenderProgress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "player/base/ClockText.h"
#include "player/base/JsonText.h"

namespace tdkplay {
namespace {

constexpr double kBarPause = 0.2;  // seconds between two looks
constexpr double kLinePause = 5.0;
constexpr double kJsonPause = 1.0;
constexpr int kBarWidth = 30;
constexpr char kEraseLine[] = "\r\033[K";

}  // namespace

RenderProgress::RenderProgress(const std::string& path, const VideoFormat& format, uint64_t total, bool json)
    : path_(path),
      format_(format),
      total_(total),
      style_(json                    ? Style::kJson
             : isatty(STDOUT_FILENO) ? Style::kBar
                                     : Style::kLines),
      next_(style_ == Style::kBar    ? kBarPause
            : style_ == Style::kJson ? kJsonPause
                                     : kLinePause) {}

double RenderProgress::Elapsed() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

double RenderProgress::Left(uint64_t frames, double elapsed) const {
    if (frames == 0 || total_ <= frames) return 0.0;
    return elapsed / static_cast<double>(frames) * static_cast<double>(total_ - frames);
}

void RenderProgress::Report(uint64_t frames) {
    const double elapsed = Elapsed();
    if (elapsed < next_) return;
    switch (style_) {
        case Style::kBar:
            PrintBar(frames, elapsed);
            next_ = elapsed + kBarPause;
            break;
        case Style::kLines:
            PrintLine(frames, elapsed);
            next_ = elapsed + kLinePause;
            break;
        case Style::kJson:
            PrintJson(frames, elapsed);
            next_ += kJsonPause;
            break;
    }
    std::fflush(stdout);
}

void RenderProgress::PrintBar(uint64_t frames, double elapsed) const {
    std::fputs(kEraseLine, stdout);
    if (total_ == 0) return PrintLine(frames, elapsed);
    const double part = std::min(1.0, static_cast<double>(frames) / static_cast<double>(total_));
    std::string bar(kBarWidth, ' ');
    std::fill_n(bar.begin(), static_cast<int>(part * kBarWidth), '#');
    std::printf("[%s] %3.0f %%  %s left, %.1f times real time", bar.c_str(), part * 100.0,
                ClockText(std::round(Left(frames, elapsed))).c_str(), Speed(frames, elapsed));
}

void RenderProgress::PrintLine(uint64_t frames, double elapsed) const {
    const bool isLine = style_ == Style::kLines;
    std::printf("%llu", static_cast<unsigned long long>(frames));
    if (total_ != 0) std::printf(" of %llu", static_cast<unsigned long long>(total_));
    std::printf(" frames, %.1f times real time", Speed(frames, elapsed));
    if (total_ != 0) std::printf(", %s left", ClockText(std::round(Left(frames, elapsed))).c_str());
    if (isLine) std::fputs("\n", stdout);
}

void RenderProgress::PrintJson(uint64_t frames, double elapsed) const {
    std::printf("{\"frame\":%llu,\"frames\":", static_cast<unsigned long long>(frames));
    if (total_ != 0)
        std::printf("%llu,\"left\":%.1f", static_cast<unsigned long long>(total_), Left(frames, elapsed));
    else
        std::fputs("null,\"left\":null", stdout);
    std::printf(",\"elapsed\":%.2f,\"speed\":%.2f}\n", elapsed, Speed(frames, elapsed));
}

void RenderProgress::End(uint64_t frames, bool interrupted) {
    const double elapsed = Elapsed();
    const auto count = static_cast<unsigned long long>(frames);
    if (style_ == Style::kBar) std::fputs(kEraseLine, stdout);
    if (style_ == Style::kJson)
        std::printf(
            "{\"done\":%s,\"path\":%s,\"frames\":%llu,\"width\":%d,\"height\":%d,\"fps\":%u,\"seconds\":%.6f,"
            "\"elapsed\":%.2f,\"speed\":%.2f}\n",
            interrupted ? "false" : "true", JsonText(path_).c_str(), count, format_.Width, format_.Height, format_.Rate,
            SongSeconds(frames), elapsed, Speed(frames, elapsed));
    else
        std::printf("%s: %llu frames, %dx%d, %u a second, %.1f times faster than real time\n", path_.c_str(), count,
                    format_.Width, format_.Height, format_.Rate, Speed(frames, elapsed));
    std::fflush(stdout);
}

}  // namespace tdkplay
