// The effect pass beside a memcpy of the same frame and beside the straightforward pass.
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <tdkviz/plugin.h>

#include "bench/StraightforwardPass.h"
#include "src/render/EffectRandomizer.h"
#include "src/render/VizEffectEngine.h"

namespace {

struct EffectCase {
    const char* name;
    StraightforwardValues values;
};

// The edge rule as the record's AutoEdge gives it for these values.
constexpr EffectCase kCases[] = {
    {"Default", {.zoomX = 10, .zoomY = 10, .blur = 2, .fade = 25, .clamp = true}},
    {"ZoomRotateFadeKernel9", {.zoomX = 10, .zoomY = 10, .rotate = 16, .blur = 9, .fade = 25, .clamp = true}},
    {"Fade", {.fade = 25, .clamp = false}},
    {"Slide", {.slideX = 3, .slideY = -2, .clamp = false}},
    {"Kernel5", {.blur = 5, .clamp = false}},
};

struct FrameSize {
    int width, height;
};
constexpr FrameSize kSizes[] = {{320, 240}, {640, 480}, {1280, 720}};

class Frames {
public:
    explicit Frames(FrameSize size) : front(PixelCount(size)), back(PixelCount(size)) {
        uint32_t noise = 1;
        for (uint32_t& pixel : front) pixel = (noise = noise * 1664525 + 1013904223) & 0xFFFFFF;
    }
    std::vector<uint32_t> front, back;

private:
    static size_t PixelCount(FrameSize size) {
        return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
    }
};

void CountPixels(benchmark::State& state, const Frames& frames) {
    using benchmark::Counter;
    const double pixels = static_cast<double>(frames.front.size()) * static_cast<double>(state.iterations());
    state.counters["per_pixel"] = Counter(pixels, Counter::kIsRate | Counter::kInvert);
}

void BenchMemcpy(benchmark::State& state, FrameSize size) {
    Frames frames(size);
    for (auto _ : state) {
        std::memcpy(frames.back.data(), frames.front.data(), frames.front.size() * sizeof(uint32_t));
        benchmark::ClobberMemory();
    }
    CountPixels(state, frames);
}

void BenchStraightforward(benchmark::State& state, const EffectCase& effect, FrameSize size) {
    Frames frames(size);
    uint32_t frame = 0;
    for (auto _ : state) {
        StraightforwardPass(frames.front.data(), frames.back.data(), size.width, size.height, ++frame, effect.values);
        benchmark::ClobberMemory();
    }
    CountPixels(state, frames);
}

void FillParams(tdkviz::VizEffectParams& params, const StraightforwardValues& values) {
    tdkviz::SetNeutralEffects(params);
    params.Zoom = params.Rotate = params.Slide = params.Blur = params.Fade = true;
    params.ZoomX = values.zoomX;
    params.ZoomY = values.zoomY;
    params.RotateSpeed = values.rotate;
    params.SlideX = values.slideX;
    params.SlideY = values.slideY;
    params.BlurAmount = values.blur;
    params.FadeTime = values.fade;
    params.FadeColor = values.fadeColor;
}

void BenchEngine(benchmark::State& state, const EffectCase& effect, FrameSize size) {
    Frames frames(size);
    tdkviz::VizEffectParams params;
    FillParams(params, effect.values);
    tdkviz::VizEffectEngine engine;
    for (auto _ : state) {
        engine.ApplyEffects(frames.front.data(), frames.back.data(), size.width, size.height, size.width, params,
                            kEffectsAll);
        benchmark::ClobberMemory();
    }
    CountPixels(state, frames);
}

const bool kRegistered = [] {
    for (const FrameSize size : kSizes) {
        const std::string suffix = "/" + std::to_string(size.width) + "x" + std::to_string(size.height);
        benchmark::RegisterBenchmark(("Effect/Memcpy" + suffix).c_str(), BenchMemcpy, size);
        for (const EffectCase& effect : kCases) {
            const std::string name = std::string("Effect/") + effect.name;
            benchmark::RegisterBenchmark((name + "/Engine" + suffix).c_str(), BenchEngine, effect, size);
            benchmark::RegisterBenchmark((name + "/Straightforward" + suffix).c_str(), BenchStraightforward, effect,
                                         size);
        }
    }
    return true;
}();

}  // namespace
