#include "platform/user/Input.h"

#include <cstdlib>

#include "platform/user/DisplayUse.h"
#include "platform/user/MouseLeave.h"
#include "platform/user/SentCalls.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr uint8_t kKeyDown = 0x80;
constexpr uint8_t kKeyToggled = 0x01;
constexpr LPARAM kRepeatOnce = 1;
constexpr LPARAM kAltHeld = LPARAM{1} << 29;
constexpr LPARAM kWasDown = LPARAM{1} << 30;
constexpr LPARAM kGoesUp = LPARAM{1} << 31;
constexpr UINT kDoubleClickTime = 500;
constexpr LONG kDoubleClickReach = 2;

// Guarded by the dispatcher's lock.
POINT pointer = {0, 0};    // on the screen
HWND menuInput = nullptr;  // the open menu that gets all input

bool IsButtonDown(UINT message) {
    return message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN;
}

bool IsMouse(UINT message) {
    return message >= WM_MOUSEFIRST && message <= WM_MOUSELAST;
}

// The end of a press, or a move during one: for the window that was pressed, wherever the mouse is by then.
bool BelongsToPress(UINT message, WPARAM keys) {
    if (message == WM_MOUSEMOVE) return (keys & (MK_LBUTTON | MK_RBUTTON | MK_MBUTTON)) != 0;
    return message == WM_LBUTTONUP || message == WM_RBUTTONUP || message == WM_MBUTTONUP;
}

// Moves the point from the client area of one window into that of another. False if they share no root.
bool MovePoint(const DispatcherGuard& guard, Window& from, Window& to, POINT* point) {
    if (RootOf(guard, from) != RootOf(guard, to)) return false;
    const POINT fromOffset = OffsetInRoot(guard, from);
    const POINT toOffset = OffsetInRoot(guard, to);
    point->x += fromOffset.x - toOffset.x;
    point->y += fromOffset.y - toOffset.y;
    return true;
}

// An open menu gets what is meant for any window.
Window* MenuTarget(const DispatcherGuard& guard, POINT screen, POINT* point) {
    Window* menu = FindWindowState(guard, menuInput);
    if (menu != nullptr) *point = {screen.x - menu->bounds.left, screen.y - menu->bounds.top};
    return menu;
}

// Who gets a mouse message for this window: the capture, else the first enabled window outwards.
Window* MouseTarget(const DispatcherGuard& guard, Window& window, bool ofPress, POINT* point) {
    const MessageQueue* queue = FindQueue(guard, window.thread);
    Window* captor = queue != nullptr ? FindWindowState(guard, queue->capture) : nullptr;
    if (captor != nullptr && MovePoint(guard, window, *captor, point)) return captor;
    const RECT client = window.Client();
    if (window.edge > 0 && !ofPress && !PtInRect(&client, *point)) return nullptr;  // its frame
    const Window* root = RootOf(guard, window);
    if ((root->style & WS_DISABLED) != 0) return nullptr;
    Window* target = &window;
    while ((target->style & WS_DISABLED) != 0) {
        point->x += target->bounds.left + target->edge;
        point->y += target->bounds.top + target->edge;
        target = FindWindowState(guard, target->parent);
    }
    return target;
}

// The second click of a double click gets its own message in classes that ask for it.
UINT CountClick(MessageQueue& queue, const Window& window, UINT message, POINT point, DWORD time) {
    if (!IsButtonDown(message)) return message;
    const bool again = queue.lastClick == message && queue.lastClickWindow == window.handle &&
                       time - queue.lastClickTime <= kDoubleClickTime &&
                       std::abs(point.x - queue.lastClickPoint.x) <= kDoubleClickReach &&
                       std::abs(point.y - queue.lastClickPoint.y) <= kDoubleClickReach;
    const bool twice = again && (window.windowClass->info.style & CS_DBLCLKS) != 0;
    queue.lastClick = twice ? 0 : message;
    queue.lastClickWindow = window.handle;
    queue.lastClickPoint = point;
    queue.lastClickTime = time;
    return twice ? message - WM_LBUTTONDOWN + WM_LBUTTONDBLCLK : message;
}

POINT ToScreen(const DispatcherGuard& guard, Window& window, POINT point) {
    const POINT offset = OffsetInRoot(guard, window);
    const Window* root = RootOf(guard, window);
    return POINT{root->bounds.left + root->edge + offset.x + point.x,
                 root->bounds.top + root->edge + offset.y + point.y};
}

