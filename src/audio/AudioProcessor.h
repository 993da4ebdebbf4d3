// CVizAudioProcessor: keeps the delivered audio until it is heard and cuts each frame's block from it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include <tdkviz/analysis_frame.h>

#include "src/audio/AudioHook.h"
#include "src/audio/AudioRing.h"
#include "src/audio/SpectrumAnalyser.h"
#include "src/support/Mutex.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

// The delay in seconds when the host reports none; sizes the ring at the next format. Text of the host
// becomes this value, so it may be anything that a double can be. [any]
extern Relaxed<double> AudioSyncFactor;

// The host delivers audio ahead of time. It goes into a ring, and every delivery places the read position
// as far behind the end of the delivery as the host says its delay is; each frame cuts 512 sample frames
// there and moves on by one frame period. Without a delay (none reported, or 0) the read position is the
// oldest audio in the ring: the ring's length is the delay then.
//
// Sample formats: 16 bits; 8 bits, unsigned, as 16-bit samples 256 times as large. Of more than two
// channels the first two count. A format that can't be read is noted, and its audio gives silence.
class CVizAudioProcessor final : public CKVAAudioHook {
public:
    // `hostContext` may be null. [host]
    explicit CVizAudioProcessor(IUnknown* hostContext);
    ~CVizAudioProcessor() override;

    // Ends a processor whose owner goes: withdraws the hook and frees the audio, but keeps the object itself
    // aside for hosts that go on delivering to it, the latest few of them until the library goes. [host]
    static void Retire(std::unique_ptr<CVizAudioProcessor> processor);

    // The host has a new playback engine (may be null) [borrowed]. What was delivered is forgotten; the
    // ring grows if the new engine's configured delay is longer. [host]
    void SetPlaybackEngine(IUnknown* engine);

    // Fills waveform, channel count and rate, and with `wantSpectrum` the spectrum of mono or stereo
    // audio; what it doesn't fill stays. Leaves `frame` alone before the first format. Allocates nothing
    // unless the rate or the frame rate has changed. [frame]
    void ReadAnalysisFrame(VizAnalysisFrame& frame, bool wantSpectrum);

    // Whether the host lets audio flow; true until it says otherwise. [any]
    bool IsAudioFlowing() const { return AudioFlowing != 0; }
    void SetAudioFlowing(bool flowing) { AudioFlowing = flowing ? 1 : 0; }

    // ITKAudioHook. Silence takes the place of what was delivered if no audio flows. [host]
    HRESULT OnAudioState(uint32_t flags) override;

protected:
    void ProcessFormat(KVAAudioFormat* format) override;
    void ProcessData(KVAAudioData* in, KVAAudioData* out) override;

private:
    void TakeApart(const uint8_t* block) TDKVIZ_REQUIRES(*Mutex);
    void FillSpectrum(VizAnalysisFrame& frame) TDKVIZ_REQUIRES(*Mutex);

    Relaxed<int32_t> AudioFlowing{1};
    std::unique_ptr<KVAMutex> Mutex;

    // The last format announced, all zero until then, and whether its data goes into the ring.
    KVAAudioFormat Format TDKVIZ_GUARDED_BY(*Mutex){};
    bool takesData_ TDKVIZ_GUARDED_BY(*Mutex) = false;
    bool silenced_ TDKVIZ_GUARDED_BY(*Mutex) = false;  // since takesData_ was cleared
    // The format of what the ring holds: the last usable one.
    KVAAudioFormat ringFormat_ TDKVIZ_GUARDED_BY(*Mutex){};
    AudioRing Ring TDKVIZ_GUARDED_BY(*Mutex);
    // The block of the current frame by channels; equal in mono.
    std::array<int16_t, kWaveformSamples> LeftBlock TDKVIZ_GUARDED_BY(*Mutex){};
    std::array<int16_t, kWaveformSamples> RightBlock TDKVIZ_GUARDED_BY(*Mutex){};
    std::array<CSpectrumAnalyser, 2> Analysers TDKVIZ_GUARDED_BY(*Mutex);
    // May be null. Calls go through a reference taken under the lock, with the lock let go.
    RefPtr<IKVAAudioDelay> Delay TDKVIZ_GUARDED_BY(*Mutex);
};

}  // namespace tdkviz
