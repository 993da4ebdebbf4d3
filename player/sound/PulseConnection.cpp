#include "player/sound/PulseConnection.h"

namespace tdkplay {
namespace {

constexpr char kClientName[] = "tdkplay";

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

void PulseConnection::Stop() {
    pa_threaded_mainloop_stop(loop_);
    lost_ = {};
}

void PulseConnection::OnState(pa_context*, void* self) {
    const auto* const connection = static_cast<PulseConnection*>(self);
    if (!connection->IsGood() && connection->lost_) connection->lost_();
    connection->Signal();
}

}  // namespace tdkplay
