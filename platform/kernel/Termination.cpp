#include "platform/kernel/Termination.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <sched.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include "platform/kernel/Clock.h"
#include "platform/kernel/Sanitizers.h"

// The handler may interrupt a thread anywhere, inside a sanitizer's runtime too.
#define TDKP_UNINSTRUMENTED __attribute__((no_sanitize("thread", "address", "undefined")))

namespace tdkp {
namespace {

// ThreadRecord::EndRequest. The terminating thread moves it from idle to sent with each signal; the handler
// moves it back to idle if the moment was bad, or to deferred if the thread will end by itself shortly.
enum EndRequestState : int { kIdle, kSent, kDeferred };

constexpr long kRetryPauseNanoseconds = 200'000;
// Looks in a row at which the thread has not moved: it is blocked, for a tenth of a second by then, which is
// longer than a busy machine keeps the holder of a short lock waiting.
constexpr int kStandstillLimit = 500;
constexpr uint64_t kStopLimit = 2 * kNanosecondsPerSecond;
constexpr int kExitYields = 200;

struct CodeRange {
    uintptr_t Begin;
    uintptr_t End;
};

// The code of the C library, the loader and the sanitizers. A thread that stands there may hold a lock that
// the whole process needs (the heap's), so it's given some time to come out.
struct SharedCode {
    std::array<CodeRange, 16> Ranges{};
    size_t Count = 0;
};

SharedCode sharedCode;

int CollectSharedCode(dl_phdr_info* info, size_t, void*) {
    static constexpr const char* kNames[] = {"/libc.so", "/ld-linux", "/libtsan", "/libasan", "/libubsan", "/liblsan"};
    for (const char* name : kNames) {
        if (std::strstr(info->dlpi_name, name) == nullptr) {
            continue;
        }
        for (int i = 0; i < info->dlpi_phnum && sharedCode.Count < sharedCode.Ranges.size(); ++i) {
            const auto& segment = info->dlpi_phdr[i];
            if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
                const uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
                sharedCode.Ranges[sharedCode.Count++] = {begin, begin + segment.p_memsz};
            }
        }
    }
    return 0;
}

struct Place {
    uintptr_t Code;
    uintptr_t Stack;
};

TDKP_UNINSTRUMENTED Place InterruptedPlace([[maybe_unused]] const void* context) {
#if defined(__x86_64__)
    const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs;
    return {static_cast<uintptr_t>(registers[REG_RIP]), static_cast<uintptr_t>(registers[REG_RSP])};
#elif defined(__aarch64__)
    const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext;
    return {static_cast<uintptr_t>(registers.pc), static_cast<uintptr_t>(registers.sp)};
#else
    return {0, 0};
#endif
}

TDKP_UNINSTRUMENTED bool InSharedCode(uintptr_t address) {
    const CodeRange* ranges = reinterpret_cast<const CodeRange*>(&sharedCode.Ranges);
    for (size_t i = 0; i < sharedCode.Count; ++i) {
        if (address >= ranges[i].Begin && address < ranges[i].End) {
            return true;
        }
    }
    return false;
}

// By the system call itself: the thread's stack is left as it is, the kernel tells the C library of the end
// through the thread's own record, and the other threads run on.
[[noreturn]] TDKP_UNINSTRUMENTED void ExitThreadNow(ThreadRecord* record) {
    if (record != nullptr) {
        TellEnd(record);
    }
    for (;;) {
        syscall(SYS_exit, 0);
    }
}

// Is this a bad moment? A thread that is blocked in the C library is ended all the same; one that moves in
// there and never comes out is left running after the time limit, rather than ended with a lock in its hands.
TDKP_UNINSTRUMENTED bool MustComeOut(ThreadState& thread, Place place) {
    if (thread.Parked || !InSharedCode(place.Code)) {
        return false;
    }
    const bool moved = place.Code != thread.LastCode || place.Stack != thread.LastStack;
    thread.LastCode = place.Code;
    thread.LastStack = place.Stack;
    thread.Standstills = moved ? 0 : thread.Standstills + 1;
    return thread.Standstills < kStandstillLimit;
}

TDKP_UNINSTRUMENTED void OnEndSignal(int, siginfo_t*, void* context) {
    ThreadState& thread = currentThread;
    if (thread.Record == nullptr || __atomic_load_n(&thread.Record->EndRequest, __ATOMIC_ACQUIRE) == kIdle) {
        return;
    }
    if (thread.DeferralDepth > 0) {
        thread.EndPending = true;
        __atomic_store_n(&thread.Record->EndRequest, kDeferred, __ATOMIC_RELEASE);
        return;
    }
    if (MustComeOut(thread, InterruptedPlace(context))) {
        __atomic_store_n(&thread.Record->EndRequest, kIdle, __ATOMIC_RELEASE);
        return;
    }
    ExitThreadNow(thread.Record);
}

// A real-time signal that nobody uses. The C library's own entry is called: a sanitizer that puts itself in
// between holds signals back until the thread's next library call, and a loop makes none.
int InstallEndSignal() {
    dl_iterate_phdr(CollectSharedCode, nullptr);
    using SigactionFunction = int (*)(int, const struct sigaction*, struct sigaction*);
    SigactionFunction setAction = sigaction;
    if (void* library = dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD)) {
        if (void* symbol = dlsym(library, "sigaction")) {
            setAction = reinterpret_cast<SigactionFunction>(symbol);
        }
        dlclose(library);
    }
    for (int number = SIGRTMAX - 1; number > SIGRTMIN; --number) {
        struct sigaction action {};
        if (setAction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) {
            continue;
        }
        action.sa_sigaction = OnEndSignal;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        sigfillset(&action.sa_mask);
        if (setAction(number, &action, nullptr) == 0) {
            return number;
        }
    }
    return 0;
}

