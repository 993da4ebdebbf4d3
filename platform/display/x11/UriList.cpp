#include "platform/display/x11/UriList.h"

#include <unistd.h>

#include <charconv>

#include "platform/kernel/PathText.h"

namespace tdkp {
namespace {

constexpr std::string_view kScheme = "file:";
constexpr std::string_view kAuthority = "//";
constexpr int kHexadecimal = 16;

bool IsThisMachine(std::string_view host) {
    char name[256] = {};
    return host.empty() || EqualsIgnoringCase(host, "localhost") ||
           (gethostname(name, sizeof name - 1) == 0 && EqualsIgnoringCase(host, name));
}

// Empty if an escape is broken or stands for the end of the text.
std::string Decode(std::string_view text) {
    std::string decoded;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            decoded += text[at];
            continue;
        }
        const std::string_view digits = text.substr(at + 1, 2);
        unsigned byte = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, kHexadecimal);
        if (digits.size() != 2 || end != digits.data() + 2 || byte == 0) return "";
        decoded += static_cast<char>(byte);
        at += 2;
    }
    return decoded;
}

// Empty if it names no file of this machine.
std::string PathOf(std::string_view uri) {
    if (!EqualsIgnoringCase(uri.substr(0, kScheme.size()), kScheme)) return "";
    uri.remove_prefix(kScheme.size());
    if (uri.substr(0, kAuthority.size()) == kAuthority) {
        uri.remove_prefix(kAuthority.size());
        const size_t slash = uri.find('/');
        if (slash == std::string_view::npos || !IsThisMachine(uri.substr(0, slash))) return "";
        uri.remove_prefix(slash);
    }
    return !uri.empty() && uri.front() == '/' ? Decode(uri) : "";
}

}  // namespace

std::vector<std::string> LocalFilesOf(std::string_view uriList) {
    std::vector<std::string> paths;
    while (!uriList.empty()) {
        const size_t end = uriList.find_first_of(std::string_view("\r\n\0", 3));
        const std::string_view line = uriList.substr(0, end);
        uriList.remove_prefix(end == std::string_view::npos ? uriList.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;  // a remark
        if (std::string path = PathOf(line); !path.empty()) paths.push_back(std::move(path));
    }
    return paths;
}

}  // namespace tdkp
