// CVizWindow: the child window in which a view shows its picture, drawn through GDI.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include <windows.h>

#include <tdkviz/viz.h>

#include "src/render/ColorConverterAccess.h"
#include "src/render/Formats.h"
#include "src/render/FrameBuffer.h"
#include "src/render/VizSurface.h"
#include "src/support/Mutex.h"
#include "src/support/NQMaps.h"
#include "src/support/NQString.h"
#include "src/support/Relaxed.h"

namespace tdkviz {

class CVizPlugin;

// Private messages through which other threads reach the window; they are served between two frames.
inline constexpr UINT kMessageResize = 5235;       // wParam: width in the low 16 bits, height in the high
inline constexpr UINT kMessageDrawsFrames = 5236;  // wParam: the new buffer mode, lParam: the former one
inline constexpr UINT kMessageUnload = 5237;       // wParam: a CVizPlugin to unload, or 0

// The view's own receivers, called on the window's thread. Client pixels.
class IVizClickReceiver {
public:
    virtual void OnLeftClick(uint32_t x, uint32_t y, uint32_t flags) = 0;  // flags: the message's key state

protected:
    ~IVizClickReceiver() = default;
};
class IVizRightClickReceiver {
public:
    virtual void OnRightClick(uint32_t x, uint32_t y) = 0;

protected:
    ~IVizRightClickReceiver() = default;
};

// Who unloads the plug-in of kMessageUnload, on the window's thread.
class PluginUnloader {
public:
    virtual void UnloadPlugin(CVizPlugin* plugin) = 0;

protected:
    ~PluginUnloader() = default;
};

// Owns two frame buffers (32-bit, bottom-up), a display surface, and the way from one to the other.
//
// 1. Surface has DisplayWidth x DisplayHeight pixels of DisplayFormat; both frame buffers have
//    FrameWidth x FrameHeight pixels, half of the display size each way above kMaxFullSizePixels.
// 2. FrontPixels and BackPixels are distinct whenever both are set. Each allocation can fail by itself.
// 3. The window's thread alone builds and frees surfaces, and never while a frame is being drawn: from
//    BeginFrame, GetFrontPixels or GetBackPixels on. What arrives in between waits for EndFrame, or for
//    Present(true) outside of a frame.
// 4. When the display is larger than the frames and no converter is there, a frame stands in the bottom
//    left part of Surface (the first rows in memory), and the blit stretches that part over the window.
//
// A window is made, destroyed and drawn into on one thread [frame]. Resize, SetPlaying, SetDrawsFrames
// and the receivers may be called on any thread. Results are S_OK or E_FAIL.
class CVizWindow {
public:
    static constexpr int64_t kMaxFullSizePixels = 320 * 240;

    // Neither handle is owned. The Windows window stands at once, at 1 x 1 pixels, unless it can't be made.
    CVizWindow(HMODULE module, HWND parent);
    CVizWindow(const CVizWindow&) = delete;
    CVizWindow& operator=(const CVizWindow&) = delete;
    virtual ~CVizWindow();

    // Makes the Windows window with this client area. False without a parent, class or window. [frame]
    virtual bool Create(int32_t width, int32_t height);
    // Frees all that hangs on the Windows window, and the window. [frame]
    virtual void Destroy();
    // Puts the front buffer (newFrame) or the last picture on the screen. Ends the frame. [any]
    virtual void Present(bool newFrame);
    // Changes the display size; both sides are rounded up to a multiple of 4. On another thread than the
    // window's it waits until that thread looks for messages, as all calls that size a window do. [any]
    virtual HRESULT Resize(int32_t width, int32_t height);
    // The current frame and the other one; null while there is none. Good until the release. [frame]
    virtual void* GetFrontPixels();
    virtual void ReleaseFront();
    virtual void* GetBackPixels();
    virtual void ReleaseBack();
    virtual void SwapBuffers();
    // IMPAClickReceiver objects of the host [not counted], called behind the view's own receiver, without
    // a lock. Adding one twice changes nothing; removing one that isn't there gives E_FAIL. [any]
    virtual HRESULT AddClickReceiver(IUnknown* receiver);
    virtual HRESULT AddRightClickReceiver(IUnknown* receiver);
    virtual HRESULT RemoveClickReceiver(IUnknown* receiver);
    virtual HRESULT RemoveRightClickReceiver(IUnknown* receiver);
    // Between these two a plug-in may be painting: messages that would take away what it uses wait, in both
    // modes, and are served by EndFrame in the order in which they came. [frame]
    void BeginFrame();
    void EndFrame();
    // Paints the client area black. [frame]
    virtual void Blank();

protected:
    // Makes everything for a display size; nothing happens if it stands already. [frame]
    virtual void BuildSurfaces(int32_t width, int32_t height);
    virtual void FreeSurfaces();

public:
    int32_t GetFrameWidth() const { return FrameWidth; }    // pixels
    int32_t GetFrameHeight() const { return FrameHeight; }  // pixels
    int32_t GetFramePitch() const { return FramePitch; }    // bytes, negative: the rows are bottom-up
    int32_t GetFrameStride() const;                         // pixels from one row to the next in memory
    // Effects write their rows without gaps: moves those of such a frame to where the window's begin. [frame]
    void SpreadRows(void* frame) const;
    HWND GetWindowHandle() const { return Window; }
    // False while another thread holds the surfaces: for ever, if that thread was ended by force.
    virtual bool IsUnlocked() TDKVIZ_UNCHECKED;
    // The view's receivers [not counted], or null.
    void SetClickTarget(IVizClickReceiver* target) { ClickTarget = target; }
    void SetRightClickTarget(IVizRightClickReceiver* target) { RightClickTarget = target; }
    // Null: kMessageUnload does nothing. [not counted]
    void SetPluginUnloader(PluginUnloader* unloader) { unloader_ = unloader; }
    void SetShown(bool shown) { Shown = shown; }
    // Gives the former value. The end of playing wipes the picture at once; a frame that is under way then
    // comes out black. [any]
    bool SetPlaying(bool playing);
    // False for a plug-in that paints the window by itself; the buffers go and come by message. [any]
    void SetDrawsFrames(bool drawsFrames);

protected:
    // The message procedure's handlers, all on the window's thread.
    void OnPaint();
    void OnLeftButton(uint32_t x, uint32_t y, uint32_t flags);
    void OnRightButton(uint32_t x, uint32_t y, uint32_t flags);
    void OnDrawsFramesChanged(bool former);
    void OnUnload(CVizPlugin* plugin);
    void Close();
    void OnGone(HWND window);

