// ChangeReader: the one thread that reads for all change notifications. It is there while there is any of them.
#pragma once

#include <atomic>
#include <thread>
#include <unordered_map>

#include <sys/types.h>

#include "platform/kernel/Dispatcher.h"

namespace tdkp {

class ChangeNotification;

class ChangeReader {
public:
    // The notification is open. False if the system has no thread or descriptor left.
    bool Add(ChangeNotification& notification);
    // The reader doesn't touch it any more when this comes back. Not under the dispatcher's lock.
    void Remove(ChangeNotification& notification);

private:
    bool Start();
    void Stop();
    void CloseDescriptors();
    void Run();
    void Serve(int descriptor);

    LayerMutex life_;  // starting and ending; the thread never takes it
    LayerMutex lock_;  // guards the next one, and what is served; before the dispatcher's
    std::unordered_map<int, ChangeNotification*> notifications_;  // by descriptor

    // Guarded by life_, and fixed while the thread runs.
    int poll_ = -1;
    int end_ = -1;
    std::thread thread_;
    std::atomic<pid_t> kernelId_{0};
};

ChangeReader& TheChangeReader();

}  // namespace tdkp
