// PathName: a parsed path. The separator that paths are put together with. Where the executable lies.
#pragma once

#include <cstdint>

#include "src/support/NQString.h"

namespace tdkviz {

// Both "\" and "/" part the components of a path that comes in; trail bytes never do.
bool IsSeparator(char c);
// The one that the system itself writes.
char PathSeparator();
// What goes between `path` and a name below it: a backslash if `path` is put together with backslashes
// alone, else the system's own.
char SeparatorFor(const char* path);

// What stands behind the last separator, or behind the drive, of `path`.
const char* FileNamePart(const char* path);

class PathName {
public:
    PathName() = default;
    explicit PathName(const char* text);

    bool IsEmpty() const { return empty_; }
    // All before the last component. A closing separator doesn't count; the directory of what stands
    // directly under the root keeps the root's separator.
    PathName GetDirectory() const;
    // `name` below this path; just `name` if this path is empty.
    PathName Append(const char* name) const;
    const CNQString& ToString() const { return text_; }

private:
    void Parse();

    CNQString text_;
    bool empty_ = true;
    int32_t rootLength_ = 0;
    int32_t directoryLength_ = 0;
};

// Empty if the system doesn't tell, or only with more than 260 characters.
PathName GetExecutableDirectory();

}  // namespace tdkviz
