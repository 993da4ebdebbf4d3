// FrameWorker: the thread that owns all output windows and runs the frame cycle.
#pragma once

#include <windows.h>

#include <cstdint>

#include "src/support/Handle.h"
#include "src/support/Mutex.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

// What the worker thread does, supplied by the manager. All calls come on the worker thread, but for
// HasSomethingToShow, which the timer asks before it wakes the worker: it looks at a flag and no more.
class FrameWorkerClient {
public:
    virtual bool HasSomethingToShow() const = 0;
    virtual void MakeWindows() = 0;
    virtual void DestroyWindows() = 0;
    virtual void RunFrame() = 0;

protected:
    ~FrameWorkerClient() = default;
};

// Invariants:
//  1. One thread at most. It starts on demand and ends only through Stop (or a WM_QUIT).
//  2. WorkerDone is set once when the thread is ready and after each piece of work: windows made,
//     windows destroyed, frame run.
//  3. Nothing here is held while the client runs.
class FrameWorker {
public:
    // Makes the events. The client outlives the worker.
    explicit FrameWorker(FrameWorkerClient& client);
    ~FrameWorker();
    FrameWorker(const FrameWorker&) = delete;
    FrameWorker& operator=(const FrameWorker&) = delete;

    // S_OK if the thread stands; E_FAIL if it didn't report ready in time and was terminated. [host]
    HRESULT Start();
    // Ends the thread, by force if it doesn't end in time. [host]
    void Stop();

    bool IsRunning() const { return WorkerRunning; }
    bool IsWorkerThread() const { return WorkerRunning && GetCurrentThreadId() == WorkerThreadId; }

    // Asks for a piece of work. [any]
    void RequestMakeWindows() { SetEvent(WorkerEvents[kMakeWindows].Get()); }
    void RequestDestroyWindows() { SetEvent(WorkerEvents[kDestroyWindows].Get()); }
    // Asks for one frame, unless there is nothing to show, and waits until the worker reports done,
    // kThreadAnswerLimit at most. [timer]
    void RunFrameAndWait();

private:
    enum EventIndex : DWORD { kMakeWindows, kDestroyWindows, kStop, kFrame, kEventCount };

    static DWORD WINAPI ThreadMain(void* argument);
    DWORD Run();
    // False when the thread has to end.
    bool Serve(DWORD waitResult);
    // Removes and dispatches every waiting message; false if WM_QUIT was among them.
    bool ServeMessages();
    void ClearThread();

    FrameWorkerClient& client_;
    Relaxed<bool> WorkerRunning = false;
    Handle WorkerThread;  // guarded by controlLock_
    Relaxed<DWORD> WorkerThreadId;
    Handle WorkerEvents[kEventCount];  // auto-reset
    Handle WorkerDone;                 // auto-reset
    KVAWinMutex controlLock_;          // one Start or Stop at a time; the worker never takes it
};

}  // namespace tdkviz
