// Tells when the device that a stream should be on becomes another one: the default output changes, or the chosen
// device is plugged in.
#pragma once

#include <functional>
#include <string>

#include "player/sound/PulseConnection.h"

namespace tdkplay {

// All that is reported comes on the connection's thread with its lock held.
class PulseDeviceWatch {
public:
    struct Events {
        // The default output was `former` and is now `now`.
        std::function<void(const std::string& former, const std::string& now)> DefaultChanged;
        std::function<void()> ChosenCame;
    };

    // `chosen` is the name of the chosen output or input, empty for none; `defaultOutput` the default at this time.
    // With the lock of the connection held, which outlives this object and must be stopped before its end.
    PulseDeviceWatch(const PulseConnection& connection, std::string chosen, std::string defaultOutput, Events events);
    PulseDeviceWatch(const PulseDeviceWatch&) = delete;
    PulseDeviceWatch& operator=(const PulseDeviceWatch&) = delete;

private:
    void OnNewDevice(const char* name) const;
    static void OnChange(pa_context* context, pa_subscription_event_type_t event, uint32_t index, void* self);
    static void OnServer(pa_context* context, const pa_server_info* server, void* self);
    static void OnSink(pa_context* context, const pa_sink_info* sink, int isEnd, void* self);
    static void OnSource(pa_context* context, const pa_source_info* source, int isEnd, void* self);

    const std::string chosen_;
    std::string defaultOutput_;
    const Events events_;
};

}  // namespace tdkplay
