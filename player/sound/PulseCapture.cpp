#include "player/sound/PulseCapture.h"

#include "player/base/ExitCode.h"
#include "player/sound/AudioPump.h"

namespace tdkplay {
namespace {

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

bool PulseCapture::Connect(const CaptureRequest& request) {
    if (!Reach()) return false;
    const PulseConnection::Lock lock(*connection_);
    const std::vector<PulseDevice> devices = ListPulseDevices(*connection_);
    const std::optional<PulseDevice> device = ChooseDevice(request, devices);
    if (!device) return false;
    device_ = *device;
    if (!ConnectStream()) return false;
    const auto leave = [this, followsDefault = device_.Name != request.Device] {
        if (followsDefault) Fail();
    };
    return Watch(request.Device, devices, {[leave](const std::string&, const std::string&) { leave(); }, leave});
}

bool PulseCapture::ConnectStream() {
    if (!Make("Pictures")) return false;
    pa_stream_set_suspended_callback(stream_, OnSuspended, this);
    const pa_buffer_attr buffering = Buffering(kBlockSeconds);
    if (pa_stream_connect_record(stream_, device_.Source.c_str(), &buffering, kFlags) < 0) return false;
    if (!AwaitReady()) return false;
    suspended_ = pa_stream_is_suspended(stream_) == 1;
    connection_->Await(pa_stream_update_timing_info(stream_, OnTiming, this));
    return true;
}

pa_buffer_attr PulseCapture::Buffering(double piece) const {
    pa_buffer_attr buffering = ServersBuffering();
    buffering.fragsize = Bytes(piece);
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

void PulseCapture::SetPaused(bool paused) {
    const PulseConnection::Lock lock(*connection_);
    PulseConnection::Forget(pa_stream_cork(stream_, paused ? 1 : 0, nullptr, nullptr));
    PulseConnection::Forget(pa_stream_flush(stream_, nullptr, nullptr));
}

void PulseCapture::OnSuspended(pa_stream* stream, void* self) {
    auto* const capture = static_cast<PulseCapture*>(self);
    capture->suspended_ = pa_stream_is_suspended(stream) == 1;
    capture->Wake();
}

void PulseCapture::OnTiming(pa_stream*, int, void* self) {
    static_cast<PulseCapture*>(self)->connection_->Signal();
}

}  // namespace tdkplay
