// What the thread and leak sanitizers have to be told about threads that were terminated. Without a sanitizer
// in the process the weak functions are null and nothing happens.
#pragma once

#include <cstddef>

#include <pthread.h>

extern "C" {
__attribute__((weak)) void __tsan_acquire(void* address);
__attribute__((weak)) void __tsan_release(void* address);
__attribute__((weak)) void __lsan_register_root_region(const void* begin, size_t size);
}

namespace tdkp {

// All that the thread did before its end comes before all that happens after another has seen the end.
__attribute__((no_sanitize("thread", "address", "undefined"))) inline void TellEnd(void* thread) {
    if (__tsan_release != nullptr) {
        __tsan_release(thread);
    }
}

inline void TellEndSeen(void* thread) {
    if (__tsan_acquire != nullptr) {
        __tsan_acquire(thread);
    }
}

// What the stack of the ended thread refers to is not lost: the stack stays.
inline void TellStackStays(pthread_t thread) {
    pthread_attr_t attributes;
    if (__lsan_register_root_region == nullptr || pthread_getattr_np(thread, &attributes) != 0) {
        return;
    }
    void* stack = nullptr;
    size_t size = 0;
    if (pthread_attr_getstack(&attributes, &stack, &size) == 0) {
        __lsan_register_root_region(stack, size);
    }
    pthread_attr_destroy(&attributes);
}

}  // namespace tdkp
