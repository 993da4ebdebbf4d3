// Ending a thread from outside, where it stands.
#pragma once

#include "platform/kernel/ThreadRecord.h"

namespace tdkp {

// From the first to the last of nested calls the calling thread is not terminated; the last one is where it
// ends if its end was asked for meanwhile.
void BeginDeferral();
void EndDeferral();

// Called by each thread of the layer at its start, before anything else: lets it be stopped, and keeps the
// signals that are meant for the program away from it.
void PrepareForTermination(ThreadRecord& record);

// Stops the thread of this record, which must be another one, and comes back when the kernel no longer knows
// it. False if it couldn't be brought to an end within a bound, or has ended by itself. Not under the lock.
bool StopThread(ThreadRecord& record);

// Ends the calling thread without running anything more of it.
[[noreturn]] void EndCallingThread();

// Waits until the kernel no longer knows the thread, within a bound; false beyond it.
bool AwaitKernelExit(pid_t kernelId);

}  // namespace tdkp