LPARAM Pack(POINT point) {
    return MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y));
}

// The thread's focus. The display may give a top-level window its keys before the thread has moved its focus there:
// they aren't for the window that had it until then.
HWND KeyTarget(const DispatcherGuard& guard, const MessageQueue& queue, const Window& window) {
    Window* const focus = FindWindowState(guard, queue.focus);
    if (focus == nullptr) return window.handle;
    if (!window.TopLevel() || RootOf(guard, *focus) == &window) return focus->handle;
    const Window* const last = FindWindowState(guard, window.lastFocus);
    return last != nullptr ? last->handle : window.handle;
}

void SetKey(MessageQueue& queue, UINT key, bool down) {
    uint8_t& state = queue.keys[key % kVirtualKeys];
    if (down && (state & kKeyDown) == 0) state ^= kKeyToggled;
    state = static_cast<uint8_t>(down ? state | kKeyDown : state & ~kKeyDown);
}

struct ButtonKey {
    WPARAM flag;
    UINT key;
};
constexpr ButtonKey kButtonKeys[] = {{MK_LBUTTON, VK_LBUTTON}, {MK_RBUTTON, VK_RBUTTON}, {MK_MBUTTON, VK_MBUTTON}};

}  // namespace

void QueueMouse(HWND handle, UINT message, WPARAM keys, POINT point, const POINT* screen, DWORD time) {
    DispatcherGuard guard(DispatcherLock());
    Window* window = FindWindowState(guard, handle);
    if (window == nullptr) return;
    const POINT place = screen != nullptr ? *screen : ToScreen(guard, *window, point);
    Window* const menu = MenuTarget(guard, place, &point);
    window = menu != nullptr ? menu : MouseTarget(guard, *window, BelongsToPress(message, keys), &point);
    MessageQueue* queue = window != nullptr ? FindQueue(guard, window->thread) : nullptr;
    if (queue == nullptr || window->destroying) return;
    pointer = place;
    NoteHover(guard, window->handle, time);
    QueuedMessage queued;
    queued.message.hwnd = window->handle;
    queued.message.message = CountClick(*queue, *window, message, point, time);
    queued.message.wParam = keys;
    queued.message.lParam = Pack(message == WM_MOUSEWHEEL ? pointer : point);
    queued.message.time = time;
    queued.message.pt = pointer;
    const bool move = message == WM_MOUSEMOVE;
    const bool merges = move && !queue->input.empty() && queue->input.back().message.message == WM_MOUSEMOVE &&
                        queue->input.back().message.hwnd == window->handle;
    if (merges)
        queue->input.back() = queued;
    else if (queue->input.size() < kMaxPosted)
        queue->input.push_back(queued);
    NoteInput(guard, *queue, move ? QS_MOUSEMOVE : QS_MOUSEBUTTON);
}

void QueueKey(HWND handle, const KeyStroke& stroke) {
    DispatcherGuard guard(DispatcherLock());
    const Window* const menu = FindWindowState(guard, menuInput);
    const Window* window = menu != nullptr ? menu : FindWindowState(guard, handle);
    MessageQueue* queue = window != nullptr ? FindQueue(guard, window->thread) : nullptr;
    if (queue == nullptr) return;
    const HWND target = menu != nullptr ? menu->handle : KeyTarget(guard, *queue, *window);
    QueuedMessage queued;
    queued.text = stroke.down ? stroke.text : 0;
    queued.message.hwnd = target;
    const bool isSystem = (stroke.altDown && stroke.virtualKey != VK_CONTROL) || stroke.virtualKey == VK_F10;
    const UINT system = isSystem ? WM_SYSKEYDOWN - WM_KEYDOWN : 0;
    queued.message.message = (stroke.down ? WM_KEYDOWN : WM_KEYUP) + system;
    queued.message.wParam = stroke.virtualKey;
    queued.message.lParam = kRepeatOnce | (stroke.altDown ? kAltHeld : 0) | (stroke.down ? 0 : kGoesUp | kWasDown);
    queued.message.time = stroke.time;
    queued.message.pt = pointer;
    if (queue->input.size() < kMaxPosted) queue->input.push_back(queued);
    NoteInput(guard, *queue, QS_KEY);
}

