#include "player/window/PlayerWindow.h"

#include <algorithm>
#include <cstdlib>

#include "player/base/ExitCode.h"
#include "player/window/DroppedFiles.h"

namespace tdkplay {
namespace {

constexpr char kClassName[] = "tdkplay";
constexpr DWORD kWindowedStyle = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
constexpr DWORD kFullScreenStyle = WS_POPUP | WS_CLIPCHILDREN;
constexpr double kSeekSeconds = 5.0;
constexpr int kMenuCorner = 16;  // pixels
// What WM_CONTEXTMENU says instead of a place, and what is none of its places.
constexpr LPARAM kFromKeyboard = -1;
constexpr LPARAM kFromPointer = 0;
constexpr int kClickReach = 4;        // pixels between the clicks of a double click
constexpr int kOffsetStep = 10;       // milliseconds
constexpr int kLargeOffsetStep = 50;  // with Shift

void RegisterWindowClass(WNDPROC procedure) {
    WNDCLASSA windowClass = {};
    windowClass.style = CS_DBLCLKS;
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
    if (events) DragAcceptFiles(window_, TRUE);
    ShowWindow(window_, SW_SHOW);
}

PlayerWindow::~PlayerWindow() {
    SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
}

void PlayerWindow::SetFullScreen(bool on) {
    if (on == isFullScreen_) return;
    isFullScreen_ = on;
    if (on)
        rest_.Begin(window_);
    else
        rest_.End();
    if (on) GetWindowRect(window_, &windowedPlace_);
    const RECT place = on ? RECT{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)} : windowedPlace_;
    SetWindowLongPtrA(window_, GWL_STYLE, static_cast<LONG_PTR>((on ? kFullScreenStyle : kWindowedStyle) | WS_VISIBLE));
    SetWindowPos(window_, HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_FRAMECHANGED);
    // The strip comes or goes even if the window had the screen's size before.
    if (events_) events_->OnSize(PictureRoom(), true);
}

void PlayerWindow::SetTitle(const std::string& title) {
    if (title == title_) return;
    title_ = title;
    SetWindowTextA(window_, title.c_str());
}

PictureSize PlayerWindow::RoomIn(int width, int height) const {
    return {width, std::max(height - (isFullScreen_ || !isStripWanted_ ? 0 : stripHeight_), 0)};
}

PictureSize PlayerWindow::PictureRoom() const {
    RECT client = {};
    GetClientRect(window_, &client);
    return RoomIn(client.right, client.bottom);
}

RECT PlayerWindow::StripPlace() const {
    RECT place = {};
    if (isFullScreen_ ? rest_.IsResting() : !isStripWanted_) return place;
    GetClientRect(window_, &place);
    place.top = std::max(place.bottom - stripHeight_, place.top);
    return place;
}

void PlayerWindow::ShowStrip(bool show) {
    isStripWanted_ = show;
    if (events_ && !isFullScreen_) events_->OnSize(PictureRoom(), true);
}

void PlayerWindow::OnPointer() {
    if (rest_.OnPointer()) events_->OnStripMoved();
}

void PlayerWindow::OnTimer(UINT_PTR timer) {
    if (timer == kTickTimer)
        events_->OnTick();
    else if (rest_.OnTimer())
        events_->OnStripMoved();
}

// The keyboard knows no place: the menu then stands in the corner of the picture.
void PlayerWindow::OnContextMenu(LPARAM place) {
    POINT point = {kMenuCorner, kMenuCorner};
    if (place == kFromKeyboard)
        ClientToScreen(window_, &point);
    else
        GetCursorPos(&point);
    events_->OnMenu(point);
}

void PlayerWindow::SetOnTop(bool on) {
    isOnTop_ = on;
    SetWindowPos(window_, on ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void PlayerWindow::OnPictureClick(DWORD time) {
    POINT place = {};
    GetCursorPos(&place);
    const bool isNear =
        std::abs(place.x - clickPlace_.x) <= kClickReach && std::abs(place.y - clickPlace_.y) <= kClickReach;
    const bool isDouble = hasClicked_ && isNear && time - clickedAt_ <= GetDoubleClickTime();
    hasClicked_ = !isDouble;
    clickedAt_ = time;
    clickPlace_ = place;
    if (isDouble) ToggleFullScreen();
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
        case VK_F11:
            ToggleFullScreen();
            return true;
        case 'T':
            ShowStrip(!isStripWanted_);
            return true;
        case VK_ESCAPE:
            OnEscape();
            return true;
        default:
            return OnMusicKeyDown(key);
    }
}

bool PlayerWindow::OnMusicKeyDown(WPARAM key) {
    switch (key) {
        case 'N':
        case VK_NEXT:
            events_->OnTrackKey(1);
            return true;
        case 'B':
        case VK_PRIOR:
            events_->OnTrackKey(-1);
            return true;
        case 'M':
            OnContextMenu(kFromKeyboard);
            return true;
        case VK_HOME:
            events_->OnStartKey();
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
    return self->OnMessage(message, wParam, lParam);
}

LRESULT PlayerWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnKeyDown(wParam)) return 0;
            break;
        case WM_MOUSEWHEEL:
            return events_->OnVolumeKey(static_cast<SHORT>(HIWORD(wParam)) > 0 ? 1 : -1), 0;
        case WM_LBUTTONDBLCLK:
            return ToggleFullScreen(), 0;
        case WM_DROPFILES:
            return events_->OnFiles(TakeDroppedFiles(reinterpret_cast<HDROP>(wParam))), 0;
        case kPictureClicked:
            return OnPictureClick(static_cast<DWORD>(wParam)), 0;
        case WM_SETCURSOR:  // for the picture, too: its window has no cursor of its own
            OnPointer();
            if (!rest_.IsResting()) break;
            return SetCursor(nullptr), TRUE;
        case kPictureRightClicked:
            return OnContextMenu(kFromPointer), 0;
        case WM_CONTEXTMENU:
            return OnContextMenu(lParam), 0;
        case WM_TIMER:
            return OnTimer(wParam), 0;
        case WM_SIZE:
            return events_->OnSize(RoomIn(LOWORD(lParam), HIWORD(lParam)), wParam != SIZE_MINIMIZED), 0;
        case WM_CLOSE:  // the view has to end before its parent window does
            return events_->OnCloseRequest(), 0;
        default:
            break;
    }
    return DefWindowProcA(window_, message, wParam, lParam);
}

}  // namespace tdkplay
