#include "player/sound/PulseDeviceWatch.h"

#include <utility>

namespace tdkplay {
namespace {

constexpr auto kOfInterest = static_cast<pa_subscription_mask_t>(
    PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE);

}  // namespace

PulseDeviceWatch::PulseDeviceWatch(const PulseConnection& connection, std::string chosen, std::string defaultOutput,
                                   Events events)
    : chosen_(std::move(chosen)), defaultOutput_(std::move(defaultOutput)), events_(std::move(events)) {
    pa_context_set_subscribe_callback(connection.Context(), OnChange, this);
    PulseConnection::Forget(pa_context_subscribe(connection.Context(), kOfInterest, nullptr, nullptr));
    // What changed before the server knew that somebody listens.
    PulseConnection::Forget(pa_context_get_server_info(connection.Context(), OnServer, this));
}

void PulseDeviceWatch::OnNewDevice(const char* name) const {
    if (chosen_ == name) events_.ChosenCame();
}

void PulseDeviceWatch::OnChange(pa_context* context, pa_subscription_event_type_t event, uint32_t index, void* self) {
    const bool isNew = (event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_NEW &&
                       !static_cast<PulseDeviceWatch*>(self)->chosen_.empty();
    switch (event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK) {
        case PA_SUBSCRIPTION_EVENT_SERVER:
            return PulseConnection::Forget(pa_context_get_server_info(context, OnServer, self));
        case PA_SUBSCRIPTION_EVENT_SINK:
            if (isNew) PulseConnection::Forget(pa_context_get_sink_info_by_index(context, index, OnSink, self));
            return;
        case PA_SUBSCRIPTION_EVENT_SOURCE:
            if (isNew) PulseConnection::Forget(pa_context_get_source_info_by_index(context, index, OnSource, self));
            return;
        default:
            return;
    }
}

void PulseDeviceWatch::OnServer(pa_context*, const pa_server_info* server, void* self) {
    auto* const watch = static_cast<PulseDeviceWatch*>(self);
    if (!server || !server->default_sink_name || watch->defaultOutput_ == server->default_sink_name) return;
    const std::string former = std::exchange(watch->defaultOutput_, server->default_sink_name);
    watch->events_.DefaultChanged(former, watch->defaultOutput_);
}

void PulseDeviceWatch::OnSink(pa_context*, const pa_sink_info* sink, int, void* self) {
    if (sink) static_cast<PulseDeviceWatch*>(self)->OnNewDevice(sink->name);
}

void PulseDeviceWatch::OnSource(pa_context*, const pa_source_info* source, int, void* self) {
    if (source) static_cast<PulseDeviceWatch*>(self)->OnNewDevice(source->name);
}

}  // namespace tdkplay
