// The player's top-level window: keys in, size out. The picture lies in a child window that the add-on makes.
#pragma once

#include <windows.h>

#include <string>

namespace tdkplay {

// What the window reports, on the thread that made it and serves its messages.
class PlayerWindowEvents {
public:
    virtual void OnPauseKey() = 0;
    virtual void OnSeekKey(double seconds) = 0;  // relative
    virtual void OnPluginKey(int direction) = 0;
    // The client area has this size now; not visible means minimised.
    virtual void OnSize(int width, int height, bool visible) = 0;
    virtual void OnCloseRequest() = 0;

protected:
    ~PlayerWindowEvents() = default;
};

class PlayerWindow {
public:
    // Client size in pixels; `events` may be null. Throws PlayerError with kNoDisplay.
    PlayerWindow(int width, int height, PlayerWindowEvents* events);
    ~PlayerWindow();
    PlayerWindow(const PlayerWindow&) = delete;
    PlayerWindow& operator=(const PlayerWindow&) = delete;

    HWND Handle() const { return window_; }
    void SetTitle(const std::string& title) { SetWindowTextA(window_, title.c_str()); }
    void SetFullScreen(bool on);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool OnKeyDown(WPARAM key);
    void OnEscape();

    PlayerWindowEvents* const events_;
    HWND window_ = nullptr;
    bool isFullScreen_ = false;
    RECT windowedPlace_ = {};
};

}  // namespace tdkplay
