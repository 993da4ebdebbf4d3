#include "src/plugins/DirectoryWatcher.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <thread>

#include "src/plugins/FolderScan.h"
#include "src/plugins/PluginCache.h"
#include "src/plugins/PluginDirChangeReceiver.h"
#include "src/plugins/PluginList.h"
#include "src/support/Module.h"
#include "src/support/RefPtr.h"
#include "src/support/StringTable.h"
#include "src/support/ThreadLimits.h"

namespace tdkviz {
namespace {

constexpr DWORD kRetryPause = 100;  // milliseconds
constexpr uint32_t kFirstBuckets = 16;
constexpr std::chrono::milliseconds kTryPause{1};

// Once for the loaded add-on.
struct WatcherState {
    KVAWinMutex ControlLock;  // one start or stop at a time
    uint32_t WatcherInstanceCount TDKVIZ_GUARDED_BY(ControlLock) = 0;
    Handle WatcherThread TDKVIZ_GUARDED_BY(ControlLock);
    std::shared_ptr<DirectoryWatcher> Watcher TDKVIZ_GUARDED_BY(ControlLock);
    const PluginList* Watched TDKVIZ_GUARDED_BY(ControlLock) = nullptr;
};
WatcherState state;

thread_local DirectoryWatcher* watcherOfThisThread = nullptr;

struct CloseNotification {
    using pointer = HANDLE;
    void operator()(HANDLE notification) const { FindCloseChangeNotification(notification); }
};
using ChangeNotification = std::unique_ptr<HANDLE, CloseNotification>;

ChangeNotification OpenNotification(const std::string& folder) {
    const HANDLE opened = FindFirstChangeNotificationA(folder.c_str(), TRUE, FILE_NOTIFY_CHANGE_FILE_NAME);
    return ChangeNotification(opened != INVALID_HANDLE_VALUE ? opened : nullptr);
}

// The thread's code must not go while it may still run.
void KeepModule(DWORD(WINAPI* code)(void*)) {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCSTR>(code), &module);
}

bool Contains(const std::vector<std::string>& paths, const std::string& path) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

// Gives `mutex` (null: nothing) up for its own life.
class MutexUnlock {
public:
    explicit MutexUnlock(KVAMutex* mutex) TDKVIZ_UNCHECKED : mutex_(mutex) {
        if (mutex_) mutex_->Unlock();
    }
    ~MutexUnlock() TDKVIZ_UNCHECKED {
        if (mutex_) mutex_->Lock();
    }
    MutexUnlock(const MutexUnlock&) = delete;
    MutexUnlock& operator=(const MutexUnlock&) = delete;

private:
    KVAMutex* const mutex_;
};

}  // namespace

// Lets the thread inside for a scope, if it may still go there.
class DirectoryWatcher::Access {
public:
    explicit Access(DirectoryWatcher& watcher) : lock_(&watcher.inside_), isGranted_(!watcher.stopping_) {}
    explicit operator bool() const { return isGranted_; }

private:
    const MutexLock lock_;
    const bool isGranted_;
};

void DirectoryWatcher::Start(const WatchTarget& target, std::vector<std::string> files) {
    const MutexLock lock(&state.ControlLock);
    if (state.WatcherInstanceCount == 0) {
        auto watcher = std::make_shared<DirectoryWatcher>(target, std::move(files));
        auto threads = std::make_unique<std::shared_ptr<DirectoryWatcher>>(watcher);
        if (watcher->WatcherStopEvent) {
            state.WatcherThread.Reset(CreateThread(nullptr, 0, ThreadMain, threads.get(), 0, nullptr));
        }
        if (state.WatcherThread) {
            (void)threads.release();
            state.Watcher = std::move(watcher);
            state.Watched = target.List;
        }
    }
    ++state.WatcherInstanceCount;
}

void DirectoryWatcher::Stop(const PluginList* list) {
    const MutexLock lock(&state.ControlLock);
    --state.WatcherInstanceCount;
    if (!state.WatcherThread || (state.WatcherInstanceCount > 0 && state.Watched != list)) return;
    state.Watcher->EndThread(state.WatcherThread.Get());
    state.WatcherThread.Reset();
    state.Watcher.reset();
    state.Watched = nullptr;
}

void DirectoryWatcher::EndThread(HANDLE thread) {
    stopping_ = true;
    SetEvent(WatcherStopEvent.Get());
    if (WaitForSingleObject(thread, kThreadAnswerLimit) == WAIT_OBJECT_0) return;
    if (StandsOutside()) {
        KeepModule(ThreadMain);
    } else {
        TerminateThread(thread, kTerminatedExitCode);
    }
}

