#include "player/PulseSinks.h"

#include <algorithm>
#include <vector>

#include "player/ExitCode.h"

namespace tdkplay {
namespace {

struct Listing {
    pa_threaded_mainloop* Loop;
    std::vector<std::string> Names;
};

void OnSink(pa_context*, const pa_sink_info* sink, int, void* data) {
    auto* const listing = static_cast<Listing*>(data);
    if (sink)
        listing->Names.emplace_back(sink->name);
    else  // the end of the list, or an error
        pa_threaded_mainloop_signal(listing->Loop, 0);
}

std::vector<std::string> ListSinks(pa_threaded_mainloop* loop, pa_context* context) {
    Listing listing = {loop, {}};
    pa_operation* const operation = pa_context_get_sink_info_list(context, OnSink, &listing);
    if (!operation) return {};
    // A server that goes away ends the operation, and the context's state callback the wait.
    while (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) pa_threaded_mainloop_wait(loop);
    pa_operation_unref(operation);
    return listing.Names;
}

std::string Join(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "none" : text;
}

}  // namespace

std::string ChooseSink(pa_threaded_mainloop* loop, pa_context* context, const OutputRequest& request) {
    if (request.Device.empty()) return {};
    const std::vector<std::string> names = ListSinks(loop, context);
    if (std::find(names.begin(), names.end(), request.Device) != names.end()) return request.Device;
    if (!request.MustHaveDevice) return {};
    throw PlayerError(ExitCode::kNoSound, "no sound device \"" + request.Device + "\"; there are: " + Join(names));
}

}  // namespace tdkplay
