#include <algorithm>
#include <cstring>

#include "platform/include/mbctype.h"
#include "platform/include/tdkcrt.h"
#include "platform/include/winbase.h"
#include "platform/kernel/PathText.h"

namespace {

void CopyPart(char* target, size_t capacity, const char* begin, const char* end) {
    if (target != nullptr) {
        const size_t length = std::min(capacity - 1, static_cast<size_t>(end - begin));
        std::memcpy(target, begin, length);
        target[length] = '\0';
    }
}

}  // namespace

int _stricmp(const char* left, const char* right) {
    if (left == nullptr || right == nullptr) {
        return (left != nullptr ? 1 : 0) - (right != nullptr ? 1 : 0);
    }
    for (;; ++left, ++right) {
        const int difference = static_cast<unsigned char>(tdkp::SmallLetter(*left)) -
                               static_cast<unsigned char>(tdkp::SmallLetter(*right));
        if (difference != 0 || *left == '\0') {
            return difference;
        }
    }
}

void _splitpath(const char* path, char* drive, char* directory, char* name, char* extension) {
    const char* const text = path != nullptr ? path : "";
    const char* const end = text + std::strlen(text);
    const char* const directoryBegin = text[0] != '\0' && text[1] == ':' ? text + 2 : text;
    const char* const nameBegin = directoryBegin + tdkp::NameStart(directoryBegin);
    const char* const dot = std::strrchr(nameBegin, '.');
    const char* const nameEnd = dot != nullptr ? dot : end;
    CopyPart(drive, _MAX_DRIVE, text, directoryBegin);
    CopyPart(directory, _MAX_DIR, directoryBegin, nameBegin);
    CopyPart(name, _MAX_FNAME, nameBegin, nameEnd);
    CopyPart(extension, _MAX_EXT, nameEnd, end);
}

int _ismbblead(unsigned int) {
    return 0;
}

LPSTR CharNextA(LPCSTR text) {
    const bool atEnd = text == nullptr || *text == '\0';
    return const_cast<LPSTR>(atEnd ? text : text + 1);
}
