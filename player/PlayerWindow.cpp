#include "player/PlayerWindow.h"

#include "player/ExitCode.h"

namespace tdkplay {
namespace {

constexpr char kClassName[] = "tdkplay";
constexpr DWORD kWindowedStyle = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
constexpr DWORD kFullScreenStyle = WS_POPUP | WS_CLIPCHILDREN;
constexpr double kSeekSeconds = 5.0;

void RegisterWindowClass(WNDPROC procedure) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);  // fails if it is registered already
}

}  // namespace

PlayerWindow::PlayerWindow(int width, int height, PlayerWindowEvents* events) : events_(events) {
    RegisterWindowClass(Procedure);
    RECT frame = {0, 0, width, height};
    AdjustWindowRect(&frame, kWindowedStyle, FALSE);
    window_ = CreateWindowExA(0, kClassName, kClassName, kWindowedStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                              frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
    if (!window_) throw PlayerError(ExitCode::kNoDisplay, "the display makes no window");
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ShowWindow(window_, SW_SHOW);
}

PlayerWindow::~PlayerWindow() {
    SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
}

void PlayerWindow::SetFullScreen(bool on) {
    if (on == isFullScreen_) return;
    isFullScreen_ = on;
    if (on) GetWindowRect(window_, &windowedPlace_);
    const RECT place = on ? RECT{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)} : windowedPlace_;
    SetWindowLongPtrA(window_, GWL_STYLE, static_cast<LONG_PTR>((on ? kFullScreenStyle : kWindowedStyle) | WS_VISIBLE));
    SetWindowPos(window_, HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_FRAMECHANGED);
}

bool PlayerWindow::OnKeyDown(WPARAM key) {
    switch (key) {
        case VK_SPACE:
            events_->OnPauseKey();
            return true;
        case VK_LEFT:
            events_->OnSeekKey(-kSeekSeconds);
            return true;
        case VK_RIGHT:
            events_->OnSeekKey(kSeekSeconds);
            return true;
        case VK_UP:
        case VK_OEM_COMMA:
            events_->OnPluginKey(-1);
            return true;
        case VK_DOWN:
        case VK_OEM_PERIOD:
            events_->OnPluginKey(1);
            return true;
        case 'F':
            SetFullScreen(!isFullScreen_);
            return true;
        case VK_ESCAPE:
            OnEscape();
            return true;
        default:
            return false;
    }
}

void PlayerWindow::OnEscape() {
    if (isFullScreen_)
        SetFullScreen(false);
    else
        events_->OnCloseRequest();
}

LRESULT CALLBACK PlayerWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<PlayerWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (!self || !self->events_) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_KEYDOWN:
            if (self->OnKeyDown(wParam)) return 0;
            break;
        case WM_SIZE:
            self->events_->OnSize(LOWORD(lParam), HIWORD(lParam), wParam != SIZE_MINIMIZED);
            return 0;
        case WM_CLOSE:  // the view has to end before its parent window does
            self->events_->OnCloseRequest();
            return 0;
        default:
            break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace tdkplay
