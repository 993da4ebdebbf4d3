#include "player/sound/PulseOutput.h"

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

// The server asks for more whenever this part of the lead has been heard.
constexpr double kRequestPart = 0.25;

// The device to ask for, empty for the server's own choice.
std::string ChooseDevice(const OutputRequest& request, const std::vector<PulseDevice>& devices) {
    if (request.Device.empty()) return {};
    const std::optional<PulseDevice> device = FindPulseDevice(devices, request.Device);
    if (device && device->IsOutput) return request.Device;
    if (!request.MustHaveDevice) return {};
    throw PlayerError(ExitCode::kNoSound,
                      "no sound device \"" + request.Device + "\"; there are: " + PulseDeviceNames(devices, false));
}

}  // namespace

std::unique_ptr<AudioOutput> PulseOutput::Open(const OutputRequest& request, const PcmFormat& format, HANDLE wake) {
    std::unique_ptr<PulseOutput> output(new PulseOutput(format, wake));
    if (!output->Connect(request)) return nullptr;
    return output;
}

bool PulseOutput::Connect(const OutputRequest& request) {
    if (!Reach()) return false;
    const PulseConnection::Lock lock(*connection_);
    const std::vector<PulseDevice> devices = ListPulseDevices(*connection_);
    if (!ConnectStream(ChooseDevice(request, devices))) return false;
    const std::string& chosen = request.Device;
    return Watch(chosen, devices,
                 {[this, chosen](const std::string& former, const std::string& now) {
                      // One that the user has put somewhere else stays there.
                      if (CurrentDevice() == former && former != chosen) MoveTo(now);
                  },
                  [this, chosen] { MoveTo(chosen); }});
}

bool PulseOutput::ConnectStream(const std::string& device) {
    if (!Make("Music")) return false;
    pa_stream_set_moved_callback(stream_, OnMoved, this);
    const pa_buffer_attr buffering = Buffering(kUsualLead);
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY |
                                                      PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING);
    const char* const sink = device.empty() ? nullptr : device.c_str();
    return pa_stream_connect_playback(stream_, sink, &buffering, flags, nullptr, nullptr) >= 0 && AwaitReady();
}

pa_buffer_attr PulseOutput::Buffering(double lead) const {
    pa_buffer_attr buffering = ServersBuffering();
    buffering.tlength = Bytes(lead);
    buffering.minreq = Bytes(lead * kRequestPart);
    return buffering;
}

std::string PulseOutput::DeviceName() {
    const PulseConnection::Lock lock(*connection_);
    return CurrentDevice();
}

std::string PulseOutput::CurrentDevice() const {
    const char* const name = pa_stream_get_device_name(stream_);
    return name ? name : "";
}

void PulseOutput::MoveTo(const std::string& device) {
    if (CurrentDevice() == device) return;
    PulseConnection::Forget(pa_context_move_sink_input_by_name(connection_->Context(), pa_stream_get_index(stream_),
                                                               device.c_str(), nullptr, nullptr));
}

size_t PulseOutput::Room() {
    const PulseConnection::Lock lock(*connection_);
    const size_t bytes = pa_stream_writable_size(stream_);
    return bytes == static_cast<size_t>(-1) ? 0 : bytes / format_.FrameBytes();
}

void PulseOutput::Write(const int16_t* samples, size_t frames) {
    const PulseConnection::Lock lock(*connection_);
    pa_stream_write(stream_, samples, frames * format_.FrameBytes(), nullptr, 0, PA_SEEK_RELATIVE);
}

void PulseOutput::SetPaused(bool paused) {
    const PulseConnection::Lock lock(*connection_);
    PulseConnection::Forget(pa_stream_cork(stream_, paused ? 1 : 0, nullptr, nullptr));
}

void PulseOutput::Flush() {
    const PulseConnection::Lock lock(*connection_);
    drained_ = false;
    PulseConnection::Forget(pa_stream_flush(stream_, nullptr, nullptr));
}

void PulseOutput::BeginDrain() {
    const PulseConnection::Lock lock(*connection_);
    drained_ = false;
    PulseConnection::Forget(pa_stream_drain(stream_, OnDrained, this));
}

void PulseOutput::OnMoved(pa_stream*, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    output->moved_ = true;
    output->Wake();
}

void PulseOutput::OnDrained(pa_stream*, int, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    output->drained_ = true;
    output->Wake();
}

}  // namespace tdkplay
