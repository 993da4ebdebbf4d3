// An auto-reset event of the system that lives as long as this object.
#pragma once

#include <windows.h>

namespace tdkplay {

class Event {
public:
    Event() : handle_(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}
    ~Event() { CloseHandle(handle_); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    HANDLE Handle() const { return handle_; }
    void Set() const { SetEvent(handle_); }

private:
    const HANDLE handle_;
};

}  // namespace tdkplay
