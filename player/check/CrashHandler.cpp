#include "player/check/CrashHandler.h"

#include <sys/resource.h>
#include <ucontext.h>

#include <csignal>
#include <cstdint>
#include <cstring>

#include "player/check/GuardedBuffer.h"
#include "player/check/SharedCalls.h"

namespace tdkplay::check {
namespace {

constexpr size_t kStackSize = 64 * 1024;
constexpr int kCrashSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS, SIGTRAP};

// Where the system doesn't say, a touch counts as writing.
bool IsWrite([[maybe_unused]] const void* context) {
#if defined(__x86_64__)
    constexpr greg_t kWriteBit = 2;  // of the page fault's error code
    return (static_cast<const ucontext_t*>(context)->uc_mcontext.gregs[REG_ERR] & kWriteBit) != 0;
#else
    return true;
#endif
}

void Record(int signal, const siginfo_t& info) {
    SharedCalls* const calls = OwnCalls();
    if (!calls) return;
    calls->Crash.IsOwnThread = OwnCallSlot() == SharedCalls::kNoSlot;
    if (!calls->Crash.IsOwnThread) {
        const CallSlot& slot = calls->Slots[static_cast<size_t>(OwnCallSlot())];
        if (slot.Since != 0) std::memcpy(calls->Crash.During.data(), slot.Name.data(), slot.Name.size());
    }
    calls->Crash.HasAddress = (signal == SIGSEGV || signal == SIGBUS) && info.si_code > 0 && info.si_code != SI_KERNEL;
    calls->Crash.Address = reinterpret_cast<uint64_t>(info.si_addr);
    calls->Crash.Signal = signal;
}

void OnCrash(int signal, siginfo_t* info, void* context) {
    if (signal == SIGSEGV && GuardedBuffer::OpenAt(reinterpret_cast<uintptr_t>(info->si_addr), IsWrite(context)))
        return;
    Record(signal, *info);
    // What was done wrong happens again, and ends the process with its own signal; a trap or what was sent doesn't.
    std::signal(signal, SIG_DFL);
    const bool comesAgain = signal == SIGSEGV || signal == SIGBUS || signal == SIGILL || signal == SIGFPE;
    if (!comesAgain || info->si_code <= 0) std::raise(signal);
}

}  // namespace

void InstallCrashHandler() {
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    struct sigaction action = {};
    action.sa_sigaction = OnCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int signal : kCrashSignals) sigaction(signal, &action, nullptr);
}

HandlerStack::HandlerStack() : room_(std::make_unique<char[]>(kStackSize)) {
    stack_t stack = {};
    stack.ss_sp = room_.get();
    stack.ss_size = kStackSize;
    sigaltstack(&stack, nullptr);
}

HandlerStack::~HandlerStack() {
    stack_t stack = {};
    stack.ss_flags = SS_DISABLE;
    sigaltstack(&stack, nullptr);
}

}  // namespace tdkplay::check
