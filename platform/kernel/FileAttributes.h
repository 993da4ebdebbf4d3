#pragma once

#include <sys/stat.h>

#include "platform/include/winbase.h"

namespace tdkp {

// Write permission of nobody makes a file read-only.
inline DWORD AttributesOf(const struct stat& status) {
    constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    DWORD attributes = 0;
    attributes |= S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    attributes |= (status.st_mode & kAnyWrite) == 0 ? FILE_ATTRIBUTE_READONLY : 0;
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

}  // namespace tdkp
