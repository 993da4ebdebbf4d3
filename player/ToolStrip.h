// The strip below the picture: one tool button with a picture and a label, and a line of text beside it.
#pragma once

#include <windows.h>

#include <string>

namespace tdkplay {

// What the strip reports, on the thread that made it.
class ToolStripEvents {
public:
    virtual void OnToolButton() = 0;
    // Somebody has posted kPictureWaits.
    virtual void OnPictureWaits() = 0;

protected:
    ~ToolStripEvents() = default;
};

// It never takes the keyboard from its parent.
class ToolStrip {
public:
    static constexpr int kHeight = 28;  // pixels
    // Posted to Handle() by any thread that has a new picture to fetch.
    static constexpr UINT kPictureWaits = WM_APP + 1;

    ToolStrip(HWND parent, ToolStripEvents& events);
    ~ToolStrip();
    ToolStrip(const ToolStrip&) = delete;
    ToolStrip& operator=(const ToolStrip&) = delete;

    HWND Handle() const { return window_; }
    // In the parent's client area; an empty one hides the strip.
    void Place(const RECT& place);
    // The picture becomes the strip's; null for none.
    void SetPicture(HBITMAP picture);
    void SetLabel(const std::string& label);
    void SetText(const std::string& text);
    // Drawn as held down for as long as what the button opened is there.
    void SetChecked(bool checked);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnMouse(UINT message, LPARAM position);
    void OnPaint();
    void Paint(HDC dc, const RECT& strip) const;
    void PaintButton(HDC dc) const;
    void PaintPicture(HDC dc, int left, int top) const;
    SIZE PictureExtent() const;
    RECT ButtonPlace() const;
    void Redraw() const { InvalidateRect(window_, nullptr, FALSE); }

    ToolStripEvents& events_;
    HWND window_ = nullptr;
    HBITMAP picture_ = nullptr;
    std::string label_;
    std::string text_;
    int labelWidth_ = 0;  // pixels
    bool isHeld_ = false;
    bool isOver_ = false;  // the mouse, while it holds the button
    bool isChecked_ = false;
};

}  // namespace tdkplay
