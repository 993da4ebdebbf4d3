#include "player/PlayerWindow.h"

#include <algorithm>

#include "player/ExitCode.h"

namespace tdkplay {
namespace {

constexpr char kClassName[] = "tdkplay";
constexpr DWORD kWindowedStyle = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
constexpr DWORD kFullScreenStyle = WS_POPUP | WS_CLIPCHILDREN;
constexpr double kSeekSeconds = 5.0;
constexpr int kOffsetStep = 10;       // milliseconds
constexpr int kLargeOffsetStep = 50;  // with Shift

void RegisterWindowClass(WNDPROC procedure) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);  // fails if it is registered already
}

int OffsetStep() {
    return GetKeyState(VK_SHIFT) < 0 ? kLargeOffsetStep : kOffsetStep;
}

}  // namespace

PlayerWindow::PlayerWindow(PictureSize size, PlayerWindowEvents* events, int stripHeight)
    : events_(events), stripHeight_(stripHeight) {
    RegisterWindowClass(Procedure);
    RECT frame = {0, 0, size.Width, size.Height + stripHeight};
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
    // The strip comes or goes even if the window had the screen's size before.
    if (events_) events_->OnSize(PictureRoom(), true);
}

PictureSize PlayerWindow::RoomIn(int width, int height) const {
    return {width, std::max(height - (isFullScreen_ ? 0 : stripHeight_), 0)};
}

PictureSize PlayerWindow::PictureRoom() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return RoomIn(client.right, client.bottom);
}

RECT PlayerWindow::StripPlace() const {
    RECT place = {};
    GetClientRect(window_, &place);
    place.top = PictureRoom().Height;
    return place;
}

PictureSize PlayerWindow::LargestPicture(int stripHeight) {
    RECT frame = {0, 0, 0, stripHeight};
    AdjustWindowRect(&frame, kWindowedStyle, FALSE);
    return {std::max(GetSystemMetrics(SM_CXSCREEN) - static_cast<int>(frame.right - frame.left), kSmallestSide),
            std::max(GetSystemMetrics(SM_CYSCREEN) - static_cast<int>(frame.bottom - frame.top), kSmallestSide)};
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
        case VK_OEM_PLUS:
        case VK_ADD:
            events_->OnVolumeKey(1);
            return true;
        case VK_OEM_MINUS:
        case VK_SUBTRACT:
            events_->OnVolumeKey(-1);
            return true;
        case VK_OEM_4:  // [
            events_->OnOffsetKey(-OffsetStep());
            return true;
        case VK_OEM_6:  // ]
            events_->OnOffsetKey(OffsetStep());
            return true;
        case 'S':
        case VK_F2:
            events_->OnSettingsKey();
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
            self->events_->OnSize(self->RoomIn(LOWORD(lParam), HIWORD(lParam)), wParam != SIZE_MINIMIZED);
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
