#include "src/audio/AudioProcessor.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

#include "src/audio/FrameRate.h"

namespace tdkviz {
namespace {

constexpr uint32_t kAudioFlowsMask = 3;
constexpr double kMillisecondsPerSecond = 1000.0;
constexpr int kMono = 1;
constexpr int kStereo = 2;

std::unique_ptr<KVAMutex> MakeMutex() {
    KVAMutex* mutex = nullptr;
    CreateInstanceMutex(&mutex);
    return std::unique_ptr<KVAMutex>(mutex);
}

// Sizes the ring.
double ConfiguredDelay(const RefPtr<IKVAAudioDelay>& source) {
    if (!source) return AudioSyncFactor;
    uint32_t milliseconds = 0;
    source->GetConfiguredDelay(&milliseconds);
    return milliseconds / kMillisecondsPerSecond;
}

// Places the read position.
double CurrentDelay(const RefPtr<IKVAAudioDelay>& source) {
    uint32_t milliseconds = 0;
    if (source) source->GetCurrentDelay(&milliseconds);
    return milliseconds / kMillisecondsPerSecond;
}

bool IsAnnounced(const KVAAudioFormat& format) {
    return format.Channels || format.BitsPerSample || format.SamplesPerSecond || format.BlockSize || format.Reserved;
}

int16_t SampleAt(const uint8_t* sample, uint32_t bytesPerSample) {
    if (bytesPerSample == 1) return static_cast<int16_t>((*sample - 128) * 256);
    return static_cast<int16_t>(sample[0] | sample[1] << 8);
}

}  // namespace

Relaxed<double> AudioSyncFactor{0.0};

CVizAudioProcessor::CVizAudioProcessor(IUnknown* hostContext) : CKVAAudioHook(hostContext), Mutex(MakeMutex()) {
    if (auto player = QueryFor<ITKPlayer>(hostContext, kIID_ITKPlayer)) {
        Delay = QueryFor<IKVAAudioDelay>(player->GetPlaybackEngine(), kIID_IKVAAudioDelay);
    }
}

CVizAudioProcessor::~CVizAudioProcessor() {
    Detach();
}

void CVizAudioProcessor::Retire(std::unique_ptr<CVizAudioProcessor> processor) {
    constexpr size_t kKeptAside = 4;
    static std::mutex guard;
    static std::deque<std::unique_ptr<CVizAudioProcessor>> aside;
    processor->Detach();
    {
        const MutexLock lock(processor->Mutex.get());
        processor->Ring = AudioRing();
        processor->Delay.Reset();
    }
    const std::lock_guard lock(guard);
    aside.push_back(std::move(processor));
    if (aside.size() > kKeptAside) aside.pop_front();
}

void CVizAudioProcessor::SetPlaybackEngine(IUnknown* engine) {
    auto delay = QueryFor<IKVAAudioDelay>(engine, kIID_IKVAAudioDelay);
    const double configured = ConfiguredDelay(delay);
    MutexLock lock(Mutex.get());
    std::swap(Delay, delay);
    Ring.Silence();
    if (Ring.IsEmpty()) return;
    RingLayout sizes = Ring.Layout();
    sizes.RingSize = LayoutRing(ringFormat_, configured, GetAnalysisFrameRate()).RingSize;
    if (sizes.RingSize <= Ring.Layout().RingSize) return;
    AudioRing longer(sizes);
    if (!longer.IsEmpty()) std::swap(Ring, longer);
}

HRESULT CVizAudioProcessor::OnAudioState(uint32_t flags) {
    Passage passage(*this);
    if (!passage.IsOpen()) return S_OK;
    const bool flows = (flags & kAudioFlowsMask) != 0;
    SetAudioFlowing(flows);
    if (!flows) {
        MutexLock lock(Mutex.get());
        Ring.Silence();
    }
    return S_OK;
}

void CVizAudioProcessor::ProcessFormat(KVAAudioFormat* format) {
    if (!format) return;
    if (!IsUsable(*format)) {
        MutexLock lock(Mutex.get());
        Format = *format;
        takesData_ = silenced_ = false;
        return;
    }
    RefPtr<IKVAAudioDelay> delay;
    {
        MutexLock lock(Mutex.get());
        delay = Delay;
    }
    AudioRing ring(LayoutRing(*format, ConfiguredDelay(delay), GetAnalysisFrameRate()));
    MutexLock lock(Mutex.get());
    Format = ringFormat_ = *format;
    takesData_ = true;
    std::swap(Ring, ring);
}

void CVizAudioProcessor::ProcessData(KVAAudioData* in, KVAAudioData*) {
    RefPtr<IKVAAudioDelay> source;
    {
        MutexLock lock(Mutex.get());
        if (Ring.IsEmpty()) return;
        source = Delay;
    }
    void* data = nullptr;
    uint32_t size = 0;
    in->Buffer->GetContents(&data, &size);
    if (!data || size == 0) return;
    const double delay = CurrentDelay(source);

    MutexLock lock(Mutex.get());
    if (!takesData_) {
        // Its bytes mean something else than those in the ring; and the old audio must not go round for ever.
        if (!silenced_) Ring.Silence();
        silenced_ = true;
        return;
    }
    Ring.Write(static_cast<const uint8_t*>(data), size);
    Ring.PlaceReadPos(delay);
}

void CVizAudioProcessor::ReadAnalysisFrame(VizAnalysisFrame& frame, bool wantSpectrum) {
    MutexLock lock(Mutex.get());
    if (!IsAnnounced(Format)) return;
    TakeApart(Ring.CutBlock());
    frame.ChannelCount = Format.Channels;
    frame.SampleRateLow = static_cast<uint16_t>(Format.SamplesPerSecond);
    for (int i = 0; i < kWaveformSamples; ++i) {
        frame.WaveformLeft[i] = static_cast<int8_t>(LeftBlock[i] >> 8);
        frame.WaveformRight[i] = static_cast<int8_t>(RightBlock[i] >> 8);
    }
    if (wantSpectrum) FillSpectrum(frame);
}

void CVizAudioProcessor::TakeApart(const uint8_t* block) {
    const RingLayout& sizes = Ring.Layout();
    if (!block || sizes.Channels == 0) {
        LeftBlock.fill(0);
        RightBlock.fill(0);
        return;
    }
    const uint32_t second = sizes.Channels == kMono ? 0 : sizes.BytesPerSample;
    for (int i = 0; i < kWaveformSamples; ++i, block += sizes.FrameBytes) {
        LeftBlock[i] = SampleAt(block, sizes.BytesPerSample);
        RightBlock[i] = SampleAt(block + second, sizes.BytesPerSample);
    }
}

void CVizAudioProcessor::FillSpectrum(VizAnalysisFrame& frame) {
    const int channels = ringFormat_.Channels;
    if (channels != kMono && channels != kStereo) return;
    const uint32_t rate = ringFormat_.SamplesPerSecond;
    Analysers[0].Analyse(LeftBlock.data(), kWaveformSamples, rate);
    if (channels == kStereo) Analysers[1].Analyse(RightBlock.data(), kWaveformSamples, rate);
    const int32_t* left = Analysers[0].GetSpectrum();
    const int32_t* right = Analysers[channels - 1].GetSpectrum();
    if (!left || !right) return;
    std::copy_n(left, kSpectrumBands, frame.SpectrumLeft);
    std::copy_n(right, kSpectrumBands, frame.SpectrumRight);
}

}  // namespace tdkviz
