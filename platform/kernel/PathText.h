// Paths as the program gives them, with either separator, and as the system takes them.
#pragma once

#include <string>
#include <string_view>

namespace tdkp {

// The place behind the last separator, either of them; 0 if there is none.
size_t NameStart(std::string_view path);

// The path as it stands if there is something under it, else with every backslash made a slash.
std::string NativePath(std::string_view path);

// Seen from the current folder now, so that a later change of it doesn't matter. Links stay.
std::string AbsolutePath(const std::string& path);

// Whether a link leads to a folder that it lies in, or was reached through: a walk that follows it would never end.
bool LeadsUpwards(const std::string& link);

// Names of files, classes, keys: the letters A to Z count the same in either case, whatever the process's locale is.
constexpr char SmallLetter(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace tdkp
