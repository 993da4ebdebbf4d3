#include "platform/user/ExecutionState.h"

#include <windows.h>

#include <algorithm>
#include <map>

#include "platform/kernel/Immortal.h"
#include "platform/user/DisplayUse.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr EXECUTION_STATE kKnown = ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED;

struct States {
    LayerMutex mutex;
    // Guarded by it: of the threads that need something. The display is told under it, so that the last word counts.
    std::map<uint32_t, EXECUTION_STATE> byThread;

    void Tell(Display& display) const {
        display.KeepAwake(std::any_of(byThread.begin(), byThread.end(),
                                      [](const auto& each) { return (each.second & ES_DISPLAY_REQUIRED) != 0; }));
    }
};

States& TheStates() {
    return Immortal<States>();
}

bool DisplayIsOpen() {
    DispatcherGuard guard(DispatcherLock());
    return AnyWindow(guard);
}

// Gives the former state.
EXECUTION_STATE Exchange(uint32_t thread, EXECUTION_STATE state) {
    States& states = TheStates();
    const LayerGuard guard(states.mutex);
    const auto found = states.byThread.find(thread);
    const EXECUTION_STATE former = found != states.byThread.end() ? found->second : ES_CONTINUOUS;
    if (state != ES_CONTINUOUS)
        states.byThread[thread] = state;
    else if (found != states.byThread.end())
        states.byThread.erase(found);
    return former;
}

}  // namespace

void TellExecutionState(Display& display) {
    States& states = TheStates();
    const LayerGuard guard(states.mutex);
    states.Tell(display);
}

void ForgetExecutionState(uint32_t thread) {
    if (Exchange(thread, ES_CONTINUOUS) == ES_CONTINUOUS || !DisplayIsOpen()) return;
    TellExecutionState(*DisplayUse());
}

}  // namespace tdkp

TDKP_API EXECUTION_STATE SetThreadExecutionState(EXECUTION_STATE state) {
    if ((state & ~tdkp::kKnown) != 0 || (state & ES_CONTINUOUS) == 0) return 0;
    const EXECUTION_STATE former = tdkp::Exchange(tdkp::CurrentThreadId(), state);
    if (former != state && tdkp::DisplayIsOpen()) tdkp::TellExecutionState(*tdkp::DisplayUse());
    return former;
}
