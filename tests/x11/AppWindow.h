// A window as programs make them, and a record of what it was told.
#pragma once

#include <windows.h>

#include <xcb/xcb.h>

#include <functional>
#include <string>
#include <vector>

struct AppMessage {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

// Belongs to the thread that makes it.
class AppWindow {
public:
    // Inside `parent`, a window of any client, or on its own with 0. Shown.
    AppWindow(xcb_window_t parent, int x, int y, int width, int height, const std::string& title = "");
    ~AppWindow();
    AppWindow(const AppWindow&) = delete;
    AppWindow& operator=(const AppWindow&) = delete;

    static constexpr const char* kClassName = "AppWindow";

    HWND Handle() const { return window_; }
    xcb_window_t Id() const { return static_cast<xcb_window_t>(reinterpret_cast<uintptr_t>(window_)); }

    void Fill(const RECT& rect, COLORREF color);

    // Serves messages until `done` says true. False if it takes too long.
    static bool ServeUntil(const std::function<bool()>& done);
    // Serves messages until this one has come.
    bool ServeUntilTold(UINT message);

    int Told(UINT message) const;
    // The last one of its kind, all 0 if none has come.
    AppMessage Last(UINT message) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
    std::vector<AppMessage> messages_;
};
