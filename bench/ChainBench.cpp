// One whole frame cycle of a view: a delivery of audio, the analysis, the effects, a plug-in's strokes, and
// the way to a window of the memory display.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include <windows.h>

#include <tdkviz/plugin.h>

#include "bench/Goals.h"
#include "bench/PeerProgram.h"
#include "src/audio/AudioProcessor.h"
#include "src/render/EffectRandomizer.h"
#include "src/render/FrameBuffer.h"
#include "src/render/VizEffectEngine.h"
#include "src/render/VizSurface.h"
#include "src/render/VizWindow.h"
#include "src/support/DLLAccessPath.h"
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

// What a view does for one frame, on any holder of frames.
template <typename Window>
void DrawFrame(Window& window, VizEffectEngine& engine, const VizEffectParams& params, const VizAnalysisFrame& frame) {
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

// A frame of any size shown pixel for pixel, as CVizWindow does it with frames that it doesn't halve.
class FullSizeFrame {
public:
    FullSizeFrame(HWND window, int32_t width, int32_t height)
        : window_(window), windowContext_(GetDC(window)), memoryContext_(CreateCompatibleDC(windowContext_)) {
        FillBitmapInfo(&info_, sizeof info_, FormatRGB32, width, height, nullptr, 0);
        surface_.reset(CreateVizSurface(&info_));
        front_.Allocate(info_.Header.biSizeImage);
        back_.Allocate(info_.Header.biSizeImage);
    }
    ~FullSizeFrame() {
        DeleteDC(memoryContext_);
        ReleaseDC(window_, windowContext_);
    }
    FullSizeFrame(const FullSizeFrame&) = delete;
    FullSizeFrame& operator=(const FullSizeFrame&) = delete;

    int32_t GetFrameWidth() const { return info_.Header.biWidth; }
    int32_t GetFrameHeight() const { return info_.Header.biHeight; }
    void* GetFrontPixels() { return front_.Pixels(); }
    void* GetBackPixels() { return back_.Pixels(); }
    void ReleaseFront() {}
    void ReleaseBack() {}
    void SwapBuffers() { std::swap(front_, back_); }
    void Present(bool) {
        GdiFlush();
        std::memcpy(surface_->Pixels, front_.Pixels(), info_.Header.biSizeImage);
        const RECT all = {0, 0, GetFrameWidth(), GetFrameHeight()};
        BlitVizSurface(windowContext_, memoryContext_, surface_.get(), all, all);
    }

private:
    const HWND window_;
    const HDC windowContext_, memoryContext_;
    BitmapInfoRecord info_ = {};
    VizSurfacePtr surface_;
    FrameBuffer front_, back_;
};

// The output window of a view, with the colour converter of the staged tree.
class OutputWindow : public CVizWindow {
public:
    OutputWindow(HWND parent, int32_t width, int32_t height) : CVizWindow(nullptr, parent) {
        SetShown(true);
        Resize(width, height);
        ShowWindow(GetWindowHandle(), SW_SHOW);
        ServeMessages();
    }
};

// A view at work, less the threads.
template <typename Output>
class Chain {
public:
    Chain(int32_t width, int32_t height) : parent_(MakeParent(width, height)) {
        GetDLLAccessPath()->SetPath(DLLKind::Codecs, STAGE_DIR "/Codecs");
        output_ = std::make_unique<Output>(parent_, width, height);
        SetDefaultEffects(params_);
    }
    ~Chain() {
        output_.reset();
        DestroyWindow(parent_);
        ServeMessages();
    }
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;

    void Run() {
        audio_.Next(frame_);
        DrawFrame(*output_, engine_, params_, frame_);
        ServeMessages();
    }
    int32_t FrameWidth() { return output_->GetFrameWidth(); }

private:
    const HWND parent_;
    std::unique_ptr<Output> output_;
    Audio audio_;
    VizAnalysisFrame frame_ = {};
    VizEffectParams params_;
    VizEffectEngine engine_;
};

template <typename Output>
void BenchChain(benchmark::State& state) {
    Chain<Output> chain(static_cast<int32_t>(state.range(0)), static_cast<int32_t>(state.range(1)));
    for (auto _ : state) chain.Run();
    state.counters["frame_width"] = chain.FrameWidth();
}
BENCHMARK(BenchChain<OutputWindow>)
    ->Name("Chain/Window")
    ->Args({320, 240})
    ->Args({640, 480})
    ->Args({1280, 960})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BenchChain<FullSizeFrame>)->Name("Chain/FullSize")->Args({640, 480})->Unit(benchmark::kMicrosecond);

double ProcessSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Processor time of one frame, the best of some rounds. The converter is loaded anew and looks at the
// environment for the instruction set.
template <typename Output>
double ChainSeconds(const bench::Trial& trial) {
    constexpr int kRounds = 20;
    setenv("TDKVIZ_INSTRUCTION_SET", trial.set == InstructionSet::kVector128 ? "128" : "512", 1);
    Chain<Output> chain(640, 480);
    unsetenv("TDKVIZ_INSTRUCTION_SET");
    chain.Run();
    const int calls = std::max(1, static_cast<int>(trial.seconds / kRounds / 0.0005));
    double best = 1;
    for (int round = 0; round < kRounds; ++round) {
        const double start = ProcessSeconds();
        for (int call = 0; call < calls; ++call) chain.Run();
        best = std::min(best, (ProcessSeconds() - start) / calls);
    }
    return best;
}

// The peers take seconds, so each is asked once.
template <typename Output, std::optional<double> (*kPeer)()>
std::optional<double> TimeAgainstPeer(const bench::Trial& trial) {
    const std::optional<double> theirs = kPeer();
    if (!theirs) return std::nullopt;
    return ChainSeconds<Output>(trial) / *theirs;
}

std::optional<double> ShowWaves() {
    static const auto seconds = bench::FfmpegFrameSeconds("showwaves=s=640x480:mode=line:rate=30");
    return seconds;
}
std::optional<double> ShowSpectrum() {
    static const auto seconds = bench::FfmpegFrameSeconds("showspectrum=s=640x480:fps=30");
    return seconds;
}
std::optional<double> LvScope() {
    static const auto seconds = bench::GStreamerFrameSeconds("libvisual_lv_scope");
    return seconds;
}

}  // namespace

void bench::AddChainGoals() {
    AddGoal({"Whole chain, 640x480 frames", "ffmpeg showwaves", false, 0.85, 0.5,
             TimeAgainstPeer<FullSizeFrame, ShowWaves>});
    AddGoal({"Whole chain, against a scope", "libvisual lv_scope", false, 0.22, 0.12,
             TimeAgainstPeer<FullSizeFrame, LvScope>});
    AddGoal({"320x240 frames shown at 640x480", "ffmpeg showspectrum", false, 1.0, 0.6,
             TimeAgainstPeer<OutputWindow, ShowSpectrum>});
}
