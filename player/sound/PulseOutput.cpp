#include "player/sound/PulseOutput.h"

#include "player/base/ExitCode.h"
#include "player/sound/PulseDevices.h"

namespace tdkplay {
namespace {

// The server asks for more whenever this part of the lead has been heard.
constexpr double kRequestPart = 0.25;
constexpr double kMicroseconds = 1e6;

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

PulseOutput::PulseOutput(const PcmFormat& format, HANDLE wake) : format_(format), wake_(wake) {}

PulseOutput::~PulseOutput() {
    if (connection_) connection_->Stop();
    if (!stream_) return;
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(stream_);
}

bool PulseOutput::Connect(const OutputRequest& request) {
    connection_ = PulseConnection::Open();
    if (!connection_) return false;
    const PulseConnection::Lock lock(*connection_);
    const std::vector<PulseDevice> devices = ListPulseDevices(*connection_);
    if (!ConnectStream(ChooseDevice(request, devices))) return false;
    const std::optional<PulseDevice> usual = FindPulseDevice(devices, {});
    Watch(request.Device, usual ? usual->Name : "");
    ready_ = connection_->IsGood();
    return ready_;
}

void PulseOutput::Watch(const std::string& chosen, const std::string& defaultOutput) {
    watch_.emplace(*connection_, chosen, defaultOutput,
                   PulseDeviceWatch::Events{[this] { Fail(); },
                                            [this, chosen](const std::string& former, const std::string& now) {
                                                // One that the user has put somewhere else stays there.
                                                if (CurrentDevice() == former && former != chosen) MoveTo(now);
                                            },
                                            [this, chosen] { MoveTo(chosen); }});
}

bool PulseOutput::ConnectStream(const std::string& device) {
    const pa_sample_spec spec = {PA_SAMPLE_S16NE, format_.Rate, static_cast<uint8_t>(format_.Channels)};
    if (!pa_sample_spec_valid(&spec)) return false;
    stream_ = pa_stream_new(connection_->Context(), "Music", &spec, nullptr);
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
        connection_->Wait();
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

double PulseOutput::Latency() {
    const PulseConnection::Lock lock(*connection_);
    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(stream_, &latency, &isNegative) < 0 || isNegative) return 0.0;
    return static_cast<double>(latency) / kMicroseconds;
}

void PulseOutput::SetLead(double seconds) {
    const PulseConnection::Lock lock(*connection_);
    const pa_buffer_attr buffering = Buffering(seconds);
    PulseConnection::Forget(pa_stream_set_buffer_attr(stream_, &buffering, nullptr, nullptr));
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

void PulseOutput::Fail() {
    failed_ = true;
    SetEvent(wake_);
}

void PulseOutput::OnStreamState(pa_stream* stream, void* self) {
    auto* output = static_cast<PulseOutput*>(self);
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream)) && output->ready_) output->Fail();
    output->connection_->Signal();
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
