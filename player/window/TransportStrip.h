// The strip below the picture: where the music is, what goes on, and the buttons for it.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "player/window/StripFace.h"

namespace tdkplay {

// What the strip reports, on the thread that made it.
class TransportEvents {
public:
    virtual void OnPlayButton() = 0;
    virtual void OnStepButton(int direction) = 0;
    virtual void OnSeekBar(double seconds) = 0;
    virtual void OnVolumeBar(int percent) = 0;
    virtual void OnPointerInStrip() = 0;

protected:
    ~TransportEvents() = default;
};

// The settings button's part of it.
class ToolButtonEvents {
public:
    virtual void OnToolButton() = 0;
    // Somebody has posted kPictureWaits.
    virtual void OnPictureWaits() = 0;

protected:
    ~ToolButtonEvents() = default;
};

// A child window that never takes the keyboard from its parent.
class TransportStrip {
public:
    static constexpr int kHeight = StripLayout::kHeight;
    // Posted to Handle() by any thread that has a new picture to fetch.
    static constexpr UINT kPictureWaits = WM_APP + 1;

    TransportStrip(HWND parent, TransportEvents& events);
    ~TransportStrip();
    TransportStrip(const TransportStrip&) = delete;
    TransportStrip& operator=(const TransportStrip&) = delete;

    HWND Handle() const { return window_; }
    // In the parent's client area, above all other children; an empty one hides the strip.
    void Place(const RECT& place);
    bool IsShown() const { return isShown_; }
    // Paints only what can be seen to have changed.
    void SetState(const StripState& state);

    // Null for none.
    void SetTool(ToolButtonEvents* tool) { tool_ = tool; }
    // The picture becomes the strip's; null for none.
    void SetPicture(HBITMAP picture);
    void SetLabel(const std::string& label);
    // Drawn as held down for as long as what the button opened is there.
    void SetChecked(bool checked);
    // In the place of the title, until that changes.
    void SetNotice(const std::string& notice);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnPaint();
    void OnMove(POINT point);
    void OnPress(POINT point);
    void OnRelease(POINT point);
    void OnLeave();
    void AskForLeave() const;
    void LetGo();
    void Click(StripPart part);
    void FollowDrag(int x);
    void Arrange();
    std::string TimeText(double position) const;
    void Redraw() const { InvalidateRect(window_, nullptr, FALSE); }

    TransportEvents& events_;
    ToolButtonEvents* tool_ = nullptr;
    HWND window_ = nullptr;
    std::unique_ptr<Canvas> canvas_;
    StripLayout layout_;
    StripFace face_;
    bool isShown_ = false;
};

}  // namespace tdkplay
