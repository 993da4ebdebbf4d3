#include "platform/user/DisplayUse.h"

#include "platform/user/Sink.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

// Guarded by the dispatcher's lock.
int32_t users = 0;
bool closing = false;

}  // namespace

DisplayUse::DisplayUse() {
    {
        DispatcherGuard guard(DispatcherLock());
        auto open = [] { return !closing; };
        WaitUntilReady(guard, open, kInfinite);
        ++users;
    }
    TerminationDeferral deferral;
    display_ = &TheDisplay(TheSink());
}

DisplayUse::~DisplayUse() {
    TerminationDeferral deferral;
    DispatcherGuard guard(DispatcherLock());
    if (--users > 0 || AnyWindow(guard)) return;
    closing = true;
    guard.unlock();
    CloseDisplay();
    guard.lock();
    closing = false;
    WakeWaiters(guard);
}

}  // namespace tdkp
