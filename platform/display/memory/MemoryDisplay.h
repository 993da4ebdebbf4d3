// A display without a server: the tree of windows with their places, and pictures in plain memory.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/display/Display.h"
#include "platform/kernel/Dispatcher.h"

namespace tdkp {

struct MemoryDisplayMode {
    int width = 1920;
    int height = 1080;
    int depth = 32;  // 32, 24, 16, 15 or 8
};

bool IsMemoryDisplayMode(const MemoryDisplayMode& mode);

// Any thread may call any operation. It never calls a sink: nothing happens here that its caller doesn't know.
class MemoryDisplay final : public Display {
public:
    explicit MemoryDisplay(const MemoryDisplayMode& mode);

    PixelFormat Format() const override { return format_; }
    // False for a depth that isn't one. Windows keep the pictures that they have until they are sized.
    bool ChangeDepth(int depth);
    SIZE ScreenSize() const override { return size_; }
    const uint32_t* Palette() const override;

    WindowId CreateWindow(const DisplayWindowInfo& info) override;
    void DestroyWindow(WindowId window) override;
    void Move(WindowId window, int x, int y, int width, int height) override;
    void Show(WindowId, bool, bool) override {}
    void Raise(WindowId) override {}
    void SetTitle(WindowId, const std::string&) override {}
    void SetFullScreen(WindowId window, bool on) override;
    void SetAlwaysOnTop(WindowId, bool) override {}
    void SetFocus(WindowId) override {}
    void SetCapture(WindowId, bool) override {}
    bool GrabInput(WindowId) override { return true; }
    void ReleaseInput() override {}
    void SetCursorShape(WindowId, uint32_t) override {}

    bool GetPointer(POINT*) const override { return false; }
    void KeepAwake(bool) override {}

    bool IsForeign(WindowId) const override { return false; }
    bool GetScreenRect(WindowId window, RECT* rect) const override;

    bool MakePicture(WindowId window, int width, int height, Raster* raster) override;
    void DropPicture(WindowId window) override;
    void PutPicture(WindowId, const RECT&) override {}

private:
    struct Place {
        int x = 0, y = 0, width = 0, height = 0;
    };
    struct Window {
        WindowId parent = 0;
        Place place;
        Place beforeFullScreen;
        bool fullScreen = false;
        std::unique_ptr<uint8_t[]> pixels;
        Raster raster;
    };

    std::atomic<PixelFormat> format_;
    const SIZE size_;
    mutable LayerMutex mutex_;
    // Guarded by mutex_.
    std::unordered_map<WindowId, Window> windows_;
};

}  // namespace tdkp
