#include "src/settings/VizEffectControl.h"

#include <algorithm>
#include <mutex>

#include "src/support/Module.h"

namespace tdkviz {

namespace {

constexpr char kClassName[] = "VizEffectControl";
constexpr char kTitle[] = "TestVizEffectControl";

// What the inner rectangle leaves free of the client area.
constexpr RECT kMargins = {2, 2, 3, 4};
// The class stands as long as there are controls: the library may be unloaded next.
std::mutex g_classLock;
int g_controls = 0;  // guarded by g_classLock

}  // namespace

VizEffectControl::VizEffectControl() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = ModuleHandle;
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
    windowClass.lpszClassName = kClassName;
    const std::lock_guard guard(g_classLock);
    ++g_controls;
    RegisterClassA(&windowClass);
}

VizEffectControl::~VizEffectControl() {
    Destroy();
    const std::lock_guard guard(g_classLock);
    if (--g_controls == 0) UnregisterClassA(kClassName, ModuleHandle);
}

bool VizEffectControl::Create(uint32_t id, HWND parent, int32_t x, int32_t y, int32_t width, int32_t height) {
    Id = id;
    Window = CreateWindowExA(WS_EX_CLIENTEDGE, kClassName, kTitle, WS_CHILD | WS_VISIBLE, x, y, width, height, parent,
                             nullptr, ModuleHandle, nullptr);
    BitmapInfoRecord info = {};
    if (FillBitmapInfo(&info, sizeof info, FormatRGB32, width, height, nullptr, 0) > 0) {
        Picture.reset(CreateVizSurface(&info));
    }
    if (!Window) return false;
    SetWindowLongPtrA(Window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    return true;
}

void VizEffectControl::Destroy() {
    Picture.reset();
    const HWND window = Window;
    if (!window) return;
    Window = nullptr;
    SetWindowLongPtrA(window, GWLP_USERDATA, 0);
    DestroyWindow(window);
}

void VizEffectControl::SetRanges(int32_t minX, int32_t maxX, int32_t minY, int32_t maxY) {
    MinX = minX;
    MaxX = maxX;
    MinY = minY;
    MaxY = maxY;
}

void VizEffectControl::SetValue(uint32_t axis, int32_t value) {
    Store(axis, value);
    TellParent();
}

void VizEffectControl::SetValues(int32_t x, int32_t y) {
    Store(kAxisX, x);
    Store(kAxisY, y);
    TellParent();
}

void VizEffectControl::Store(uint32_t axis, int32_t value) {
    if (axis == kAxisX) ValueX = std::clamp(value, MinX, MaxX);
    if (axis != kAxisY) return;
    ValueY = std::clamp(value, MinY, MaxY);
    HasValueY = true;
}

void VizEffectControl::TellParent() {
    PictureDirty = true;
    if (!Window) return;
    PostMessageA(GetParent(Window), kMessageValueChanged, Id,
                 MAKELPARAM(static_cast<WORD>(ValueX), static_cast<WORD>(ValueY)));
    InvalidateRect(Window, nullptr, TRUE);
}

RECT VizEffectControl::Inner() const {
    RECT client = {};
    GetClientRect(Window, &client);
    return {client.left + kMargins.left, client.top + kMargins.top, client.right - kMargins.right,
            client.bottom - kMargins.bottom};
}

}  // namespace tdkviz
