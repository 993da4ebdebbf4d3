// The player's top-level window: keys and mouse in, size out. The picture lies in a child window that the add-on makes,
// and below it there may be a strip that is left free for the player's own things. In full screen the strip lies over
// the picture, and only while the mouse moves.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "player/base/PictureSize.h"
#include "player/window/PointerRest.h"

namespace tdkplay {

// What the window reports, on the thread that made it and serves its messages.
class PlayerWindowEvents {
public:
    virtual void OnPauseKey() = 0;
    virtual void OnSeekKey(double seconds) = 0;  // relative
    virtual void OnPluginKey(int direction) = 0;
    virtual void OnVolumeKey(int direction) = 0;
    virtual void OnSettingsKey() = 0;
    virtual void OnTrackKey(int direction) = 0;
    virtual void OnStartKey() = 0;
    // A menu is wanted there, on the screen.
    virtual void OnMenu(POINT place) = 0;
    // These files or folders were dropped on the window.
    virtual void OnFiles(const std::vector<std::string>& paths) = 0;
    // The timer kTickTimer has run out.
    virtual void OnTick() = 0;
    // The strip has come, gone or moved by itself.
    virtual void OnStripMoved() = 0;
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

    static constexpr UINT_PTR kTickTimer = 2;
    // Posted to Handle() by any thread when the picture was clicked: with the time of the click in milliseconds, and a
    // place in the picture as in a mouse message.
    static constexpr UINT kPictureClicked = WM_APP + 1;
    static constexpr UINT kPictureRightClicked = WM_APP + 2;

    HWND Handle() const { return window_; }
    void SetTitle(const std::string& title);
    void SetFullScreen(bool on);
    bool IsFullScreen() const { return isFullScreen_; }
    void ToggleFullScreen() { SetFullScreen(!isFullScreen_); }
    // Above the windows of other programs.
    void SetOnTop(bool on);
    bool IsOnTop() const { return isOnTop_; }
    PictureSize PictureRoom() const;
    // In the client area; empty while there is none to be seen.
    RECT StripPlace() const;
    // In a window. It is shown at first.
    void ShowStrip(bool show);
    bool HasStrip() const { return isStripWanted_; }
    // The mouse is over the window or a child of it.
    void OnPointer();
    // The largest picture in a window that fits the screen.
    static PictureSize LargestPicture(int stripHeight);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool OnKeyDown(WPARAM key);
    bool OnMusicKeyDown(WPARAM key);
    void OnPictureClick(DWORD time);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnEscape();
    void OnContextMenu(LPARAM place);
    void OnTimer(UINT_PTR timer);
    PictureSize RoomIn(int width, int height) const;

    PlayerWindowEvents* const events_;
    const int stripHeight_;
    HWND window_ = nullptr;
    std::string title_;
    bool isFullScreen_ = false;
    bool isOnTop_ = false;
    bool isStripWanted_ = true;
    RECT windowedPlace_ = {};
    PointerRest rest_;
    // Of the last click on the picture, for double clicks.
    bool hasClicked_ = false;
    DWORD clickedAt_ = 0;
    POINT clickPlace_ = {};
};

}  // namespace tdkplay