bool BeginMenuInput(HWND menu) {
    DispatcherGuard guard(DispatcherLock());
    if (FindWindowState(guard, menuInput) != nullptr) return false;
    menuInput = menu;
    return true;
}

bool EndMenuInput(HWND menu) {
    DispatcherGuard guard(DispatcherLock());
    const bool had = menuInput == menu;
    if (had) menuInput = nullptr;
    return had;
}

bool AnyMenuHasInput() {
    DispatcherGuard guard(DispatcherLock());
    return FindWindowState(guard, menuInput) != nullptr;
}

void NoteTaken(MessageQueue& queue, const QueuedMessage& taken) {
    const MSG& message = taken.message;
    queue.lastTime = message.time;
    queue.lastPoint = message.pt;
    if (IsMouse(message.message)) {
        for (const ButtonKey& button : kButtonKeys) SetKey(queue, button.key, (message.wParam & button.flag) != 0);
        queue.cursorWindow = message.hwnd;
        return;
    }
    switch (message.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            queue.lastKey = static_cast<UINT>(message.wParam);
            queue.lastText = taken.text;
            SetKey(queue, static_cast<UINT>(message.wParam), true);
            break;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            SetKey(queue, static_cast<UINT>(message.wParam), false);
            break;
        default:
            break;
    }
}

void AskForCursor(const MSG& message) {
    if (!IsMouse(message.message) || message.message == WM_MOUSEWHEEL || GetCapture() != nullptr) return;
    CallProcedure(message.hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(message.hwnd),
                  MAKELPARAM(HTCLIENT, static_cast<WORD>(message.message)));
}

}  // namespace tdkp

using tdkp::CurrentThreadId;
using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;
using tdkp::MessageQueue;

TDKP_API SHORT GetKeyState(INT virtualKey) {
    const uint32_t thread = CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    const MessageQueue* queue = tdkp::FindQueue(guard, thread);
    if (queue == nullptr || virtualKey < 0 || static_cast<size_t>(virtualKey) >= tdkp::kVirtualKeys) return 0;
    const uint8_t state = queue->keys[static_cast<size_t>(virtualKey)];
    constexpr int kDownBits = 0xFF80;
    const int down = (state & tdkp::kKeyDown) != 0 ? kDownBits : 0;
    return static_cast<SHORT>(down | (state & tdkp::kKeyToggled));
}

TDKP_API BOOL GetCursorPos(POINT* point) {
    if (point == nullptr) return FALSE;
    bool isOpen = false;
    {
        DispatcherGuard guard(DispatcherLock());
        *point = tdkp::pointer;
        isOpen = tdkp::AnyWindow(guard);
    }
    if (isOpen) tdkp::DisplayUse()->GetPointer(point);
    return TRUE;
}

TDKP_API UINT GetDoubleClickTime() {
    return tdkp::kDoubleClickTime;
}

TDKP_API HCURSOR LoadCursorA(HINSTANCE, LPCSTR name) {
    constexpr ULONG_PTR kFirstCursor = 32512;
    constexpr ULONG_PTR kLastCursor = 32651;
    const auto number = reinterpret_cast<ULONG_PTR>(name);
    return number >= kFirstCursor && number <= kLastCursor ? reinterpret_cast<HCURSOR>(number) : nullptr;
}

TDKP_API HCURSOR SetCursor(HCURSOR cursor) {
    const auto shape = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(cursor));
    const uint32_t thread = CurrentThreadId();
    HWND handle = nullptr;
    tdkp::Display* display = nullptr;
    uint32_t former = 0;
    {
        DispatcherGuard guard(DispatcherLock());
        const MessageQueue* queue = tdkp::FindQueue(guard, thread);
        tdkp::Window* window = queue != nullptr ? tdkp::FindWindowState(guard, queue->cursorWindow) : nullptr;
        // A window of the calling thread stays while the thread is in here.
        if (window == nullptr || window->thread != thread) return nullptr;
        handle = window->handle;
        former = window->cursor;
        if (former != shape) display = window->display;
        window->cursor = shape;
    }
    if (display != nullptr) display->SetCursorShape(tdkp::IdOf(handle), shape);
    return reinterpret_cast<HCURSOR>(static_cast<uintptr_t>(former));
}
