#include "src/render/VizWindow.h"

#include <mutex>

#include "src/render/VizWindowProc.h"

namespace tdkviz {

namespace {

constexpr char kClassName[] = "TDVisualizationClass";
constexpr char kTitle[] = "TDVisualizationWindow";
constexpr UINT kClassStyle = CS_OWNDC | CS_BYTEALIGNCLIENT | CS_BYTEALIGNWINDOW;
constexpr DWORD kWindowExStyle = WS_EX_NOPARENTNOTIFY;
constexpr DWORD kWindowStyle = WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
constexpr uint32_t kReceiverBlockSize = 10;
constexpr int32_t kSizeStep = 4;
constexpr int32_t kMaxSide = 0x7FFF & ~(kSizeStep - 1);  // what a window can have

// The class stands as long as windows exist, in whichever threads they are made.
struct WindowClass {
    std::mutex lock;
    bool registered = false;
    int windows = 0;

    void AddWindow() {
        const std::lock_guard guard(lock);
        ++windows;
    }
    bool Register(HMODULE module) {
        const std::lock_guard guard(lock);
        if (registered) return true;
        WNDCLASSA windowClass = {};
        windowClass.style = kClassStyle;
        windowClass.lpfnWndProc = VizWindowProc;
        windowClass.cbWndExtra = sizeof(void*);
        windowClass.hInstance = module;
        windowClass.lpszClassName = kClassName;
        registered = RegisterClassA(&windowClass) != 0;
        return registered;
    }
    void RemoveWindow(HMODULE module) {
        const std::lock_guard guard(lock);
        if (--windows > 0 || !registered) return;
        UnregisterClassA(kClassName, module);
        registered = false;
    }
};
WindowClass g_windowClass;

int32_t RoundUp(int32_t size) {
    if (size > kMaxSide) return kMaxSide;
    return size < 1 ? 0 : (size + kSizeStep - 1) & ~(kSizeStep - 1);
}

RECT ClientRect(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return client;
}

}  // namespace

CVizWindow::CVizWindow(HMODULE module, HWND parent)
    : Parent(parent),
      Module(module),
      ClassName(kClassName),
      Title(kTitle),
      ClickReceivers(kReceiverBlockSize),
      RightClickReceivers(kReceiverBlockSize) {
    g_windowClass.AddWindow();
    CVizWindow::Create(1, 1);
}

CVizWindow::~CVizWindow() {
    CVizWindow::Destroy();
    g_windowClass.RemoveWindow(Module);
}

bool CVizWindow::Create(int32_t width, int32_t height) {
    if (!Parent || !g_windowClass.Register(Module) || !MakeWindow(width, height)) return false;
    Converter = std::make_unique<ColorConverterAccess>();
    Converter->Initialize();
    TakeDeviceContexts();
    BuildSurfaces(width, height);
    return true;
}

bool CVizWindow::MakeWindow(int32_t width, int32_t height) {
    const HWND window = CreateWindowExA(kWindowExStyle, ClassName, Title.GetText(), kWindowStyle, 0, 0, width, height,
                                        Parent, nullptr, Module, nullptr);
    if (!window) return false;
    SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(this));
    Window = window;
    const RECT client = ClientRect(window);
    SetWindowPos(window, nullptr, 0, 0, 2 * width - (client.right - client.left),
                 2 * height - (client.bottom - client.top), SWP_NOMOVE | SWP_NOZORDER);
    return true;
}

void CVizWindow::Destroy() {
    FreeSurfaces();
    GiveDeviceContextsBack();
    Converter.reset();
    ConvertFrame = nullptr;
    const HWND window = Window;
    if (!window) return;
    Window = nullptr;
    SetWindowLongPtrA(window, 0, 0);
    DestroyWindow(window);
}

void CVizWindow::Close() {
    DeferWaitingUnloads(Window);
    Destroy();
    ServeDeferred();
}

// With its parent as a rule. What a plug-in may be painting into stays until the frame's end.
void CVizWindow::OnGone(HWND window) {
    GiveDeviceContextsBack();
    Window = nullptr;
    SetWindowLongPtrA(window, 0, 0);
    DeferWaitingUnloads(window);
    if (!DeferDuringFrame(WM_NCDESTROY, 0, 0)) {
        Destroy();
        ServeDeferred();
    }
}

