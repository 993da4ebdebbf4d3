// The effect pass of each instruction set, beside the scalar yardstick and a memcpy of the same frame.
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/Goals.h"
#include "bench/ScalarPass.h"
#include "src/render/FrameBuffer.h"
#include "src/render/effects/PassTable.h"

namespace {

using namespace tdkviz;

struct EffectCase {
    const char* name;
    int32_t zoomX = 0, zoomY = 0, rotate = 0, slideX = 0, slideY = 0;
    int kernel = 0;
    int32_t fade = 0;
    bool clamp = false;  // as the record's AutoEdge gives it for these values
};
constexpr EffectCase kCases[] = {
    {.name = "Default", .zoomX = 10, .zoomY = 10, .kernel = 2, .fade = 25, .clamp = true},
    {.name = "ZoomRotateFadeKernel9", .zoomX = 10, .zoomY = 10, .rotate = 10, .kernel = 9, .fade = 25, .clamp = true},
    {.name = "NegativeZoomRotateFadeKernel9", .zoomX = -5, .zoomY = -6, .rotate = 18, .kernel = 9, .fade = 25},
    {.name = "Fade", .fade = 25},
    {.name = "Slide", .slideX = 3, .slideY = -2},
    {.name = "Kernel5", .kernel = 5},
};

struct Candidate {
    const char* name;
    InstructionSet set;
};
constexpr Candidate kCandidates[] = {{"Scalar", InstructionSet::kScalar},
                                     {"Vector128", InstructionSet::kVector128},
                                     {"Vector256", InstructionSet::kVector256},
                                     {"Vector512", InstructionSet::kVector512}};

struct FrameSize {
    int width, height;
};
constexpr FrameSize kSizes[] = {{320, 240}, {640, 480}, {1280, 720}};

class Frames {
public:
    explicit Frames(FrameSize size) : pixels_(size.width * size.height) {
        front_.Allocate(Bytes());
        back_.Allocate(Bytes());
        uint32_t noise = 1;
        for (uint8_t* at = front_.Pixels(); at < front_.Pixels() + Bytes(); ++at) {
            *at = static_cast<uint8_t>((noise = noise * 1664525 + 1013904223) >> 24);
        }
    }
    const uint8_t* Front() const { return front_.Pixels(); }
    uint8_t* Back() { return back_.Pixels(); }
    size_t Bytes() const { return static_cast<size_t>(pixels_) * sizeof(uint32_t); }
    void CountPixels(benchmark::State& state) const {
        using benchmark::Counter;
        const double pixels = static_cast<double>(pixels_) * static_cast<double>(state.iterations());
        state.counters["per_pixel"] = Counter(pixels, Counter::kIsRate | Counter::kInvert);
    }

private:
    const int pixels_;
    FrameBuffer front_, back_;
};

void BenchMemcpy(benchmark::State& state, FrameSize size) {
    Frames frames(size);
    for (auto _ : state) {
        std::memcpy(frames.Back(), frames.Front(), frames.Bytes());
        benchmark::ClobberMemory();
    }
    frames.CountPixels(state);
}

EffectPass MakePass(const EffectCase& effect, FrameSize size, Frames& frames) {
    constexpr int32_t kPixelBytes = 4, kSomeJitterX = 49, kSomeJitterY = 68;
    return {.source = frames.Front(),
            .destination = frames.Back(),
            .width = size.width,
            .height = size.height,
            .bytesPerPixel = kPixelBytes,
            .sourcePitch = ptrdiff_t{size.width} * kPixelBytes,
            .zoomX = effect.zoomX * kOffsetUnit,
            .zoomY = effect.zoomY * kOffsetUnit,
            .rotate = effect.rotate * kOffsetUnit,
            .slideX = effect.slideX * kOffsetUnit,
            .slideY = effect.slideY * kOffsetUnit,
            .jitterX = kSomeJitterX,
            .jitterY = kSomeJitterY,
            .clamp = effect.clamp,
            .kernel = effect.kernel,
            .fadeColor = 0,
            .fade = effect.fade};
}

void BenchPass(benchmark::State& state, const EffectCase& effect, FrameSize size, EffectPassFunction function) {
    Frames frames(size);
    const EffectPass pass = MakePass(effect, size, frames);
    for (auto _ : state) {
        function(pass);
        benchmark::ClobberMemory();
    }
    frames.CountPixels(state);
}

void BenchCandidate(benchmark::State& state, const EffectCase& effect, FrameSize size, InstructionSet set) {
    Frames frames(size);
    BenchPass(state, effect, size, ChoosePass(MakePass(effect, size, frames), set));
}

const bool kRegistered = [] {
    for (const FrameSize size : kSizes) {
        const std::string suffix = "/" + std::to_string(size.width) + "x" + std::to_string(size.height);
        benchmark::RegisterBenchmark(("Effect/Memcpy" + suffix).c_str(), BenchMemcpy, size);
        for (const EffectCase& effect : kCases) {
            const std::string name = std::string("Effect/") + effect.name + "/";
            benchmark::RegisterBenchmark((name + "Yardstick" + suffix).c_str(), BenchPass, effect, size, ScalarPass);
            for (const Candidate& candidate : kCandidates) {
                if (candidate.set > BestInstructionSet()) continue;
                benchmark::RegisterBenchmark((name + candidate.name + suffix).c_str(), BenchCandidate, effect, size,
                                             candidate.set);
            }
        }
    }
    return true;
}();

// At 640 x 480, of which one frame and the next just miss the nearest caches.
constexpr FrameSize kGoalSize = {640, 480};

double TimeAgainstYardstick(const EffectCase& effect, const bench::Trial& trial) {
    Frames frames(kGoalSize);
    const EffectPass pass = MakePass(effect, kGoalSize, frames);
    const EffectPassFunction ours = ChoosePass(pass, trial.set);
    return bench::Contest([&] { ours(pass); }, [&] { ScalarPass(pass); }, trial.seconds);
}

double TimeAgainstCopy(const EffectCase& effect, const bench::Trial& trial) {
    Frames frames(kGoalSize);
    const EffectPass pass = MakePass(effect, kGoalSize, frames);
    const EffectPassFunction ours = ChoosePass(pass, trial.set);
    const auto copy = [&] {
        std::memcpy(frames.Back(), frames.Front(), frames.Bytes());
        benchmark::ClobberMemory();
    };
    return bench::Contest([&] { ours(pass); }, copy, trial.seconds);
}

}  // namespace

void bench::AddEffectGoals() {
    const struct {
        const char* name;
        const EffectCase& effect;
        bool isSpeedUp;
        double any, wide;
    } goals[] = {
        {"Default record", kCases[0], true, 6, 15},
        {"Zoom, rotate, fade, kernel 9", kCases[1], true, 4.5, 9},
        {"The same without clamp, zooming out", kCases[2], true, 3.5, 6},
        {"Fade alone", kCases[3], false, 2.5, 1.25},
        {"Slide alone", kCases[4], false, 1.25, 1.15},
        {"Kernel 5", kCases[5], false, 8, 2.6},
    };
    for (const auto& goal : goals) {
        const EffectCase& effect = goal.effect;
        const auto time = goal.isSpeedUp ? TimeAgainstYardstick : TimeAgainstCopy;
        AddGoal({goal.name, goal.isSpeedUp ? "scalar pass" : "memcpy of the frame", goal.isSpeedUp, goal.any, goal.wide,
                 [&effect, time](const Trial& trial) { return time(effect, trial); }});
    }
}
