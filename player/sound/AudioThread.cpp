#include "player/sound/AudioThread.h"

namespace tdkplay {

AudioThread::AudioThread(AudioPump& pump, const Event& wake, const Event& news)
    : pump_(pump), wake_(wake), news_(news), thread_(CreateThread(nullptr, 0, Entry, this, 0, nullptr)) {}

AudioThread::~AudioThread() {
    quit_ = true;
    wake_.Set();
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
}

AudioThread::News AudioThread::TakeNews() {
    return {ended_.exchange(false), moved_.exchange(false), next_.exchange(false), restChanged_.exchange(false)};
}

DWORD WINAPI AudioThread::Entry(LPVOID self) {
    static_cast<AudioThread*>(self)->Run();
    return 0;
}

void AudioThread::Run() {
    while (!quit_) {
        const AudioPump::Step step = pump_.DeliverBlock();
        if (step.Result == AudioPump::State::kEnded) Tell(ended_);
        if (step.Result == AudioPump::State::kMoved) Tell(moved_);
        if (step.Result == AudioPump::State::kNextPiece) Tell(next_);
        if (step.Result == AudioPump::State::kRest) Tell(restChanged_);
        if (step.Wait != 0) WaitForSingleObject(wake_.Handle(), step.Wait);
    }
}

void AudioThread::Tell(std::atomic<bool>& what) {
    what = true;
    news_.Set();
}

}  // namespace tdkplay
