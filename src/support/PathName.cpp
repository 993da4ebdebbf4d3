#include "src/support/PathName.h"

#include <windows.h>

#include "src/support/Text.h"

namespace tdkviz {
namespace {

constexpr char kBackslash = '\\';
constexpr char kSlash = '/';
constexpr char kDriveMark = ':';
constexpr int kMaxComponents = 256;
constexpr int32_t kDriveLength = 2;

int32_t ModulePath(char (&path)[MAX_PATH + 1]) {
    const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
    path[MAX_PATH] = 0;  // a path that was cut need not be terminated
    return length < MAX_PATH ? static_cast<int32_t>(length) : 0;
}

char FindPathSeparator() {
    char path[MAX_PATH + 1];
    path[0] = 0;
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    path[MAX_PATH] = 0;
    const char* p = path;
    while (*p && !IsSeparator(*p)) p = NextChar(p);
    return *p ? *p : kBackslash;
}

const char* SkipSeparators(const char* p) {
    while (IsSeparator(*p)) ++p;
    return p;
}

const char* SkipName(const char* p) {
    while (*p && !IsSeparator(*p)) p = NextChar(p);
    return p;
}

}  // namespace

bool IsSeparator(char c) {
    return c == kBackslash || c == kSlash;
}

char PathSeparator() {
    static const char separator = FindPathSeparator();
    return separator;
}

char SeparatorFor(const char* path) {
    return FindChar(path, kBackslash) && !FindChar(path, kSlash) ? kBackslash : PathSeparator();
}

const char* FileNamePart(const char* path) {
    const char* name = path[0] && path[1] == kDriveMark ? path + kDriveLength : path;
    for (const char* p = name; *p; p = NextChar(p)) {
        if (IsSeparator(*p)) name = p + 1;
    }
    return name;
}

PathName::PathName(const char* text) : text_(text) {
    Parse();
}

PathName PathName::GetDirectory() const {
    return empty_ ? PathName() : PathName(text_.Left(rootLength_ + directoryLength_).GetText());
}

PathName PathName::Append(const char* name) const {
    if (empty_) return PathName(name);
    CNQString joined(text_);
    // A trail byte may look like a separator, so the last character is found from the front.
    const char* last = text_.GetText();
    for (const char* p = last; *p; p = NextChar(p)) last = p;
    if (!IsSeparator(*last)) joined = joined + SeparatorFor(text_.GetText());
    joined += name;
    return PathName(joined.GetText());
}

void PathName::Parse() {
    const char* const start = text_.GetText();
    empty_ = *start == 0;
    if (empty_) return;
    const bool hasDrive = start[1] == kDriveMark;
    const bool hasServer = !hasDrive && IsSeparator(start[0]) && IsSeparator(start[1]);
    const char* root = start + (hasDrive ? kDriveLength : 0);
    if (hasServer) root = SkipName(SkipSeparators(start));
    rootLength_ = static_cast<int32_t>(root - start);

    const char* lastSeparators = root;
    const char* lastName = root;
    const char* p = root;
    for (int i = 0; *p && i < kMaxComponents; ++i) {
        const char* name = SkipSeparators(p);
        if (*name == 0 && i > 0) break;  // a closing separator
        lastSeparators = p;
        lastName = name;
        p = SkipName(name);
    }
    // What stands directly under the root keeps its separator in the directory.
    const bool isUnderRoot = lastSeparators == root;
    const char* end = isUnderRoot && lastName != root ? root + 1 : lastSeparators;
    directoryLength_ = static_cast<int32_t>(end - root);
}

PathName GetExecutableDirectory() {
    char path[MAX_PATH + 1];
    return ModulePath(path) > 0 ? PathName(path).GetDirectory() : PathName();
}

}  // namespace tdkviz
