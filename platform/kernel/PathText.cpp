#include "platform/kernel/PathText.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

namespace tdkp {
namespace {

std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real != nullptr ? real.get() : "";
}

// Both without links.
bool IsWithin(const std::string& path, const std::string& folder) {
    return path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/' || folder == "/");
}

}  // namespace

size_t NameStart(std::string_view path) {
    const size_t last = path.find_last_of("\\/");
    return last == std::string_view::npos ? 0 : last + 1;
}

std::string NativePath(std::string_view path) {
    std::string native(path);
    if (native.find('\\') == std::string::npos) {
        return native;
    }
    struct stat status {};
    if (stat(native.c_str(), &status) != 0) {
        std::replace(native.begin(), native.end(), '\\', '/');
    }
    return native;
}

std::string AbsolutePath(const std::string& path) {
    if (!path.empty() && path.front() == '/') {
        return path;
    }
    const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
    return folder != nullptr ? std::string(folder.get()) + '/' + path : path;
}

// Folder by folder as they are spelled, since links may stand among them too. What stands before a ".." was left again.
bool LeadsUpwards(const std::string& link) {
    const std::string target = RealPath(link);
    if (target.empty()) {
        return false;
    }
    std::string folder = AbsolutePath(link);
    for (std::string name; folder.size() > 1 && name != "..";) {
        const size_t last = folder.rfind('/');
        if (last == std::string::npos) {
            break;
        }
        name = folder.substr(last + 1);
        folder.resize(std::max<size_t>(last, 1));
        if (IsWithin(RealPath(folder), target)) {
            return true;
        }
    }
    return false;
}

bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return SmallLetter(a) == SmallLetter(b); });
}

}  // namespace tdkp
