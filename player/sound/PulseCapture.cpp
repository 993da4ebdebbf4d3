#include "player/sound/PulseCapture.h"

#include <algorithm>

#include "player/base/ExitCode.h"
#include "player/sound/AudioPump.h"

namespace tdkplay {
namespace {

constexpr double kMicroseconds = 1e6;
// Listening keeps no device awake. A server that moves the stream from a device that is gone would take a microphone.
constexpr auto kFlags = static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY |
                                                       PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING |
                                                       PA_STREAM_DONT_MOVE | PA_STREAM_DONT_INHIBIT_AUTO_SUSPEND);

std::optional<PulseDevice> ChooseDevice(const CaptureRequest& request, const std::vector<PulseDevice>& devices) {
    std::optional<PulseDevice> device = FindPulseDevice(devices, request.Device);
    if (!device && request.MustHaveDevice)
        throw PlayerError(ExitCode::kNoSound, "nothing to capture is called \"" + request.Device +
                                                  "\"; there are: " + PulseDeviceNames(devices, true));
    return device ? device : FindPulseDevice(devices, {});
}

}  // namespace

std::unique_ptr<PulseCapture> PulseCapture::Open(const CaptureRequest& request, const PcmFormat& format, HANDLE wake) {
    std::unique_ptr<PulseCapture> capture(new PulseCapture(format, wake));
    if (!capture->Connect(request)) return nullptr;
    return capture;
}

PulseCapture::PulseCapture(const PcmFormat& format, HANDLE wake) : format_(format), wake_(wake) {}

PulseCapture::~PulseCapture() {
    if (connection_) connection_->Stop();
    if (!stream_) return;
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(stream_);
}

bool PulseCapture::Connect(const CaptureRequest& request) {
    connection_ = PulseConnection::Open();
    if (!connection_) return false;
    const PulseConnection::Lock lock(*connection_);
    const std::vector<PulseDevice> devices = ListPulseDevices(*connection_);
    const std::optional<PulseDevice> device = ChooseDevice(request, devices);
    if (!device) return false;
    device_ = *device;
    if (!ConnectStream()) return false;
    const std::optional<PulseDevice> usual = FindPulseDevice(devices, {});
    Watch(request.Device, usual ? usual->Name : "");
    return connection_->IsGood();
}

void PulseCapture::Watch(const std::string& chosen, const std::string& defaultOutput) {
    const bool followsDefault = device_.Name != chosen;
    watch_.emplace(*connection_, chosen, defaultOutput,
                   PulseDeviceWatch::Events{[this] { Fail(); },
                                            [this, followsDefault](const std::string&, const std::string&) {
                                                if (followsDefault) Fail();
                                            },
                                            [this, followsDefault] {
                                                if (followsDefault) Fail();
                                            }});
}

bool PulseCapture::ConnectStream() {
    const pa_sample_spec spec = {PA_SAMPLE_S16NE, format_.Rate, static_cast<uint8_t>(format_.Channels)};
    stream_ = pa_stream_new(connection_->Context(), "Pictures", &spec, nullptr);
    if (!stream_) return false;
    pa_stream_set_state_callback(stream_, OnStreamState, this);
    pa_stream_set_read_callback(stream_, OnAudio, this);
    pa_stream_set_suspended_callback(stream_, OnSuspended, this);
    const pa_buffer_attr buffering = Buffering(kBlockSeconds);
    if (pa_stream_connect_record(stream_, device_.Source.c_str(), &buffering, kFlags) < 0) return false;
    while (pa_stream_get_state(stream_) != PA_STREAM_READY) {
        if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) return false;
        connection_->Wait();
    }
    suspended_ = pa_stream_is_suspended(stream_) == 1;
    connection_->Await(pa_stream_update_timing_info(stream_, OnTiming, this));
    return true;
}

pa_buffer_attr PulseCapture::Buffering(double piece) const {
    constexpr auto kServerDecides = static_cast<uint32_t>(-1);
    pa_buffer_attr buffering = {};
    buffering.maxlength = buffering.tlength = buffering.prebuf = buffering.minreq = kServerDecides;
    buffering.fragsize = static_cast<uint32_t>(piece * format_.Rate) * format_.FrameBytes();
    return buffering;
}

void PulseCapture::Fetch(std::vector<int16_t>& samples) {
    const PulseConnection::Lock lock(*connection_);
    for (;;) {
        const void* data = nullptr;
        size_t bytes = 0;
        if (pa_stream_peek(stream_, &data, &bytes) < 0 || bytes == 0) return;
        const size_t count = bytes / sizeof(int16_t);
        const auto* const piece = static_cast<const int16_t*>(data);
        if (piece)
            samples.insert(samples.end(), piece, piece + count);
        else  // a hole, which stands for audio that was lost
            samples.insert(samples.end(), count, 0);
        pa_stream_drop(stream_);
    }
}

// For a monitor the library takes off the time that the output still needs, so that what is yet to be heard is a
// negative latency of the record stream.
double PulseCapture::Latency() {
    const PulseConnection::Lock lock(*connection_);
    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(stream_, &latency, &isNegative) < 0) return 0.0;
    const double seconds = static_cast<double>(latency) / kMicroseconds;
    return isNegative ? seconds : -seconds;
}

void PulseCapture::SetPiece(double seconds) {
    const PulseConnection::Lock lock(*connection_);
    const pa_buffer_attr buffering = Buffering(seconds);
    PulseConnection::Forget(pa_stream_set_buffer_attr(stream_, &buffering, nullptr, nullptr));
}

void PulseCapture::SetPaused(bool paused) {
    const PulseConnection::Lock lock(*connection_);
    PulseConnection::Forget(pa_stream_cork(stream_, paused ? 1 : 0, nullptr, nullptr));
    PulseConnection::Forget(pa_stream_flush(stream_, nullptr, nullptr));
}

void PulseCapture::Fail() {
    failed_ = true;
    SetEvent(wake_);
}

void PulseCapture::OnStreamState(pa_stream* stream, void* self) {
    auto* const capture = static_cast<PulseCapture*>(self);
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) capture->Fail();
    capture->connection_->Signal();
}

void PulseCapture::OnAudio(pa_stream*, size_t, void* self) {
    SetEvent(static_cast<PulseCapture*>(self)->wake_);
}

void PulseCapture::OnSuspended(pa_stream* stream, void* self) {
    auto* const capture = static_cast<PulseCapture*>(self);
    capture->suspended_ = pa_stream_is_suspended(stream) == 1;
    SetEvent(capture->wake_);
}

void PulseCapture::OnTiming(pa_stream*, int, void* self) {
    static_cast<PulseCapture*>(self)->connection_->Signal();
}

}  // namespace tdkplay
