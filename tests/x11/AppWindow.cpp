#include "tests/x11/AppWindow.h"

#include <algorithm>

#include "tests/support/Messages.h"
#include "tests/support/Wait.h"

namespace {

constexpr DWORD kPollMilliseconds = 5;

void RegisterOnce(WNDPROC procedure) {
    static const ATOM atom = [procedure] {
        WNDCLASSA info = {};
        info.lpfnWndProc = procedure;
        info.lpszClassName = AppWindow::kClassName;
        info.cbWndExtra = sizeof(void*);
        return RegisterClassA(&info);
    }();
    static_cast<void>(atom);
}

}  // namespace

AppWindow::AppWindow(xcb_window_t parent, int x, int y, int width, int height, const std::string& title) {
    RegisterOnce(&Procedure);
    const DWORD style = WS_VISIBLE | (parent != 0 ? WS_CHILD : WS_POPUP);
    window_ = CreateWindowExA(0, kClassName, title.c_str(), style, x, y, width, height,
                              reinterpret_cast<HWND>(static_cast<uintptr_t>(parent)), nullptr, nullptr, this);
}

AppWindow::~AppWindow() {
    if (window_ != nullptr) DestroyWindow(window_);
}

void AppWindow::Fill(const RECT& rect, COLORREF color) {
    const HDC dc = GetDC(window_);
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
    ReleaseDC(window_, dc);
}

bool AppWindow::ServeUntil(const std::function<bool()>& done) {
    return tdkviz::test::WaitUntil(done, [] {
        tdkviz::test::ServeMessages();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kPollMilliseconds, QS_ALLINPUT);
    });
}

bool AppWindow::ServeUntilTold(UINT message) {
    return ServeUntil([&] { return Told(message) > 0; });
}

int AppWindow::Told(UINT message) const {
    const auto isOne = [message](const AppMessage& each) { return each.message == message; };
    return static_cast<int>(std::count_if(messages_.begin(), messages_.end(), isOne));
}

AppMessage AppWindow::Last(UINT message) const {
    for (auto each = messages_.rbegin(); each != messages_.rend(); ++each) {
        if (each->message == message) return *each;
    }
    return {};
}

LRESULT CALLBACK AppWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE)
        SetWindowLongPtrA(window, 0,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
    auto* self = reinterpret_cast<AppWindow*>(GetWindowLongPtrA(window, 0));
    if (self != nullptr) {
        self->messages_.push_back({message, wParam, lParam});
        if (message == WM_NCDESTROY) self->window_ = nullptr;
    }
    return message == WM_CLOSE ? 0 : DefWindowProcA(window, message, wParam, lParam);
}
