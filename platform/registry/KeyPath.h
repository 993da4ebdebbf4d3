// Names of keys: paths that begin with a root's name, levels parted by one backslash each.
#pragma once

#include <windef.h>

#include <string>
#include <string_view>

namespace tdkp {

constexpr char kKeySeparator = '\\';

// ASCII letters made small: equal for names that are the same to the registry.
std::string FoldCase(std::string_view name);

// The root's name for one of the fixed handles, empty for any other value.
std::string_view RootName(HKEY key);

// `subKey` (may be null) below `path`; empty levels are left out.
std::string JoinKeyPath(std::string_view path, const char* subKey);

// Everything before the last separator; empty for a root.
std::string_view ParentOf(std::string_view path);

// The file that the registry lives in; empty if there is no place for it.
std::string RegistryFileName();

}  // namespace tdkp