    // True if another thread owns the window: it has done the whole Resize.
    bool ResizeOnOwnThread(int32_t width, int32_t height);
    void SizeWindow(int32_t width, int32_t height);
    // Ends the frame: what waited for that comes now.
    void ServeDeferred();
    // At once outside of a frame; within one, at its end before all else that waits. [frame]
    void ResizeAfterFrame(int32_t width, int32_t height);
    void StoreFrameSize(int32_t width, int32_t height);
    void ChooseFormats();
    // Clears NeedsConversion if there is none; the display then takes the format of the frames.
    void ChooseConverter();
    void MakeFrameBuffers();
    void MakeSurface();
    void FreeFrameBuffers();
    void TakeDeviceContexts();
    void GiveDeviceContextsBack();

    // Fixed after construction.
    const HWND Parent;
    const HMODULE Module;
    const char* const ClassName;
    CNQString Title;

    // Written by one thread, read by others.
    Relaxed<HWND> Window;  // null before Create, after Destroy, and when it has gone by another's hand
    Relaxed<IVizRightClickReceiver*> RightClickTarget;
    Relaxed<IVizClickReceiver*> ClickTarget;
    Relaxed<PluginUnloader*> unloader_;
    Relaxed<int32_t> FrameWidth, FrameHeight;
    Relaxed<int32_t> FramePitch;
    Relaxed<int32_t> DisplayWidth, DisplayHeight;
    Relaxed<bool> Rebuilding;  // frames are refused
    Relaxed<bool> Shown;
    std::atomic<bool> Playing{false};
    std::atomic<bool> DrawsFrames{true};

    // Guarded by SizeLock, which is held across no call into a plug-in or receiver.
    KVAWinMutex SizeLock;
    HDC WindowDC = nullptr;  // both stand while frames are drawn
    HDC MemoryDC = nullptr;
    VizSurfacePtr Surface;
    BitmapInfoRecord DisplayInfo = {};
    BitmapInfoRecord FrameInfo = {};
    FrameBuffer RawBuffer0, RawBuffer1;
    bool frontInUse_ = false;
    bool inFrame_ = false;
    bool backInUse_ = false;
    bool wipePending_ = false;  // the next frame comes out black

    // Other threads read these under SizeLock, and only while there is a Surface. The window's thread alone writes
    // them: under SizeLock in this class, while CDDVizWindow, which has no Surface until it falls back, uses them
    // without it.
    uint32_t DisplayFormat = FormatRGB32;
    uint32_t FrameFormat = FormatRGB32;
    int32_t DisplayPitch = 0;
    std::unique_ptr<ColorConverterAccess> Converter;
    ColorConverterFunction ConvertFrame = nullptr;
    bool NeedsConversion = false;  // Present goes through ConvertFrame
    uint8_t* FrontPixels = nullptr;
    uint8_t* BackPixels = nullptr;

    // Guarded by receiverLock_.
    KVAWinMutex receiverLock_;
    CNQMapPtrToPtr ClickReceivers;
    CNQMapPtrToPtr RightClickReceivers;

private:
    friend struct VizWindowMessages;
    struct Deferred {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    };

    bool MakeWindow(int32_t width, int32_t height);
    bool IsOnOwnThread() const;
    bool DeferDuringFrame(UINT message, WPARAM wParam, LPARAM lParam);
    void DeferWaitingUnloads(HWND window);
    void TakeFrame();
    void CopyFrameToSurface();
    void WipeSurface();
    void WipeFrames();
    bool FrameFillsDisplay() const;
    RECT PictureInSurface() const;
    void TellReceivers(const CNQMapPtrToPtr& receivers, uint32_t x, uint32_t y, uint32_t flags);

    std::vector<Deferred> deferred_;  // the window's thread's own
};

}  // namespace tdkviz
