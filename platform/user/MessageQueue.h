// What waits for a thread: messages posted and sent to it, input, timers. One queue for each thread that
// asked for messages or made a window. All of it is guarded by the dispatcher's lock.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/user/MessageFd.h"
#include "platform/user/WindowState.h"

namespace tdkp {

constexpr size_t kMaxPosted = 10000;
constexpr size_t kVirtualKeys = 256;
// In place of a window: the messages that are for none.
const HWND kThreadMessages = reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1));

// Work that another thread wants done here: a sent message, or something that must run on this thread.
struct SentCall {
    std::function<LRESULT()> work;
    LRESULT result = 0;
    bool done = false;
    bool failed = false;  // the thread ended before it was done
};

struct QueuedMessage {
    MSG message = {};
    uint32_t text = 0;  // of a key: the character for WM_CHAR, or 0
};

struct UserTimer {
    HWND window = nullptr;
    UINT_PTR id = 0;
    UINT interval = 0;
    DWORD due = 0;
    TIMERPROC function = nullptr;
};

// Which messages a look is about: a window with all below it, and a range of numbers (0 to 0: all).
struct MessageFilter {
    HWND window = nullptr;
    UINT first = 0;
    UINT last = 0;

    bool Takes(UINT number) const { return (first == 0 && last == 0) || (number >= first && number <= last); }
    bool TakesAny(UINT from, UINT to) const { return (first == 0 && last == 0) || (first <= to && last >= from); }
    bool TakesWindow(const DispatcherGuard& guard, HWND of) const;
};

struct MessageQueue {
    uint32_t thread = 0;
    std::deque<QueuedMessage> posted;
    std::deque<QueuedMessage> input;
    std::deque<std::shared_ptr<SentCall>> sent;
    std::vector<std::shared_ptr<SentCall>> serving;
    std::vector<UserTimer> timers;
    bool quit = false;
    int quitCode = 0;
    uint32_t changed = 0;  // QS_ bits of what came since the last look
    HWND lastPainted = nullptr;
    DWORD lastLook = 0;  // GetTickCount
    MessageFd fd;

    // What the thread last took out.
    DWORD lastTime = 0;
    POINT lastPoint = {0, 0};
    UINT lastKey = 0;
    uint32_t lastText = 0;
    std::array<uint8_t, kVirtualKeys> keys = {};  // bit 7: down, bit 0: toggled

    HWND active = nullptr;
    HWND focus = nullptr;
    HWND capture = nullptr;
    HWND cursorWindow = nullptr;  // had the last mouse message
    UINT lastClick = 0;
    HWND lastClickWindow = nullptr;
    POINT lastClickPoint = {0, 0};
    DWORD lastClickTime = 0;
};

// The queue of a living thread, made if there is none yet. A thread asks for its own number before it takes
// the lock, since the first call of CurrentThreadId takes it too.
MessageQueue& QueueOf(const DispatcherGuard& guard, uint32_t thread);
// Null if the thread has none.
MessageQueue* FindQueue(const DispatcherGuard& guard, uint32_t thread);

// Something of these QS_ categories came.
void NoteInput(DispatcherGuard& guard, MessageQueue& queue, uint32_t categories);
// Makes the queue's descriptor, if it has one, tell what waits now.
void SyncMessageFd(const DispatcherGuard& guard, MessageQueue& queue);
// A look with this filter has been made.
void NoteLook(MessageQueue& queue, const MessageFilter& filter);
// QS_ categories that wait at this time of GetTickCount.
uint32_t WaitingInput(const DispatcherGuard& guard, const MessageQueue& queue, DWORD now);

// False if the queue is full.
bool PostToQueue(DispatcherGuard& guard, MessageQueue& queue, const QueuedMessage& message);
// The next message that the filter takes: posted ones, input, WM_QUIT, WM_PAINT, WM_TIMER.
bool TakeMessage(DispatcherGuard& guard, MessageQueue& queue, const MessageFilter& filter, bool remove, DWORD now,
                 QueuedMessage* out);
// Drops what waits for a window that goes.
void ForgetWindowInQueue(DispatcherGuard& guard, MessageQueue& queue, HWND window);
// Milliseconds until the next timer of the thread, kInfinite if it has none.
uint32_t UntilTimer(const MessageQueue& queue, DWORD now);

// Ends the thread's queue: whoever waits for an answer from it gets none.
void EndQueue(DispatcherGuard& guard, uint32_t thread);

}  // namespace tdkp
