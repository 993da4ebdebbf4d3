// Handle: owns a system handle.
#pragma once

#include <windows.h>

#include <utility>

namespace tdkviz {

// Closes its handle when it goes. Null stands for none.
class Handle {
public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        Reset(std::exchange(other.handle_, nullptr));
        return *this;
    }
    ~Handle() { Reset(); }

    void Reset(HANDLE handle = nullptr) {
        if (HANDLE old = std::exchange(handle_, handle)) CloseHandle(old);
    }
    HANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

    // Unnamed events, not signalled; empty if the system has none left.
    static Handle AutoResetEvent() { return Handle(CreateEventA(nullptr, FALSE, FALSE, nullptr)); }
    static Handle ManualResetEvent() { return Handle(CreateEventA(nullptr, TRUE, FALSE, nullptr)); }

private:
    HANDLE handle_ = nullptr;
};

}  // namespace tdkviz
