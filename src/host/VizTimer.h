// CVizTimer: keeps the beat of the frames on a thread of its own.
#pragma once

#include <windows.h>

#include <cstdint>

#include "src/support/Handle.h"
#include "src/support/Mutex.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

class FrameWorker;

// The schedule is absolute: tick n is due at the start time plus n periods, whatever earlier ticks took.
// A tick that is late when its turn comes fires no frame. A changed period acts from the next tick on.
class CVizTimer {
public:
    // The worker outlives the timer.
    explicit CVizTimer(FrameWorker& worker);
    virtual ~CVizTimer();
    CVizTimer(const CVizTimer&) = delete;
    CVizTimer& operator=(const CVizTimer&) = delete;

    // S_OK if the thread stands, E_FAIL if it couldn't be made or didn't start in time. [host]
    HRESULT Start();
    // Waits for the thread to end, and ends it by force if need be. [host]
    void Stop();

    void SetPeriod(uint32_t milliseconds) { Period = milliseconds; }
    bool IsRunning() const { return Running; }

private:
    static DWORD WINAPI ThreadMain(void* argument);
    void Run();

    FrameWorker& worker_;
    Relaxed<uint32_t> Period = 50u;
    Handle Thread;        // guarded by controlLock_
    Handle StopEvent;     // manual-reset
    Handle StartedEvent;  // manual-reset
    Relaxed<bool> Running = false;
    KVAWinMutex controlLock_;  // one Start or Stop at a time; the timer's own thread never takes it
};

}  // namespace tdkviz
