#include "platform/display/Display.h"

#include <tdkplatform.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/display/memory/MemoryDisplay.h"
#include "platform/display/x11/OpenX11.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {
namespace {

constexpr const char* kVariable = "TDKVIZ_DISPLAY";
constexpr const char* kMemoryName = "memory";
constexpr const char* kX11Name = "x11";

struct State {
    LayerMutex mutex;
    std::unique_ptr<Display> display;
    const char* name = kMemoryName;
    // Closed by their own thread, which can't wait for itself; ended by the next call that comes by.
    std::vector<std::unique_ptr<Display>> retired;
    std::optional<MemoryDisplayMode> asked;
};

// Its destructor, at the process's end, waits for the display's thread.
State& TheState() {
    static State state;
    return state;
}

// The mode in "memory" or "memory:WxHxD"; nothing if `text` names something else.
std::optional<MemoryDisplayMode> ParseMemoryMode(const char* text) {
    const size_t nameLength = std::strlen(kMemoryName);
    if (std::strncmp(text, kMemoryName, nameLength) != 0) return std::nullopt;
    MemoryDisplayMode mode;
    MemoryDisplayMode asked;
    const char* sizes = text + nameLength;
    if (std::sscanf(sizes, ":%dx%dx%d", &asked.width, &asked.height, &asked.depth) >= 2 && IsMemoryDisplayMode(asked))
        mode = asked;
    return mode;
}

std::optional<MemoryDisplayMode> AskedMemoryMode(const State& state) {
    if (state.asked) return state.asked;
    const char* variable = std::getenv(kVariable);
    return variable != nullptr ? ParseMemoryMode(variable) : std::nullopt;
}

bool HasServer() {
    const char* server = std::getenv("DISPLAY");
    return server != nullptr && *server != '\0';
}

// The list: the first that opens is taken.
std::unique_ptr<Display> OpenDisplay(const State& state, DisplaySink& sink, const char** name) {
    const std::optional<MemoryDisplayMode> memory = AskedMemoryMode(state);
    if (!memory && HasServer()) {
        if (std::unique_ptr<Display> display = OpenX11Display(sink)) {
            *name = kX11Name;
            return display;
        }
    }
    *name = kMemoryName;
    return std::make_unique<MemoryDisplay>(memory.value_or(MemoryDisplayMode()));
}

}  // namespace

Display& TheDisplay(DisplaySink& sink) {
    State& state = TheState();
    std::vector<std::unique_ptr<Display>> retired;  // goes after the lock, since it waits for its thread
    const LayerGuard guard(state.mutex);
    if (!state.display) state.display = OpenDisplay(state, sink, &state.name);
    if (!IsX11Thread()) retired.swap(state.retired);
    return *state.display;
}

void CloseDisplay() {
    State& state = TheState();
    std::unique_ptr<Display> closed;
    std::vector<std::unique_ptr<Display>> retired;
    {
        const LayerGuard guard(state.mutex);
        if (IsX11Thread()) {
            if (state.display) {
                AskX11ThreadToEnd();
                state.retired.push_back(std::move(state.display));
            }
            return;
        }
        closed = std::move(state.display);
        retired.swap(state.retired);
    }
}

const char* DisplayName() {
    State& state = TheState();
    const LayerGuard guard(state.mutex);
    if (state.display) return state.name;
    return !AskedMemoryMode(state) && HasServer() && CanOpenX11Display() ? kX11Name : kMemoryName;
}

}  // namespace tdkp

TDKP_API BOOL TdkpUseMemoryDisplay(int width, int height, int depth) {
    const tdkp::MemoryDisplayMode mode = {width, height, depth};
    if (!tdkp::IsMemoryDisplayMode(mode)) return FALSE;
    tdkp::State& state = tdkp::TheState();
    const tdkp::LayerGuard guard(state.mutex);
    if (state.display) return FALSE;
    state.asked = mode;
    return TRUE;
}

TDKP_API BOOL TdkpChangeDisplayDepth(int depth) {
    tdkp::State& state = tdkp::TheState();
    const tdkp::LayerGuard guard(state.mutex);
    auto* display = dynamic_cast<tdkp::MemoryDisplay*>(state.display.get());
    return display != nullptr && display->ChangeDepth(depth);
}

TDKP_API const char* TdkpDisplayName(void) {
    return tdkp::DisplayName();
}
