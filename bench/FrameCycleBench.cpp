// One whole frame cycle of a view: a delivery of audio, the analysis, the effects, a plug-in's strokes, and
// the way to a window of the memory display.
#include <cmath>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include <windows.h>

#include <tdkviz/plugin.h>

#include "src/audio/AudioProcessor.h"
#include "src/render/EffectRandomizer.h"
#include "src/render/VizEffectEngine.h"
#include "src/render/VizWindow.h"
#include "src/support/NQBuffer.h"
#include "src/support/RefPtr.h"

namespace {

using namespace tdkviz;

constexpr uint32_t kRate = 44100;
constexpr uint32_t kFramesPerSecond = 20;
constexpr uint32_t kDeliveryFrames = kRate / kFramesPerSecond;
constexpr uint32_t kStroke = 0x0040FF80;
constexpr char kParentClass[] = "TdkbenchParent";

// Stereo audio, one frame period a delivery.
class Audio {
public:
    Audio() : buffer_(RefPtr<CNQBuffer>::Adopt(CNQBuffer::Create())) {
        std::vector<int16_t> samples(2 * kDeliveryFrames);
        for (size_t i = 0; i < samples.size(); ++i) {
            samples[i] = static_cast<int16_t>(12000 * std::sin(0.05 * static_cast<double>(i / 2)));
        }
        buffer_->SetContents(samples.data(), static_cast<uint32_t>(samples.size() * sizeof(int16_t)));
        KVAAudioFormat format = {2, 16, kRate, kDeliveryFrames * 4, 0};
        processor_.OnAudioFormat(&format);
    }
    void Next(VizAnalysisFrame& frame) {
        KVAAudioData data = {buffer_.Get()};
        processor_.OnAudioData(&data, &data);
        processor_.ReadAnalysisFrame(frame, true);
    }

private:
    CVizAudioProcessor processor_{nullptr};
    RefPtr<CNQBuffer> buffer_;
};

// What an oscilloscope paints: two points a column.
void PaintWaveform(uint32_t* pixels, int32_t width, int32_t height, const VizAnalysisFrame& frame) {
    for (int32_t x = 0; x < width; ++x) {
        const auto sample = static_cast<size_t>(x) * kWaveformSamples / static_cast<size_t>(width);
        const int32_t left = (frame.WaveformLeft[sample] + 128) * (height - 1) / 255;
        const int32_t right = (frame.WaveformRight[sample] + 128) * (height - 1) / 255;
        pixels[left * width + x] = kStroke;
        pixels[right * width + x] = kStroke;
    }
}

HWND MakeParent(int32_t width, int32_t height) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.lpszClassName = kParentClass;
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, kParentClass, "", WS_POPUP | WS_VISIBLE, 0, 0, width, height, nullptr, nullptr, nullptr,
                           nullptr);
}

void ServeMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

void DrawFrame(CVizWindow& window, VizEffectEngine& engine, const VizEffectParams& params,
               const VizAnalysisFrame& frame) {
    const int32_t width = window.GetFrameWidth(), height = window.GetFrameHeight();
    const bool changed =
        engine.ApplyEffects(window.GetFrontPixels(), window.GetBackPixels(), width, height, width, params, kEffectsAll);
    window.ReleaseBack();
    window.ReleaseFront();
    if (changed) window.SwapBuffers();
    PaintWaveform(static_cast<uint32_t*>(window.GetFrontPixels()), width, height, frame);
    window.ReleaseFront();
    window.Present(true);
}

void BenchFrameCycle(benchmark::State& state) {
    const auto width = static_cast<int32_t>(state.range(0)), height = static_cast<int32_t>(state.range(1));
    const HWND parent = MakeParent(width, height);
    {
        CVizWindow window(nullptr, parent);
        window.SetShown(true);
        window.Resize(width, height);
        ShowWindow(window.GetWindowHandle(), SW_SHOW);
        ServeMessages();
        if (!window.GetFrontPixels()) state.SkipWithError("no frames");
        window.ReleaseFront();
        Audio audio;
        VizAnalysisFrame frame = {};
        VizEffectParams params;
        SetDefaultEffects(params);
        VizEffectEngine engine;
        for (auto _ : state) {
            audio.Next(frame);
            DrawFrame(window, engine, params, frame);
            ServeMessages();
        }
    }
    DestroyWindow(parent);
    ServeMessages();
}
BENCHMARK(BenchFrameCycle)
    ->Name("FrameCycle")
    ->Args({320, 240})
    ->Args({640, 480})
    ->Args({1280, 720})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
