// A connection to a PulseAudio server, or to another that speaks its protocol, with the thread that serves it.
#pragma once

#include <pulse/pulseaudio.h>

#include <functional>
#include <memory>
#include <utility>

namespace tdkplay {

class PulseConnection {
public:
    // Null if there is no server. Never starts one.
    static std::unique_ptr<PulseConnection> Open();
    // What was made on the connection must have gone before.
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    // Held for every use of the context and of what was made on it. Not on the connection's own thread, which has it.
    class Lock {
    public:
        explicit Lock(const PulseConnection& connection) : loop_(connection.loop_) { pa_threaded_mainloop_lock(loop_); }
        ~Lock() { pa_threaded_mainloop_unlock(loop_); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pa_threaded_mainloop* loop_;
    };

    // The following with the lock held.
    pa_context* Context() const { return context_; }
    bool IsGood() const { return context_ && PA_CONTEXT_IS_GOOD(pa_context_get_state(context_)); }
    // Until Signal, or the end of the connection. The lock is free meanwhile.
    void Wait() const { pa_threaded_mainloop_wait(loop_); }
    void Signal() const { pa_threaded_mainloop_signal(loop_, 0); }
    // Waits for an operation whose callback calls Signal; takes it away. A lost connection ends it, too.
    void Await(pa_operation* operation) const;
    // A reply is not waited for: the server carries requests out in order.
    static void Forget(pa_operation* operation);
    // Calls this when the connection is lost, on its own thread, with its lock held. One that is lost already isn't
    // told.
    void ReportLoss(std::function<void()> lost) { lost_ = std::move(lost); }

    // Ends the thread: nothing is called back any more, and what was made on the connection can be taken down without
    // the lock. For whoever takes it down, and without the lock.
    void Stop();

private:
    PulseConnection() = default;
    bool Start();
    bool Connect();
    static void OnState(pa_context* context, void* self);

    pa_threaded_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    std::function<void()> lost_;
};

}  // namespace tdkplay
