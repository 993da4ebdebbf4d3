#include "player/sound/PulseConnection.h"

#include <utility>

namespace tdkplay {
namespace {

constexpr char kClientName[] = "tdkplay";
constexpr auto kOfInterest = static_cast<pa_subscription_mask_t>(
    PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE);

}  // namespace

std::unique_ptr<PulseConnection> PulseConnection::Open() {
    std::unique_ptr<PulseConnection> connection(new PulseConnection);
    if (!connection->Start()) return nullptr;
    return connection;
}

PulseConnection::~PulseConnection() {
    if (!loop_) return;
    Stop();
    if (context_) {
        pa_context_disconnect(context_);
        pa_context_unref(context_);
    }
    pa_threaded_mainloop_free(loop_);
}

bool PulseConnection::Start() {
    loop_ = pa_threaded_mainloop_new();
    if (!loop_ || pa_threaded_mainloop_start(loop_) < 0) return false;
    const Lock lock(*this);
    return Connect();
}

bool PulseConnection::Connect() {
    context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), kClientName);
    if (!context_) return false;
    pa_context_set_state_callback(context_, OnState, this);
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return false;
    while (IsGood()) {
        if (pa_context_get_state(context_) == PA_CONTEXT_READY) return true;
        Wait();
    }
    return false;
}

void PulseConnection::Await(pa_operation* operation) const {
    if (!operation) return;
    while (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) Wait();
    pa_operation_unref(operation);
}

void PulseConnection::Forget(pa_operation* operation) {
    if (operation) pa_operation_unref(operation);
}

void PulseConnection::Report(Events events) {
    events_ = std::move(events);
    if (!events_.Changed) return;
    pa_context_set_subscribe_callback(context_, OnChange, this);
    Forget(pa_context_subscribe(context_, kOfInterest, nullptr, nullptr));
}

void PulseConnection::Stop() {
    pa_threaded_mainloop_stop(loop_);
    events_ = {};
}

void PulseConnection::OnState(pa_context*, void* self) {
    const auto* const connection = static_cast<PulseConnection*>(self);
    if (!connection->IsGood() && connection->events_.Lost) connection->events_.Lost();
    connection->Signal();
}

void PulseConnection::OnChange(pa_context*, pa_subscription_event_type_t event, uint32_t index, void* self) {
    const auto* const connection = static_cast<PulseConnection*>(self);
    if (connection->events_.Changed) connection->events_.Changed(event, index);
}

}  // namespace tdkplay