int EndSignal() {
    static const int number = InstallEndSignal();
    return number;
}

bool KernelKnows(pid_t kernelId) {
    return syscall(SYS_tgkill, getpid(), kernelId, 0) == 0 || errno != ESRCH;
}

void PauseForRetry() {
    const timespec pause{0, kRetryPauseNanoseconds};
    nanosleep(&pause, nullptr);
}

bool HasEnded(const ThreadRecord& record) {
    DispatcherGuard guard(DispatcherLock());
    return record.Ended;
}

}  // namespace

void BeginDeferral() {
    currentThread.DeferralDepth = currentThread.DeferralDepth + 1;
}

void EndDeferral() {
    currentThread.DeferralDepth = currentThread.DeferralDepth - 1;
    if (currentThread.EndPending && currentThread.DeferralDepth == 0) {
        ExitThreadNow(currentThread.Record);
    }
}

void PrepareForTermination(ThreadRecord& record) {
    static constexpr int kSignalsOfTheProgram[] = {SIGHUP,  SIGINT,  SIGQUIT,  SIGUSR1, SIGUSR2, SIGPIPE, SIGALRM,
                                                   SIGTERM, SIGCHLD, SIGWINCH, SIGURG,  SIGIO,   SIGTSTP};
    sigset_t signals;
    sigemptyset(&signals);
    for (int number : kSignalsOfTheProgram) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    sigemptyset(&signals);
    sigaddset(&signals, EndSignal());
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    currentThread.Record = &record;
    record.KernelId.store(static_cast<pid_t>(syscall(SYS_gettid)), std::memory_order_release);
}

bool StopThread(ThreadRecord& record) {
    pid_t kernelId = 0;
    while ((kernelId = record.KernelId.load(std::memory_order_acquire)) == 0) {
        sched_yield();
    }
    const uint64_t limit = MachineNow() + kStopLimit;
    while (KernelKnows(kernelId)) {
        if (MachineNow() >= limit || HasEnded(record)) {
            return false;
        }
        int expected = kIdle;
        if (__atomic_compare_exchange_n(&record.EndRequest, &expected, kSent, false, __ATOMIC_ACQ_REL,
                                        __ATOMIC_ACQUIRE)) {
            syscall(SYS_tgkill, getpid(), kernelId, EndSignal());
        }
        PauseForRetry();
    }
    TellEndSeen(&record);
    return true;
}

void EndCallingThread() {
    ExitThreadNow(nullptr);
}

bool AwaitKernelExit(pid_t kernelId) {
    const uint64_t limit = MachineNow() + kStopLimit;
    for (int turn = 0; KernelKnows(kernelId); ++turn) {
        if (turn < kExitYields) {
            sched_yield();
        } else if (MachineNow() < limit) {
            PauseForRetry();
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace tdkp
