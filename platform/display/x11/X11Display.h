// Windows on an X server. Any thread may call any operation but the destructor.
#pragma once

#include <atomic>
#include <memory>

#include "platform/display/Display.h"
#include "platform/display/x11/X11Connection.h"
#include "platform/display/x11/X11Cursors.h"
#include "platform/display/x11/X11EventReader.h"
#include "platform/display/x11/X11Windows.h"

namespace tdkp {

class X11Display final : public Display {
public:
    X11Display(std::shared_ptr<X11Connection> connection, DisplaySink& sink);

    PixelFormat Format() const override { return connection_->Visual().format; }
    SIZE ScreenSize() const override { return reader_.ScreenSize(); }
    const uint32_t* Palette() const override { return connection_->Palette(); }

    WindowId CreateWindow(const DisplayWindowInfo& info) override;
    void DestroyWindow(WindowId window) override;
    void Move(WindowId window, int x, int y, int width, int height) override;
    void Show(WindowId window, bool visible, bool activate) override;
    void Raise(WindowId window) override;
    void SetTitle(WindowId window, const std::string& title) override;
    void SetFullScreen(WindowId window, bool on) override;
    void SetAlwaysOnTop(WindowId window, bool on) override;
    void SetFocus(WindowId window) override;
    void SetCapture(WindowId window, bool on) override;
    bool GrabInput(WindowId window) override;
    void ReleaseInput() override;
    void SetCursorShape(WindowId window, uint32_t shape) override;

    bool GetPointer(POINT* point) const override;
    void KeepAwake(bool on) override;

    bool IsForeign(WindowId window) const override;
    bool GetScreenRect(WindowId window, RECT* rect) const override;

    bool MakePicture(WindowId window, int width, int height, Raster* raster) override;
    void DropPicture(WindowId window) override;
    void PutPicture(WindowId window, const RECT& rect) override;

private:
    bool CreateOnServer(xcb_window_t id, const X11Window& window);
    void WatchForeign(WindowId window);
    void Place(WindowId window, const X11Place& place);
    void ShowOrHide(WindowId id, bool activate);

    const std::shared_ptr<X11Connection> connection_;
    X11Windows windows_;
    X11Cursors cursors_;
    std::atomic<bool> keepsAwake_{false};
    X11EventReader reader_;  // uses the others from its own thread, so it goes first
};

}  // namespace tdkp
