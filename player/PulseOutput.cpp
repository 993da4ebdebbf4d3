#include "player/PulseOutput.h"

#include "player/PulseSinks.h"

namespace tdkplay {
namespace {

constexpr char kClientName[] = "tdkplay";
// The server asks for more whenever this part of the lead has been heard.
constexpr double kRequestPart = 0.25;
constexpr double kMicroseconds = 1e6;

class LoopLock {
public:
    explicit LoopLock(pa_threaded_mainloop* loop) : loop_(loop) { pa_threaded_mainloop_lock(loop_); }
    ~LoopLock() { pa_threaded_mainloop_unlock(loop_); }
    LoopLock(const LoopLock&) = delete;
    LoopLock& operator=(const LoopLock&) = delete;

private:
    pa_threaded_mainloop* loop_;
};

}  // namespace

std::unique_ptr<AudioOutput> PulseOutput::Open(const OutputRequest& request, const PcmFormat& format, HANDLE wake) {
    std::unique_ptr<PulseOutput> output(new PulseOutput(format, wake));
    if (!output->Connect(request)) return nullptr;
    return output;
}

PulseOutput::PulseOutput(const PcmFormat& format, HANDLE wake) : format_(format), wake_(wake) {}

PulseOutput::~PulseOutput() {
    if (!mainLoop_) return;
    pa_threaded_mainloop_stop(mainLoop_);
    if (stream_) {
        pa_stream_disconnect(stream_);
        pa_stream_unref(stream_);
    }
    if (context_) {
        pa_context_disconnect(context_);
        pa_context_unref(context_);
    }
    pa_threaded_mainloop_free(mainLoop_);
}

bool PulseOutput::Connect(const OutputRequest& request) {
    mainLoop_ = pa_threaded_mainloop_new();
    if (!mainLoop_ || pa_threaded_mainloop_start(mainLoop_) < 0) return false;
    const LoopLock lock(mainLoop_);
    if (!ConnectContext()) return false;
    ready_ = ConnectStream(ChooseSink(mainLoop_, context_, request));
    return ready_;
}

bool PulseOutput::ConnectContext() {
    context_ = pa_context_new(pa_threaded_mainloop_get_api(mainLoop_), kClientName);
    if (!context_) return false;
    pa_context_set_state_callback(context_, OnContextState, this);
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return false;
    while (PA_CONTEXT_IS_GOOD(pa_context_get_state(context_))) {
        if (pa_context_get_state(context_) == PA_CONTEXT_READY) return true;
        pa_threaded_mainloop_wait(mainLoop_);
    }
    return false;
}

bool PulseOutput::ConnectStream(const std::string& device) {
    const pa_sample_spec spec = {PA_SAMPLE_S16NE, format_.Rate, static_cast<uint8_t>(format_.Channels)};
    if (!pa_sample_spec_valid(&spec)) return false;
    stream_ = pa_stream_new(context_, "Music", &spec, nullptr);
    if (!stream_) return false;
    pa_stream_set_state_callback(stream_, OnStreamState, this);
    pa_stream_set_write_callback(stream_, OnRoom, this);
    pa_stream_set_moved_callback(stream_, OnMoved, this);

    const pa_buffer_attr buffering = Buffering(kUsualLead);
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY |
                                                      PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING);
    const char* const sink = device.empty() ? nullptr : device.c_str();
    if (pa_stream_connect_playback(stream_, sink, &buffering, flags, nullptr, nullptr) < 0) return false;
    while (PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) {
        if (pa_stream_get_state(stream_) == PA_STREAM_READY) return true;
        pa_threaded_mainloop_wait(mainLoop_);
    }
    return false;
}

pa_buffer_attr PulseOutput::Buffering(double lead) const {
    constexpr auto kServerDecides = static_cast<uint32_t>(-1);
    const double bytesPerSecond = static_cast<double>(format_.FrameBytes()) * format_.Rate;
    const auto frames = [&](double seconds) {
        return static_cast<uint32_t>(seconds * bytesPerSecond) / format_.FrameBytes() * format_.FrameBytes();
    };
    pa_buffer_attr buffering = {};
    buffering.maxlength = kServerDecides;
    buffering.prebuf = kServerDecides;
    buffering.fragsize = kServerDecides;
    buffering.tlength = frames(lead);
    buffering.minreq = frames(lead * kRequestPart);
    return buffering;
}

size_t PulseOutput::Room() {
    const LoopLock lock(mainLoop_);
    const size_t bytes = pa_stream_writable_size(stream_);
    return bytes == static_cast<size_t>(-1) ? 0 : bytes / format_.FrameBytes();
}

void PulseOutput::Write(const int16_t* samples, size_t frames) {
    const LoopLock lock(mainLoop_);
    pa_stream_write(stream_, samples, frames * format_.FrameBytes(), nullptr, 0, PA_SEEK_RELATIVE);
}

double PulseOutput::Latency() {
    const LoopLock lock(mainLoop_);
    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(stream_, &latency, &isNegative) < 0 || isNegative) return 0.0;
    return static_cast<double>(latency) / kMicroseconds;
}

void PulseOutput::SetLead(double seconds) {
    const LoopLock lock(mainLoop_);
    const pa_buffer_attr buffering = Buffering(seconds);
    Forget(pa_stream_set_buffer_attr(stream_, &buffering, nullptr, nullptr));
}

void PulseOutput::SetPaused(bool paused) {
    const LoopLock lock(mainLoop_);
    Forget(pa_stream_cork(stream_, paused ? 1 : 0, nullptr, nullptr));
}

void PulseOutput::Flush() {
    const LoopLock lock(mainLoop_);
    drained_ = false;
    Forget(pa_stream_flush(stream_, nullptr, nullptr));
}

void PulseOutput::BeginDrain() {
    const LoopLock lock(mainLoop_);
    drained_ = false;
    Forget(pa_stream_drain(stream_, OnDrained, this));
}

void PulseOutput::Forget(pa_operation* operation) {
    if (operation) pa_operation_unref(operation);
}

void PulseOutput::OnContextState(pa_context* context, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context)) && output->ready_) {
        output->failed_ = true;
        SetEvent(output->wake_);
    }
    pa_threaded_mainloop_signal(output->mainLoop_, 0);
}

void PulseOutput::OnStreamState(pa_stream* stream, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream)) && output->ready_) {
        output->failed_ = true;
        SetEvent(output->wake_);
    }
    pa_threaded_mainloop_signal(output->mainLoop_, 0);
}

void PulseOutput::OnRoom(pa_stream*, size_t, void* self) {
    SetEvent(static_cast<PulseOutput*>(self)->wake_);
}

void PulseOutput::OnMoved(pa_stream*, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    output->moved_ = true;
    SetEvent(output->wake_);
}

void PulseOutput::OnDrained(pa_stream*, int, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    output->drained_ = true;
    SetEvent(output->wake_);
}

}  // namespace tdkplay
