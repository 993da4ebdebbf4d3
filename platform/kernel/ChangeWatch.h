// ChangeWatch: which files come and go in a folder, as the kernel tells it (inotify).
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "platform/include/windef.h"

struct inotify_event;

namespace tdkp {

// In order of weight.
enum class ChangeNews { kNone, kChanged, kLost };

// Files that are made, deleted, renamed, or moved in or out are changes, and so are folders that bring files
// along or may take some away. As a file is made before it is written, the end of that first writing is one more.
// Links to folders are followed as far as FindFirstFileA does, each folder once, on the way that is found first. When
// the folder behind a link is renamed or made anew, that goes unseen. One thread at a time.
class ChangeWatch {
public:
    ChangeWatch(std::string folder, bool withSubfolders);
    ~ChangeWatch();
    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    // NO_ERROR, or why there is nothing to watch. What happens from now on is kept until it is read.
    DWORD Open();
    // Readable while there is something to Read.
    int Descriptor() const { return inotify_; }
    // Takes some of what waits, and never blocks. kLost: the folder itself has gone, and nothing more will come.
    ChangeNews Read();

private:
    using Name = std::pair<int, std::string>;  // of a file, within the folder with this number

    DWORD WatchAll();
    ChangeNews StartOver();
    bool Follow(const std::string& path);
    bool FollowEntries(const std::string& folder);
    void Forget(const std::string& path);
    ChangeNews Judge(const inotify_event& event);
    ChangeNews JudgeFile(const std::string& path, const inotify_event& event);
    ChangeNews JudgeFolder(const std::string& path, uint32_t what);

    const std::string folder_;
    const bool withSubfolders_;
    int inotify_ = -1;
    int root_ = -1;                       // number of the folder itself
    std::map<int, std::string> folders_;  // the kernel's number of each and its path
    std::set<std::string> links_;         // to folders, in any of these
    std::set<Name> beingMade_;            // files of these, not closed yet since they were made
};

}  // namespace tdkp
