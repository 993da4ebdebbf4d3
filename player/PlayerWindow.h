// The player's top-level window: keys in, size out. The picture lies in a child window that the add-on makes, and
// below it there may be a strip that is left free for the player's own things, except in full screen.
#pragma once

#include <windows.h>

#include <string>

#include "player/PictureSize.h"

namespace tdkplay {

// What the window reports, on the thread that made it and serves its messages.
class PlayerWindowEvents {
public:
    virtual void OnPauseKey() = 0;
    virtual void OnSeekKey(double seconds) = 0;  // relative
    virtual void OnPluginKey(int direction) = 0;
    virtual void OnVolumeKey(int direction) = 0;
    virtual void OnSettingsKey() = 0;
    virtual void OnOffsetKey(int milliseconds) = 0;  // relative
    // There is this much room for the picture now; not visible means minimised.
    virtual void OnSize(PictureSize size, bool visible) = 0;
    virtual void OnCloseRequest() = 0;

protected:
    ~PlayerWindowEvents() = default;
};

class PlayerWindow {
public:
    // `events` may be null; `stripHeight` in pixels. Throws PlayerError with kNoDisplay.
    PlayerWindow(PictureSize size, PlayerWindowEvents* events, int stripHeight = 0);
    ~PlayerWindow();
    PlayerWindow(const PlayerWindow&) = delete;
    PlayerWindow& operator=(const PlayerWindow&) = delete;

    HWND Handle() const { return window_; }
    void SetTitle(const std::string& title) { SetWindowTextA(window_, title.c_str()); }
    void SetFullScreen(bool on);
    bool IsFullScreen() const { return isFullScreen_; }
    PictureSize PictureRoom() const;
    // In the client area; empty in full screen.
    RECT StripPlace() const;
    // The largest picture in a window that fits the screen.
    static PictureSize LargestPicture(int stripHeight);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool OnKeyDown(WPARAM key);
    void OnEscape();
    PictureSize RoomIn(int width, int height) const;

    PlayerWindowEvents* const events_;
    const int stripHeight_;
    HWND window_ = nullptr;
    bool isFullScreen_ = false;
    RECT windowedPlace_ = {};
};

}  // namespace tdkplay
