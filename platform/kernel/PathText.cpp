#include "platform/kernel/PathText.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/include/tdkcrt.h"

namespace tdkp {

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

bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() && _strnicmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace tdkp
