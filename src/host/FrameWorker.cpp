#include "src/host/FrameWorker.h"

#include "src/support/ThreadLimits.h"

namespace tdkviz {

namespace {

// Wakes for all input.
constexpr DWORD kWakeMask = 0x4FF;

}  // namespace

FrameWorker::FrameWorker(FrameWorkerClient& client) : client_(client), WorkerThreadId(kNoThreadId) {
    for (Handle& event : WorkerEvents) event = Handle::AutoResetEvent();
    WorkerDone = Handle::AutoResetEvent();
}

FrameWorker::~FrameWorker() {
    Stop();
}

HRESULT FrameWorker::Start() {
    const MutexLock lock(&controlLock_);
    if (WorkerRunning) return S_OK;
    ResetEvent(WorkerDone.Get());
    DWORD threadId = kNoThreadId;
    WorkerThread.Reset(CreateThread(nullptr, 0, ThreadMain, this, 0, &threadId));
    if (!WorkerThread) return E_FAIL;
    WorkerThreadId = threadId;
    if (!WaitForAnswer(WorkerDone.Get())) {
        TerminateThread(WorkerThread.Get(), kTerminatedExitCode);
        WorkerThread.Reset();
        return E_FAIL;
    }
    WorkerRunning = true;
    return S_OK;
}

void FrameWorker::Stop() {
    const MutexLock lock(&controlLock_);
    // Taken out first: what is served during the wait may come here again.
    const Handle thread = std::move(WorkerThread);
    if (thread) {
        SetEvent(WorkerEvents[kStop].Get());
        EndThreadInTime(thread.Get());
    }
    ClearThread();
}

void FrameWorker::RunFrameAndWait() {
    if (!client_.HasSomethingToShow()) return;
    // An old signal must not end the wait for this frame.
    ResetEvent(WorkerDone.Get());
    SetEvent(WorkerEvents[kFrame].Get());
    WaitForSingleObject(WorkerDone.Get(), kThreadAnswerLimit);
}

DWORD WINAPI FrameWorker::ThreadMain(void* argument) {
    auto* worker = static_cast<FrameWorker*>(argument);
    if (!worker || !worker->WorkerDone) return static_cast<DWORD>(E_FAIL);
    return worker->Run();
}

DWORD FrameWorker::Run() {
    // A look at the queue makes it, before anyone posts to this thread.
    MSG message;
    PeekMessageA(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);
    SetEvent(WorkerDone.Get());

    HANDLE events[kEventCount];
    for (DWORD index = 0; index < kEventCount; ++index) events[index] = WorkerEvents[index].Get();
    while (Serve(MsgWaitForMultipleObjects(kEventCount, events, FALSE, INFINITE, kWakeMask))) {
    }
    ClearThread();
    return 0;
}

bool FrameWorker::Serve(DWORD waitResult) {
    switch (waitResult) {
        case WAIT_OBJECT_0 + kMakeWindows:
            client_.MakeWindows();
            break;
        case WAIT_OBJECT_0 + kDestroyWindows:
            client_.DestroyWindows();
            if (!ServeMessages()) return false;
            break;
        case WAIT_OBJECT_0 + kStop:
            return false;
        case WAIT_OBJECT_0 + kFrame:
            client_.RunFrame();
            break;
        case WAIT_OBJECT_0 + kEventCount:
            return ServeMessages();
        default:
            return true;
    }
    SetEvent(WorkerDone.Get());
    return true;
}

bool FrameWorker::ServeMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) return false;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return true;
}

void FrameWorker::ClearThread() {
    WorkerThreadId = kNoThreadId;
    WorkerRunning = false;
}

}  // namespace tdkviz
