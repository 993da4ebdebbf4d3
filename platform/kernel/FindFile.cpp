#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/include/winbase.h"
#include "platform/kernel/HandleTable.h"
#include "platform/kernel/PathText.h"

namespace tdkp {
namespace {

constexpr uint64_t kFileTimesPerSecond = 10'000'000;        // units of 100 ns
constexpr int64_t kSecondsFrom1601To1970 = 11'644'473'600;  // the two systems' first days

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

// Does the name match the pattern, with * for any run of characters and ? for any one? Letters match in
// either case.
bool Matches(std::string_view name, std::string_view pattern) {
    size_t position = 0;
    size_t patternPosition = 0;
    size_t star = std::string_view::npos;
    size_t starPosition = 0;
    while (position < name.size()) {
        if (patternPosition < pattern.size() && pattern[patternPosition] == '*') {
            star = patternPosition++;
            starPosition = position;
        } else if (patternPosition < pattern.size() &&
                   (pattern[patternPosition] == '?' ||
                    EqualsIgnoringCase(pattern.substr(patternPosition, 1), name.substr(position, 1)))) {
            ++patternPosition;
            ++position;
        } else if (star != std::string_view::npos) {
            patternPosition = star + 1;
            position = ++starPosition;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', patternPosition) == std::string_view::npos;
}

FILETIME ToFileTime(const timespec& time) {
    const auto seconds = static_cast<uint64_t>(static_cast<int64_t>(time.tv_sec) + kSecondsFrom1601To1970);
    const uint64_t value = seconds * kFileTimesPerSecond + static_cast<uint64_t>(time.tv_nsec) / 100;
    return {static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
}

// Write permission of nobody makes a file read-only.
DWORD AttributesOf(const struct stat& status) {
    constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    DWORD attributes = 0;
    attributes |= S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    attributes |= (status.st_mode & kAnyWrite) == 0 ? FILE_ATTRIBUTE_READONLY : 0;
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

class FileSearch : public KernelObject {
public:
    explicit FileSearch(std::string folder) : folder_(std::move(folder)) {}

    // NO_ERROR, or why the search can't start.
    DWORD Start(std::string_view pattern);
    // False at the end.
    bool Next(WIN32_FIND_DATAA& data);

private:
    bool Describe(const std::string& name, WIN32_FIND_DATAA& data) const;

    const std::string folder_;  // with its closing separator, or empty
    std::vector<std::string> names_;
    size_t next_ = 0;
};

DWORD FileSearch::Start(std::string_view pattern) {
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(folder_.empty() ? "." : folder_.c_str()));
    if (directory == nullptr) {
        return errno == EACCES ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
    }
    if (pattern.find_first_of("*?") == std::string_view::npos) {
        names_.emplace_back(pattern);
        return NO_ERROR;
    }
    const bool everything = pattern == "*.*";
    while (const dirent* entry = readdir(directory.get())) {
        if (everything || Matches(entry->d_name, pattern)) {
            names_.emplace_back(entry->d_name);
        }
    }
    // The folder itself and its parent stand first whatever the others' names begin with.
    std::sort(names_.begin(), names_.end(), [](const std::string& left, const std::string& right) {
        const auto rank = [](const std::string& name) { return name == "." ? 0 : name == ".." ? 1 : 2; };
        return rank(left) != rank(right) ? rank(left) < rank(right) : left < right;
    });
    return NO_ERROR;
}

bool FileSearch::Next(WIN32_FIND_DATAA& data) {
    while (next_ < names_.size()) {
        if (Describe(names_[next_++], data)) {
            return true;
        }
    }
    return false;
}

// False for what is no entry any more, or must not be one.
bool FileSearch::Describe(const std::string& name, WIN32_FIND_DATAA& data) const {
    const std::string path = folder_ + name;
    struct stat status {};
    if (name.empty() || name.size() >= sizeof(data.cFileName) || lstat(path.c_str(), &status) != 0) {
        return false;
    }
    struct stat target {};
    if (S_ISLNK(status.st_mode) && stat(path.c_str(), &target) == 0) {
        if (S_ISDIR(target.st_mode) && LeadsUpwards(path)) {
            return false;
        }
        status = target;
    }
    data = WIN32_FIND_DATAA{};
    data.dwFileAttributes = AttributesOf(status);
    data.ftCreationTime = ToFileTime(status.st_ctim);
    data.ftLastAccessTime = ToFileTime(status.st_atim);
    data.ftLastWriteTime = ToFileTime(status.st_mtim);
    const uint64_t size = S_ISDIR(status.st_mode) ? 0 : static_cast<uint64_t>(status.st_size);
    data.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data.nFileSizeLow = static_cast<DWORD>(size);
    std::memcpy(data.cFileName, name.c_str(), name.size() + 1);
    return true;
}

HANDLE Fail(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

}  // namespace
}  // namespace tdkp

HANDLE FindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA data) {
    if (pattern == nullptr || data == nullptr) {
        return tdkp::Fail(ERROR_INVALID_PARAMETER);
    }
    const std::string_view text(pattern);
    const size_t nameStart = tdkp::NameStart(text);
    const auto search = std::make_shared<tdkp::FileSearch>(tdkp::NativePath(text.substr(0, nameStart)));
    if (const DWORD error = search->Start(text.substr(nameStart)); error != NO_ERROR) {
        return tdkp::Fail(error);
    }
    if (!search->Next(*data)) {
        return tdkp::Fail(ERROR_FILE_NOT_FOUND);
    }
    const HANDLE handle = tdkp::OpenHandle(search);
    return handle != nullptr ? handle : tdkp::Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL FindNextFileA(HANDLE search, LPWIN32_FIND_DATAA data) {
    std::shared_ptr<tdkp::FileSearch> object;
    {
        tdkp::DispatcherGuard guard(tdkp::DispatcherLock());
        object = tdkp::FindObjectOf<tdkp::FileSearch>(guard, search);
    }
    if (object == nullptr || data == nullptr) {
        SetLastError(object == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!object->Next(*data)) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    return TRUE;
}

BOOL FindClose(HANDLE search) {
    return CloseHandle(search);
}
