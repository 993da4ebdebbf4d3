#include "player/base/Interrupt.h"

#include <pthread.h>

namespace tdkplay {
namespace {

constexpr int kEndOfWait = SIGUSR1;

}  // namespace

Interrupt::Interrupt() {
    sigemptyset(&signals_);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, kEndOfWait}) sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    thread_ = std::thread([this] { Wait(); });
}

Interrupt::~Interrupt() {
    pthread_kill(thread_.native_handle(), kEndOfWait);
    thread_.join();
}

void Interrupt::Report(const Event* event) {
    const std::lock_guard lock(mutex_);
    event_ = event;
}

void Interrupt::Wait() {
    int signal = 0;
    while (sigwait(&signals_, &signal) != 0 || signal != kEndOfWait) {
        requested_ = true;
        const std::lock_guard lock(mutex_);
        if (event_) event_->Set();
    }
}

}  // namespace tdkplay
