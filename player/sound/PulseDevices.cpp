#include "player/sound/PulseDevices.h"

#include <algorithm>

#include "player/base/Joined.h"

namespace tdkplay {
namespace {

struct Listing {
    const PulseConnection& Connection;
    std::vector<PulseDevice> Devices;
    std::string DefaultOutput;
    std::string DefaultInput;
};

std::string TextOf(const char* text) {
    return text ? text : "";
}

void OnServer(pa_context*, const pa_server_info* server, void* data) {
    auto* const listing = static_cast<Listing*>(data);
    if (server) {
        listing->DefaultOutput = TextOf(server->default_sink_name);
        listing->DefaultInput = TextOf(server->default_source_name);
    }
    listing->Connection.Signal();
}

void OnSink(pa_context*, const pa_sink_info* sink, int, void* data) {
    auto* const listing = static_cast<Listing*>(data);
    if (!sink) return listing->Connection.Signal();  // the end of the list, or an error
    listing->Devices.push_back({sink->name, TextOf(sink->description), TextOf(sink->monitor_source_name), true,
                                listing->DefaultOutput == sink->name});
}

void OnSource(pa_context*, const pa_source_info* source, int, void* data) {
    auto* const listing = static_cast<Listing*>(data);
    if (!source) return listing->Connection.Signal();
    if (source->monitor_of_sink != PA_INVALID_INDEX) return;
    listing->Devices.push_back(
        {source->name, TextOf(source->description), source->name, false, listing->DefaultInput == source->name});
}

}  // namespace

std::vector<PulseDevice> ListPulseDevices(const PulseConnection& connection) {
    Listing listing = {connection, {}, {}, {}};
    pa_context* const context = connection.Context();
    connection.Await(pa_context_get_server_info(context, OnServer, &listing));
    connection.Await(pa_context_get_sink_info_list(context, OnSink, &listing));
    connection.Await(pa_context_get_source_info_list(context, OnSource, &listing));
    return listing.Devices;
}

std::optional<PulseDevice> FindPulseDevice(const std::vector<PulseDevice>& devices, const std::string& name) {
    const auto found = std::find_if(devices.begin(), devices.end(), [&name](const PulseDevice& device) {
        return name.empty() ? device.IsOutput && device.IsDefault : device.Name == name;
    });
    return found == devices.end() ? std::nullopt : std::optional(*found);
}

std::string PulseDeviceNames(const std::vector<PulseDevice>& devices, bool withInputs) {
    std::vector<std::string> names;
    for (const PulseDevice& device : devices)
        if (device.IsOutput || withInputs) names.push_back(device.Name);
    return names.empty() ? "none" : Joined(names, ", ");
}

}  // namespace tdkplay
