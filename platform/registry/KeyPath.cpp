#include "platform/registry/KeyPath.h"

#include <pwd.h>
#include <unistd.h>
#include <winreg.h>

#include <cstdlib>

#include "platform/kernel/PathText.h"

namespace tdkp {
namespace {

constexpr const char* kFileVariable = "TDKVIZ_REGISTRY";
constexpr const char* kFileBelowConfig = "/corvane/registry.db";

// A variable's value, empty if it isn't set.
std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string HomeFolder() {
    const std::string home = Variable("HOME");
    if (!home.empty()) return home;
    constexpr size_t kRecordSize = 4096;
    char buffer[kRecordSize];
    passwd record;
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &record, buffer, sizeof(buffer), &found) != 0 || found == nullptr) return "";
    return found->pw_dir;
}

}  // namespace

std::string FoldCase(std::string_view name) {
    std::string folded(name);
    for (char& letter : folded) letter = SmallLetter(letter);
    return folded;
}

std::string_view RootName(HKEY key) {
    if (key == HKEY_CURRENT_USER) return "HKEY_CURRENT_USER";
    if (key == HKEY_LOCAL_MACHINE) return "HKEY_LOCAL_MACHINE";
    if (key == HKEY_CLASSES_ROOT) return "HKEY_CLASSES_ROOT";
    if (key == HKEY_USERS) return "HKEY_USERS";
    return "";
}

std::string JoinKeyPath(std::string_view path, const char* subKey) {
    std::string joined(path);
    std::string_view rest = subKey != nullptr ? subKey : "";
    while (!rest.empty()) {
        const size_t end = rest.find(kKeySeparator);
        const std::string_view level = rest.substr(0, end);
        if (!level.empty()) {
            joined += kKeySeparator;
            joined += level;
        }
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return joined;
}

std::string_view ParentOf(std::string_view path) {
    const size_t end = path.rfind(kKeySeparator);
    return end == std::string_view::npos ? std::string_view() : path.substr(0, end);
}

std::string RegistryFileName() {
    const std::string named = Variable(kFileVariable);
    if (!named.empty()) return named;
    const std::string config = Variable("XDG_CONFIG_HOME");
    // A relative path there is to be ignored.
    if (!config.empty() && config.front() == '/') return config + kFileBelowConfig;
    const std::string home = HomeFolder();
    return home.empty() ? "" : home + "/.config" + kFileBelowConfig;
}

}  // namespace tdkp
