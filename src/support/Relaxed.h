// Relaxed: a plain field that one thread writes while others read it, without a lock and without order.
#pragma once

#include <atomic>

namespace tdkviz {

// Reads and writes like a T; each access is one relaxed atomic operation, the same machine code as a
// plain one. Copies take the value.
template <typename T>
class Relaxed {
public:
    constexpr Relaxed() : value_(T()) {}
    constexpr Relaxed(T value) : value_(value) {}  // NOLINT(google-explicit-constructor): reads like a T
    Relaxed(const Relaxed& other) : value_(other.Load()) {}
    Relaxed& operator=(const Relaxed& other) {
        value_.store(other.Load(), std::memory_order_relaxed);
        return *this;
    }
    Relaxed& operator=(T value) {
        value_.store(value, std::memory_order_relaxed);
        return *this;
    }
    operator T() const { return Load(); }  // NOLINT(google-explicit-constructor)
    T operator->() const { return Load(); }
    // Stores a value and gives the one that stood before, as one step.
    T Exchange(T value) { return value_.exchange(value, std::memory_order_acq_rel); }
    T Load() const { return value_.load(std::memory_order_relaxed); }

private:
    std::atomic<T> value_;
};

}  // namespace tdkviz
