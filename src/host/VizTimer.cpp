#include "src/host/VizTimer.h"

#include "src/host/FrameWorker.h"
#include "src/host/HighResClock.h"
#include "src/support/ThreadLimits.h"

namespace tdkviz {

CVizTimer::CVizTimer(FrameWorker& worker)
    : worker_(worker), StopEvent(Handle::ManualResetEvent()), StartedEvent(Handle::ManualResetEvent()) {}

CVizTimer::~CVizTimer() {
    Stop();
}

HRESULT CVizTimer::Start() {
    const MutexLock lock(&controlLock_);
    if (!StopEvent || !StartedEvent) return E_FAIL;
    if (Running) return S_OK;
    ResetEvent(StopEvent.Get());
    ResetEvent(StartedEvent.Get());
    Thread.Reset(CreateThread(nullptr, 0, ThreadMain, this, 0, nullptr));
    if (!Thread) return E_FAIL;
    if (!WaitForAnswer(StartedEvent.Get())) {
        TerminateThread(Thread.Get(), kTerminatedExitCode);
        Thread.Reset();
        return E_FAIL;
    }
    Running = true;
    return S_OK;
}

void CVizTimer::Stop() {
    const MutexLock lock(&controlLock_);
    if (!Thread) return;
    SetEvent(StopEvent.Get());
    // Taken out first: what is served during the wait may come here again.
    const Handle thread = std::move(Thread);
    EndThreadInTime(thread.Get());
    Running = false;
}

DWORD WINAPI CVizTimer::ThreadMain(void* argument) {
    auto* timer = static_cast<CVizTimer*>(argument);
    if (!timer || !timer->StartedEvent || !timer->StopEvent) return static_cast<DWORD>(E_FAIL);
    SetEvent(timer->StartedEvent.Get());
    timer->Run();
    return 0;
}

void CVizTimer::Run() {
    const uint32_t start = HighResMilliseconds();
    uint32_t elapsed = 0;
    for (;;) {
        elapsed += Period;
        const auto wait = static_cast<int32_t>(start + elapsed - HighResMilliseconds());
        const bool late = wait < 0;
        if (WaitForSingleObject(StopEvent.Get(), late ? 0 : static_cast<DWORD>(wait)) == WAIT_OBJECT_0) break;
        if (!late) worker_.RunFrameAndWait();
    }
    Running = false;
}

}  // namespace tdkviz
