// Keeps the process's display open: while an object of this class lives, and while any window exists. The
// last one of either kind closes it. Not under the dispatcher's lock, and not on the display's own thread.
#pragma once

#include "platform/display/Display.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class DisplayUse {
public:
    DisplayUse();
    ~DisplayUse();
    DisplayUse(const DisplayUse&) = delete;
    DisplayUse& operator=(const DisplayUse&) = delete;

    Display* operator->() const { return display_; }
    Display& operator*() const { return *display_; }

private:
    Display* display_;
};

}  // namespace tdkp