// What is still to be unloaded would go with the window.
void CVizWindow::DeferWaitingUnloads(HWND window) {
    MSG message;
    while (window && PeekMessageA(&message, window, kMessageUnload, kMessageUnload, PM_REMOVE)) {
        const MutexLock lock(&SizeLock);
        deferred_.push_back({message.message, message.wParam, message.lParam});
    }
}

HRESULT CVizWindow::Resize(int32_t width, int32_t height) {
    const int32_t roundedWidth = RoundUp(width), roundedHeight = RoundUp(height);
    if (ResizeOnOwnThread(roundedWidth, roundedHeight)) return S_OK;
    {
        const MutexLock lock(&SizeLock);
        if (Window && DrawsFrames) {
            BuildSurfaces(roundedWidth, roundedHeight);
        } else {
            // A surface of the old size must not be taken for one of the new size later.
            FreeSurfaces();
            DisplayWidth = roundedWidth;
            DisplayHeight = roundedHeight;
        }
    }
    SizeWindow(roundedWidth, roundedHeight);
    Present(false);
    return S_OK;
}

bool CVizWindow::ResizeOnOwnThread(int32_t width, int32_t height) {
    const HWND window = Window;
    if (!window || IsOnOwnThread()) return false;
    SendMessageA(window, kMessageResize, MAKEWPARAM(static_cast<WORD>(width), static_cast<WORD>(height)), 0);
    return true;
}

void CVizWindow::SizeWindow(int32_t width, int32_t height) {
    const HWND window = Window;
    if (!window) return;
    const RECT client = ClientRect(window);
    MoveWindow(window, client.left, client.top, client.left + width, client.top + height, FALSE);
}

bool CVizWindow::IsUnlocked() {
    if (SizeLock.TryLock() != S_OK) return false;
    SizeLock.Unlock();
    return true;
}

bool CVizWindow::IsOnOwnThread() const {
    return GetWindowThreadProcessId(Window, nullptr) == GetCurrentThreadId();
}

bool CVizWindow::SetPlaying(bool playing) {
    const bool former = Playing.exchange(playing);
    const MutexLock lock(&SizeLock);
    const bool inFrame = frontInUse_ || backInUse_;
    if (playing && !inFrame) wipePending_ = false;
    if (!former || playing || !DrawsFrames || !Surface || DisplayInfo.Header.biSizeImage == 0) return former;
    WipeSurface();
    if (!inFrame) WipeFrames();
    Present(false);
    // A frame that is being made on the window's thread must not bring the picture back.
    wipePending_ = inFrame || !IsOnOwnThread();
    return former;
}

void CVizWindow::SetDrawsFrames(bool drawsFrames) {
    const bool former = DrawsFrames.exchange(drawsFrames);
    if (const HWND window = Window) PostMessageA(window, kMessageDrawsFrames, drawsFrames, former);
}

void CVizWindow::OnDrawsFramesChanged(bool former) {
    const bool draws = DrawsFrames;
    if (former == draws) return;
    if (draws) {
        TakeDeviceContexts();
        BuildSurfaces(DisplayWidth, DisplayHeight);
    } else {
        FreeSurfaces();
        GiveDeviceContextsBack();
    }
    if (Shown && !Playing) InvalidateRect(Window, nullptr, TRUE);
}

void CVizWindow::TakeDeviceContexts() {
    const MutexLock lock(&SizeLock);
    if (WindowDC) return;
    WindowDC = GetDC(Window);
    if (!WindowDC) return;
    MemoryDC = CreateCompatibleDC(WindowDC);
    SetStretchBltMode(WindowDC, COLORONCOLOR);
    if (MemoryDC) SetStretchBltMode(MemoryDC, COLORONCOLOR);
}

void CVizWindow::GiveDeviceContextsBack() {
    const MutexLock lock(&SizeLock);
    if (!WindowDC) return;
    if (MemoryDC) DeleteDC(MemoryDC);
    ReleaseDC(Window, WindowDC);
    MemoryDC = nullptr;
    WindowDC = nullptr;
}

void CVizWindow::Blank() {
    const HWND window = Window;
    if (!window) return;
    const HDC context = GetDC(window);
    const RECT client = ClientRect(window);
    FillRect(context, &client, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    ReleaseDC(window, context);
    InvalidateRect(window, &client, FALSE);
}

}  // namespace tdkviz
