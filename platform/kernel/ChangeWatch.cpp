#include "platform/kernel/ChangeWatch.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/include/winbase.h"
#include "platform/kernel/PathText.h"

namespace tdkp {
namespace {

constexpr uint32_t kEntryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE;
constexpr uint32_t kOwnEnd = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr uint32_t kEnds = kOwnEnd | IN_UNMOUNT | IN_IGNORED;
constexpr size_t kReadSize = 16384;  // bytes, some hundred events

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

DWORD ErrorOf(int error) {
    switch (error) {
        case ENOENT:
            return ERROR_FILE_NOT_FOUND;
        case ENOTDIR:
            return ERROR_PATH_NOT_FOUND;
        case EACCES:
            return ERROR_ACCESS_DENIED;
        default:
            return ERROR_NOT_ENOUGH_MEMORY;  // or of what else the system lets one user have only so much
    }
}

bool IsLink(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool LeadsToFolder(const std::string& link) {
    struct stat status {};
    return stat(link.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// A new file is opened before it is there. A new link, symbolic or hard, never gets closed.
bool WillBeWritten(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
}

}  // namespace

ChangeWatch::ChangeWatch(std::string folder, bool withSubfolders)
    : folder_(std::move(folder)), withSubfolders_(withSubfolders) {}

ChangeWatch::~ChangeWatch() {
    if (inotify_ >= 0) {
        close(inotify_);
    }
}

DWORD ChangeWatch::Open() {
    inotify_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    return inotify_ >= 0 ? WatchAll() : ErrorOf(errno);
}

DWORD ChangeWatch::WatchAll() {
    root_ = inotify_add_watch(inotify_, folder_.c_str(), kEntryEvents | kOwnEnd | IN_ONLYDIR);
    if (root_ < 0) {
        return ErrorOf(errno);
    }
    folders_[root_] = folder_;
    if (withSubfolders_) {
        FollowEntries(folder_);
    }
    return NO_ERROR;
}

// When the kernel had to leave something out, or links changed: which folders there are has to be found out anew.
ChangeNews ChangeWatch::StartOver() {
    for (const auto& folder : folders_) {
        inotify_rm_watch(inotify_, folder.first);
    }
    folders_.clear();
    links_.clear();
    beingMade_.clear();
    return WatchAll() == NO_ERROR ? ChangeNews::kChanged : ChangeNews::kLost;
}

// True if it is a file, or a folder with files below.
bool ChangeWatch::Follow(const std::string& path) {
    const bool isLink = IsLink(path);
    if (isLink && !LeadsToFolder(path)) {
        return true;
    }
    if (isLink) {
        links_.insert(path);
        if (LeadsUpwards(path)) {
            return false;
        }
    }
    const int number =
        inotify_add_watch(inotify_, path.c_str(), kEntryEvents | IN_ONLYDIR | (isLink ? 0 : IN_DONT_FOLLOW));
    if (number < 0) {
        return errno == ENOTDIR;
    }
    // A folder that is watched already is left as it is, so that links never lead round in circles.
    return !folders_.emplace(number, path).second || FollowEntries(path);
}

// True if there are files below. The folder is watched already, so that nothing can come in unseen.
bool ChangeWatch::FollowEntries(const std::string& folder) {
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(folder.c_str()));
    bool hasFiles = false;
    while (const dirent* entry = directory != nullptr ? readdir(directory.get()) : nullptr) {
        const std::string_view name(entry->d_name);
        if (name == "." || name == "..") {
            continue;
        }
        if (entry->d_type == DT_REG || Follow(folder + '/' + entry->d_name)) {
            hasFiles = true;
        }
    }
    return hasFiles;
}

void ChangeWatch::Forget(const std::string& path) {
    const std::string below = path + '/';
    std::erase_if(folders_, [&](const auto& folder) {
        const bool goes = folder.second == path || folder.second.compare(0, below.size(), below) == 0;
        if (goes) {
            inotify_rm_watch(inotify_, folder.first);
        }
        return goes;
    });
    std::erase_if(beingMade_, [this](const Name& name) { return !folders_.contains(name.first); });
}

ChangeNews ChangeWatch::Read() {
    alignas(inotify_event) std::byte buffer[kReadSize];
    const ssize_t size = read(inotify_, buffer, sizeof(buffer));
    ChangeNews news = ChangeNews::kNone;
    for (ssize_t at = 0; at < size;) {
        const auto& event = *reinterpret_cast<const inotify_event*>(buffer + at);
        at += static_cast<ssize_t>(sizeof(event) + event.len);
        news = std::max(news, Judge(event));
    }
    if (news == ChangeNews::kLost) {
        folders_.clear();
    }
    return news;
}

ChangeNews ChangeWatch::Judge(const inotify_event& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        return StartOver();
    }
    const auto folder = folders_.find(event.wd);
    if (folder == folders_.end()) {
        return ChangeNews::kNone;  // of a folder that isn't watched any more
    }
    if (event.len > 0) {
        const std::string path = folder->second + '/' + event.name;
        return (event.mask & IN_ISDIR) != 0 ? JudgeFolder(path, event.mask) : JudgeFile(path, event);
    }
    if (event.wd == root_ && (event.mask & kEnds) != 0) {
        return ChangeNews::kLost;
    }
    if ((event.mask & IN_IGNORED) != 0) {
        folders_.erase(folder);
    }
    return ChangeNews::kNone;
}

ChangeNews ChangeWatch::JudgeFile(const std::string& path, const inotify_event& event) {
    Name name(event.wd, event.name);
    const bool wasBeingMade = beingMade_.erase(name) > 0;
    if ((event.mask & IN_CLOSE_WRITE) != 0) {
        return wasBeingMade ? ChangeNews::kChanged : ChangeNews::kNone;
    }
    if (links_.contains(path)) {
        return StartOver();
    }
    if ((event.mask & IN_CREATE) != 0 && WillBeWritten(path)) {
        beingMade_.insert(std::move(name));
    } else if (withSubfolders_ && (event.mask & (IN_CREATE | IN_MOVED_TO)) != 0 && IsLink(path)) {
        Follow(path);
    }
    return ChangeNews::kChanged;
}

ChangeNews ChangeWatch::JudgeFolder(const std::string& path, uint32_t what) {
    if (!withSubfolders_) {
        return ChangeNews::kNone;
    }
    if ((what & IN_MOVED_FROM) != 0) {
        if (!links_.empty()) {
            return StartOver();  // what went may still be reached through a link, or only have been through it
        }
        Forget(path);
        return ChangeNews::kChanged;
    }
    const bool came = (what & (IN_CREATE | IN_MOVED_TO)) != 0;
    return came && Follow(path) ? ChangeNews::kChanged : ChangeNews::kNone;
}

}  // namespace tdkp
