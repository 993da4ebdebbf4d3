// CDDVizWindow: the output window that shows frames through DirectDraw.
#pragma once

#include "src/render/VizWindow.h"
#include "src/support/RefPtr.h"

struct IDirectDraw;
struct IDirectDrawSurface;

namespace tdkviz {

// Stretching to the window's size is DirectDraw's work: frames have up to kMaxFrameWidth x kMaxFrameHeight
// pixels, whatever the window's size. Calls go to the primary surface of the desktop, with a clipper on the
// window, in the normal cooperative level.
//
// 1. While the display has the format of the frames (direct mode, NeedsConversion is false) the frames are the
//    two surfaces, locked while somebody uses their pixels, bottom-up to those who do: the blit mirrors them.
//    Else (conversion mode) the frames are those of CVizWindow, and are converted into Surface0 to be shown.
// 2. What DirectDraw can't do for good turns the object into a CVizWindow (UseGDI), for the rest of its life.
//    That can happen in the middle of a frame: what GetFrontPixels and GetBackPixels gave before is gone, and
//    the frame has the size that GetFrameWidth and GetFrameHeight say after them.
// 3. SurfaceLockN is held from the lock of surface N to its unlock, by the window's thread. Locks are entered
//    in the order SurfaceLock0, SurfaceLock1, SizeLock; none of them with ObjectLock held. To keep the order
//    whichever surface is asked for first, who holds SurfaceLock1 holds SurfaceLock0 as well.
// 4. While nothing is built (before the first Resize, and in window mode) there are no frames.
//
// Operations, threads and results are those of CVizWindow, but that Resize gives S_FALSE and doesn't round.
// The last picture stays when playing stops.
class CDDVizWindow final : public CVizWindow {
public:
    static constexpr int32_t kMaxFrameWidth = 480;
    static constexpr int32_t kMaxFrameHeight = 360;

    CDDVizWindow(HMODULE module, HWND parent);
    ~CDDVizWindow() override;

    // Every call blits the whole frame; while the front surface is locked nothing happens.
    void Present(bool newFrame) override;
    HRESULT Resize(int32_t width, int32_t height) override;
    // Once per frame and surface these lock; null if the surface was lost and couldn't be restored.
    void* GetFrontPixels() override;
    void ReleaseFront() override;
    void* GetBackPixels() override;
    void ReleaseBack() override;
    void SwapBuffers() override;
    void Blank() override;
    bool IsUnlocked() TDKVIZ_UNCHECKED override;

protected:
    void BuildSurfaces(int32_t width, int32_t height) override;
    void FreeSurfaces() override;

private:
    // One of the two surfaces with what belongs to it.
    struct SurfaceParts {
        RefPtr<IDirectDrawSurface>& surface;
        void*& pixels;
        bool& isToBeCleared;
    };
    SurfaceParts PartsOf(int index);
    int FrontIndex() const { return Surface0IsFront ? 0 : 1; }

    bool StartDirectDraw();
    bool MakeDirectDraw();
    bool MakePrimarySurface();
    void StopDirectDraw();
    bool MakeSurfaces(int32_t width, int32_t height);
    bool MakeSurface(int index, int32_t width, int32_t height);
    bool ChooseMode(uint32_t displayFormat);
    bool SuitsFrames(int32_t pitch) const;
    // The pixels of a surface, locked, or null; with UseGDI set afterwards the window fell back.
    void* LockSurface(int index);
    void UnlockSurface(int index);
    void EnterSurface(int index) TDKVIZ_UNCHECKED;
    void LeaveSurface(int index) TDKVIZ_UNCHECKED;
    void FallBack();
    void ShowFrame();
    bool IsCleared(int index);
    bool ConvertIntoSurface();
    RECT PlaceOnScreen() const;

    // The window's thread's own.
    RefPtr<IDirectDraw> DirectDraw;  // null until StartDirectDraw
    RefPtr<IDirectDrawSurface> PrimarySurface;
    RefPtr<IDirectDrawSurface> Surface0, Surface1;  // both at the frame size, or both null
    bool Surface0IsFront = true;
    void* LockedPixels0 = nullptr;  // null while the surface isn't locked
    void* LockedPixels1 = nullptr;
    bool isToBeCleared0_ = false;  // by the lock that comes next
    bool isToBeCleared1_ = false;
    int32_t surfacePitch_ = 0;  // bytes; the least there can be until a lock has told
    bool ComInitialized = false;
    DWORD comThread_ = 0;  // that ComInitialized is about

    Relaxed<bool> UseGDI = false;  // set once, where the fall-back is decided; other threads look at it
    KVAWinMutex ObjectLock;        // StartDirectDraw and StopDirectDraw
    KVAWinMutex SurfaceLock0, SurfaceLock1;
};

}  // namespace tdkviz
