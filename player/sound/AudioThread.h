// The thread that runs the pump in real time. It sleeps whenever the pump has nothing to do.
#pragma once

#include <windows.h>

#include <atomic>

#include "player/base/Event.h"
#include "player/sound/AudioPump.h"

namespace tdkplay {

class AudioThread {
public:
    // `wake` makes the thread look at the pump again; `news` is set when TakeNews has something to tell.
    AudioThread(AudioPump& pump, const Event& wake, const Event& news);
    ~AudioThread();
    AudioThread(const AudioThread&) = delete;
    AudioThread& operator=(const AudioThread&) = delete;

    // What the pump came to since the last call that the host's thread should know of.
    struct News {
        bool Ended;
        bool DeviceMoved;
        bool NextPiece;
        bool RestChanged;
    };
    News TakeNews();

private:
    static DWORD WINAPI Entry(LPVOID self);
    void Run();
    void Tell(std::atomic<bool>& what);

    AudioPump& pump_;
    const Event& wake_;
    const Event& news_;
    std::atomic<bool> quit_ = false;
    std::atomic<bool> ended_ = false;
    std::atomic<bool> moved_ = false;
    std::atomic<bool> next_ = false;
    std::atomic<bool> restChanged_ = false;
    HANDLE thread_ = nullptr;
};

}  // namespace tdkplay
