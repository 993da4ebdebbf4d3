#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <limits>

#include "player/base/Joined.h"
#include "player/check/FlashMeter.h"
#include "player/check/Probes.h"
#include "player/check/ProcessState.h"
#include "player/check/TestSound.h"

namespace tdkplay::check {
namespace {

constexpr double kBudget = 33;  // milliseconds for everything, at 30 frames a second
constexpr double kWarnFrom = 5;
constexpr int kLives = 3;
constexpr int kFlashSeconds = 12;

struct FrameTimes {
    double Median, Ninety9;  // milliseconds
};

// The shortest time of each frame in some lives of the plug-in: what other programs take away isn't its fault.
FrameTimes Measure(ProbeContext& context, TestMusic& music, PictureSize size, int frames) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> times(static_cast<size_t>(frames), std::numeric_limits<double>::max());
    for (int life = 0; life < kLives; ++life) {
        PlayIn(context, size, [&](PluginView& view) {
            for (size_t i = 0; i < times.size(); ++i) {
                const VizAnalysisFrame& frame = music.At(i);
                const auto begin = Clock::now();
                view.Draw(frame);
                times[i] = std::min(times[i], std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
            }
        });
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times[times.size() * 99 / 100]};
}

std::string TimesText(PictureSize size, const FrameTimes& times) {
    std::array<char, 100> text = {};
    std::snprintf(text.data(), text.size(), "%s: median %.2f ms, 99th percentile %.2f", size.Text().c_str(),
                  times.Median, times.Ninety9);
    return text.data();
}

bool IsBlack(const std::vector<uint32_t>& pixels) {
    return std::all_of(pixels.begin(), pixels.end(), [](uint32_t pixel) { return (pixel & 0xFFFFFF) == 0; });
}

// The last picture of a new object after these frames.
std::vector<uint32_t> PictureOfNewObject(ProbeContext& context, TestMusic& music, size_t frames) {
    std::vector<uint32_t> picture;
    PlayIn(context, kUsualSize, [&](PluginView& view) {
        for (size_t i = 0; i < frames; ++i) view.Next(music.At(i));
        picture = view.Pixels();
    });
    return picture;
}

}  // namespace

void ProbeSpeed(ProbeContext& context) {
    if (!ResourceUse::IsExact()) return context.Findings.Skip("this build is slow itself: it has a sanitizer");
    TestMusic music;
    const int frames = context.Turns(200, 20);
    std::vector<std::string> texts;
    double worst = 0, worstTail = 0;
    for (const PictureSize size : {kUsualSize, PictureSize{640, 480}}) {
        const FrameTimes times = Measure(context, music, size, frames);
        texts.push_back(TimesText(size, times));
        worst = std::max(worst, times.Median);
        worstTail = std::max(worstTail, times.Ninety9);
    }
    const std::string text = Joined(texts, "; ");
    if (worst > kBudget) throw ContractFault("too slow for 30 frames a second: " + text);
    if (worst > kWarnFrom) return context.Findings.Warn("slow: " + text);
    if (worstTail > kBudget) return context.Findings.Warn("some frames are slow: " + text);
    context.Findings.Note(text);
}

void ProbePicture(ProbeContext& context) {
    TestMusic music;
    int firstSeen = -1;
    PlayIn(context, kUsualSize, [&](PluginView& view) {
        const std::vector<uint32_t> blank = view.Pixels();
        for (int i = 0; i < kFramesPerSecond && firstSeen < 0; ++i) {
            view.Next(music.At(static_cast<size_t>(i + kFramesPerSecond)));
            if (!IsBlack(view.Pixels()) && view.Pixels() != blank) firstSeen = i;
        }
    });
    if (firstSeen < 0) return context.Findings.Warn("all black through a second of music");
    context.Findings.Note("something to see from frame " + std::to_string(firstSeen + 1) + " of the music on");
}

void ProbeFlashes(ProbeContext& context) {
    TestMusic music;
    FlashMeter meter(kFramesPerSecond);
    const int frames = context.Turns(kFlashSeconds * kFramesPerSecond, 2 * kFramesPerSecond);
    PlayIn(context, kUsualSize, [&](PluginView& view) {
        for (int i = 0; i < frames; ++i) {
            view.Next(music.At(static_cast<size_t>(i)));
            meter.Add(view.Pixels(), kUsualSize.Width, kUsualSize.Height);
        }
    });
    std::array<char, 100> text = {};
    std::snprintf(text.data(), text.size(), "%g flashes of the picture within a second of music", meter.MostFlashes());
    if (meter.MostFlashes() > FlashMeter::kMostFlashes)
        return context.Findings.Warn(std::string(text.data()) + "; more than three make some people ill");
    context.Findings.Note(meter.MostFlashes() == 0 ? "none" : std::string("at most ") + text.data());
}

void ProbeRepeatable(ProbeContext& context) {
    TestMusic music;
    constexpr size_t kFrames = 2 * kFramesPerSecond;
    const bool isSame = PictureOfNewObject(context, music, kFrames) == PictureOfNewObject(context, music, kFrames);
    context.Findings.Note(isSame ? "the same music gives the same picture" : "the same music gives other pictures");
}

}  // namespace tdkplay::check
