// The thread that draws: as in the add-on, another one than the one that made the plug-in's object.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace tdkplay::check {

class FrameThread {
public:
    FrameThread();
    // Waits for what it runs.
    ~FrameThread();
    FrameThread(const FrameThread&) = delete;
    FrameThread& operator=(const FrameThread&) = delete;

    // Runs `work` there and waits for its end. What it throws comes out here.
    void Run(const std::function<void()>& work);

private:
    void Serve();

    std::mutex mutex_;
    std::condition_variable changed_;
    const std::function<void()>* work_ = nullptr;  // under way or waiting
    std::exception_ptr thrown_;
    bool isEnding_ = false;
    std::thread thread_;
};

}  // namespace tdkplay::check