// By the machine's clock, whatever clock the program runs on.
bool DirectoryWatcher::StandsOutside() {
    const auto deadline = std::chrono::steady_clock::now() + CVizPlugin::kPatience;
    while (inside_.TryLock() != S_OK) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(kTryPause);
    }
    inside_.Unlock();
    return true;
}

bool DirectoryWatcher::CallOut(const std::function<void()>& call) {
    DirectoryWatcher* const watcher = watcherOfThisThread;
    {
        const MutexUnlock outside(watcher ? &watcher->inside_ : nullptr);
        call();
    }
    return !watcher || !watcher->stopping_;
}

DWORD WINAPI DirectoryWatcher::ThreadMain(void* argument) {
    const std::unique_ptr<std::shared_ptr<DirectoryWatcher>> own(
        static_cast<std::shared_ptr<DirectoryWatcher>*>(argument));
    watcherOfThisThread = own->get();
    (*own)->Run();
    return 0;
}

void DirectoryWatcher::Run() {
    do {
        const ChangeNotification change = OpenNotification(target_.Folder);
        if (change && ServeChanges(change.get())) return;
    } while (WaitForSingleObject(WatcherStopEvent.Get(), kRetryPause) != WAIT_OBJECT_0);
}

// True at a stop, false if the notification doesn't work any more.
bool DirectoryWatcher::ServeChanges(HANDLE change) {
    const HANDLE handles[] = {WatcherStopEvent.Get(), change};
    // What came and went between the last scan and the start of the notification. Equal files are no change: a plug-in
    // that was dropped from the list meanwhile stays out.
    Compare(true);
    while (WaitForMultipleObjects(2, handles, FALSE, INFINITE) != WAIT_OBJECT_0) {
        Compare(false);
        if (!FindNextChangeNotification(change)) return false;
    }
    return true;
}

// Numbers decide: all files against all plug-ins. When files came and went between two scans, the new ones bring
// those that went to light, and the other way round.
void DirectoryWatcher::Compare(bool onlyIfFilesDiffer) {
    try {
        std::vector<std::string> files;
        ScanFolder(target_.Folder.c_str(), files);
        if (onlyIfFilesDiffer && files == lastFiles_) return;
        std::erase_if(reportedGone_, [&](const std::string& path) { return Contains(files, path); });
        if (files.size() < CountPlugins()) ReportGone(files);
        if (files.size() > CountPlugins() && ReportNew(files) && files.size() < CountPlugins()) ReportGone(files);
        lastFiles_ = std::move(files);
    } catch (const std::bad_alloc&) {
        // The next change is another chance.
    }
}

// Null at a stop. The host is asked for the file's text; a reference of our own keeps its context while it answers,
// even when the add-on has been let go by then.
std::unique_ptr<CVizPlugin> DirectoryWatcher::MakePlugin(const char* path) {
    const Access access(*this);
    if (!access) return nullptr;
    std::unique_ptr<CVizPlugin> plugin;
    RefPtr<IUnknown> host(HostContext);
    const bool goesOn = CallOut([&] {
        plugin = std::make_unique<CVizPlugin>(path, target_.Maker, host.Get());
        RefreshFromCache(*plugin);
        host.Reset();
    });
    return goesOn ? std::move(plugin) : nullptr;
}

// True if there were any.
bool DirectoryWatcher::ReportNew(const std::vector<std::string>& files) {
    CStringTable known(kFirstBuckets);
    {
        const Access access(*this);
        if (!access) return false;
        for (const CVizPlugin* plugin : target_.List->Snapshot()) known.Insert(plugin->GetPath(), 0);
    }
    bool any = false;
    for (const std::string& path : files) {
        if (known.Find(path.c_str()) || !IsPluginFile(path.c_str())) continue;
        std::unique_ptr<CVizPlugin> plugin = MakePlugin(path.c_str());
        const Access access(*this);
        if (!access) break;
        CVizPlugin* const added = plugin.get();
        target_.List->Append(std::move(plugin));
        any = true;
        if (target_.Receiver) target_.Receiver->OnPluginAdded(added);
    }
    return any;
}

void DirectoryWatcher::ReportGone(const std::vector<std::string>& files) {
    CStringTable present(kFirstBuckets);
    for (const std::string& path : files) present.Insert(path.c_str(), 0);
    const Access access(*this);
    if (!access || !target_.Receiver) return;
    for (CVizPlugin* plugin : target_.List->Snapshot()) {
        const char* path = plugin->GetPath();
        if (present.Find(path)) continue;
        if (Contains(reportedGone_, path)) {
            target_.Receiver->OnPluginStillGone(plugin);
        } else {
            reportedGone_.emplace_back(path);
            target_.Receiver->OnPluginRemoved(plugin);
        }
        if (stopping_) return;
    }
}

size_t DirectoryWatcher::CountPlugins() {
    const Access access(*this);
    return access ? target_.List->Count() : 0;
}

}  // namespace tdkviz
