#include "player/sound/PulseStream.h"

#include <utility>

namespace tdkplay {
namespace {

constexpr double kMicroseconds = 1e6;

}  // namespace

PulseStream::~PulseStream() {
    Stop();
    if (!stream_) return;
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(stream_);
}

bool PulseStream::Reach() {
    connection_ = PulseConnection::Open();
    return connection_ != nullptr;
}

void PulseStream::Stop() {
    if (connection_) connection_->Stop();
}

bool PulseStream::Make(const char* name) {
    const pa_sample_spec spec = {PA_SAMPLE_S16NE, format_.Rate, static_cast<uint8_t>(format_.Channels)};
    if (!pa_sample_spec_valid(&spec)) return false;
    stream_ = pa_stream_new(connection_->Context(), name, &spec, nullptr);
    if (!stream_) return false;
    pa_stream_set_state_callback(stream_, OnState, this);
    pa_stream_set_read_callback(stream_, OnData, this);
    pa_stream_set_write_callback(stream_, OnData, this);
    return true;
}

bool PulseStream::AwaitReady() {
    while (PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) {
        if (pa_stream_get_state(stream_) == PA_STREAM_READY) return true;
        connection_->Wait();
    }
    return false;
}

bool PulseStream::Watch(const std::string& chosen, const std::vector<PulseDevice>& devices,
                        PulseDeviceWatch::Events events) {
    const std::optional<PulseDevice> usual = FindPulseDevice(devices, {});
    connection_->ReportLoss([this] { Fail(); });
    watch_.emplace(*connection_, chosen, usual ? usual->Name : "", std::move(events));
    return connection_->IsGood();
}

pa_buffer_attr PulseStream::ServersBuffering() {
    constexpr auto kServerDecides = static_cast<uint32_t>(-1);
    return {kServerDecides, kServerDecides, kServerDecides, kServerDecides, kServerDecides};
}

double PulseStream::SignedLatency() const {
    const PulseConnection::Lock lock(*connection_);
    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(stream_, &latency, &isNegative) < 0) return 0.0;
    const double seconds = static_cast<double>(latency) / kMicroseconds;
    return isNegative ? -seconds : seconds;
}

void PulseStream::SetBuffering(const pa_buffer_attr& buffering) {
    const PulseConnection::Lock lock(*connection_);
    PulseConnection::Forget(pa_stream_set_buffer_attr(stream_, &buffering, nullptr, nullptr));
}

void PulseStream::Fail() {
    failed_ = true;
    Wake();
}

void PulseStream::OnState(pa_stream* stream, void* self) {
    auto* const own = static_cast<PulseStream*>(self);
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) own->Fail();
    own->connection_->Signal();
}

void PulseStream::OnData(pa_stream*, size_t, void* self) {
    static_cast<PulseStream*>(self)->Wake();
}

}  // namespace tdkplay
