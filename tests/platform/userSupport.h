// What the tests of windows and messages share: the memory display, a class whose windows record what they are told,
// and threads that end in time. Only the published interface.
#pragma once

#include <windows.h>

#include <tdkplatform.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/Messages.h"
#include "tests/support/Wait.h"

namespace usertest {

using tdkviz::test::ServeMessages;

// On a machine with a server the tests would show windows on it.
inline const bool kMemory = TdkpUseMemoryDisplay(640, 480, 32) != FALSE;

using Handler = std::function<bool(HWND, UINT, WPARAM, LPARAM, LRESULT*)>;

// A window class for the length of a test. Every message is recorded, then goes to the handler; what that leaves over
// gets the default handling.
class TestClass {
public:
    explicit TestClass(UINT style = 0, HBRUSH brush = nullptr) {
        Current() = this;
        WNDCLASSA info = {};
        info.style = style;
        info.lpfnWndProc = Procedure;
        info.hInstance = GetModuleHandleA(nullptr);
        info.hbrBackground = brush;
        info.lpszClassName = kName;
        RegisterClassA(&info);
    }
    ~TestClass() {
        UnregisterClassA(kName, GetModuleHandleA(nullptr));
        Current() = nullptr;
    }
    TestClass(const TestClass&) = delete;
    TestClass& operator=(const TestClass&) = delete;

    HWND Make(DWORD style = WS_POPUP, HWND parent = nullptr, int width = 40, int height = 30, const char* title = "") {
        return CreateWindowExA(0, kName, title, style, 0, 0, width, height, parent, nullptr, GetModuleHandleA(nullptr),
                               nullptr);
    }

    struct Entry {
        HWND window;
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        DWORD thread;
    };
    // Empties the record, and gives the messages among `wanted` in the order of their arrival.
    std::vector<Entry> Take(const std::vector<UINT>& wanted) {
        std::lock_guard<std::mutex> guard(mutex_);
        std::vector<Entry> found;
        for (const Entry& entry : entries_) {
            for (const UINT message : wanted) {
                if (entry.message == message) found.push_back(entry);
            }
        }
        entries_.clear();
        return found;
    }

    Handler handler;  // set before windows are made
    static constexpr const char* kName = "UserTestClass";

private:
    static TestClass*& Current() {
        static TestClass* current = nullptr;
        return current;
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        TestClass& self = *Current();
        {
            std::lock_guard<std::mutex> guard(self.mutex_);
            self.entries_.push_back({window, message, wParam, lParam, GetCurrentThreadId()});
        }
        LRESULT result = 0;
        if (self.handler && self.handler(window, message, wParam, lParam, &result)) return result;
        return DefWindowProcA(window, message, wParam, lParam);
    }

    std::mutex mutex_;
    std::vector<Entry> entries_;
};

// A thread of the system that runs a function and is waited for.
class TestThread {
public:
    explicit TestThread(std::function<void()> work) : work_(std::move(work)) {
        handle_ = CreateThread(nullptr, 0, Entry, this, 0, &id_);
    }
    ~TestThread() { Join(); }
    TestThread(const TestThread&) = delete;
    TestThread& operator=(const TestThread&) = delete;

    void Join() {
        if (handle_ == nullptr) return;
        WaitForSingleObject(handle_, INFINITE);
        CloseHandle(handle_);
        handle_ = nullptr;
    }
    DWORD Id() const { return id_; }
    HANDLE Handle() const { return handle_; }

private:
    static DWORD WINAPI Entry(LPVOID self) {
        static_cast<TestThread*>(self)->work_();
        return 0;
    }

    std::function<void()> work_;
    HANDLE handle_ = nullptr;
    DWORD id_ = 0;
};

class TestEvent {
public:
    TestEvent() : handle_(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}
    ~TestEvent() { CloseHandle(handle_); }
    TestEvent(const TestEvent&) = delete;
    TestEvent& operator=(const TestEvent&) = delete;

    void Set() { SetEvent(handle_); }
    bool Await(DWORD milliseconds = tdkviz::test::kPatienceMilliseconds) {
        return WaitForSingleObject(handle_, milliseconds) == WAIT_OBJECT_0;
    }
    HANDLE Handle() const { return handle_; }

private:
    HANDLE handle_;
};

// Serves messages until WM_QUIT.
inline void Loop() {
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

inline void MakeQueue() {
    MSG message;
    PeekMessageA(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE);
}

}  // namespace usertest
