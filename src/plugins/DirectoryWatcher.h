// DirectoryWatcher: sees plug-in files come and go, on a thread of its own.
//
// There is one for the loaded add-on. The first retriever alive gets it; later ones go without.
//
// Invariants:
//  1. The thread touches the list and the receiver only while it holds inside_ and stopping_ isn't set.
//  2. It gives inside_ up around whatever may not come back soon: its waits, the scan, calls into the host.
//  3. Its own object it owns, together with whoever started it.
// So one that doesn't end in time is left alone if it stands outside, and never comes in again. One that stands
// inside hangs in a plug-in and is terminated.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "src/support/Handle.h"
#include "src/support/Mutex.h"

namespace tdkviz {

class CVizPlugin;
class IPluginDirChangeReceiver;
class PluginList;
class PreferencesMaker;

// What a watcher works on. `Receiver` and `Maker` may be null.
struct WatchTarget {
    std::string Folder;  // need not be there yet
    PluginList* List;
    IPluginDirChangeReceiver* Receiver;
    PreferencesMaker* Maker;
};

class DirectoryWatcher {
public:
    // For each retriever, once. `files` are those that the list was made of, as ScanFolder gives them. Without a
    // watcher if the system has no event or thread left. [host]
    static void Start(const WatchTarget& target, std::vector<std::string> files);
    // For each Start. Ends the thread with the last retriever, or with the one that it works for; takes 2000 ms
    // and a little at most. No call of the receiver begins afterwards. [host]
    static void Stop(const PluginList* list);
    // For receivers, around calls into the host: a stop doesn't wait for them for ever. False if the watcher was
    // stopped meanwhile: then nothing but the caller's own locals may still be there. [any]
    static bool CallOut(const std::function<void()>& call);

    DirectoryWatcher(const WatchTarget& target, std::vector<std::string> files)
        : target_(target), lastFiles_(std::move(files)) {}
    DirectoryWatcher(const DirectoryWatcher&) = delete;
    DirectoryWatcher& operator=(const DirectoryWatcher&) = delete;

private:
    class Access;

    static DWORD WINAPI ThreadMain(void* argument);
    void Run();
    bool ServeChanges(HANDLE change);
    void Compare(bool onlyIfFilesDiffer);
    std::unique_ptr<CVizPlugin> MakePlugin(const char* path);
    bool ReportNew(const std::vector<std::string>& files);
    void ReportGone(const std::vector<std::string>& files);
    size_t CountPlugins();  // 0 at a stop
    void EndThread(HANDLE thread);
    bool StandsOutside() TDKVIZ_UNCHECKED;

    const WatchTarget target_;
    // The thread's own.
    std::vector<std::string> lastFiles_;
    std::vector<std::string> reportedGone_;  // paths of plug-ins, until their files return

    const Handle WatcherStopEvent = Handle::AutoResetEvent();
    std::atomic<bool> stopping_{false};
    KVAWinMutex inside_;
};

}  // namespace tdkviz
