#include "src/plugins/FolderScan.h"

#include <windows.h>

#include <algorithm>

#include "src/support/PathName.h"
#include "src/support/Text.h"

namespace tdkviz {
namespace {

constexpr char kEveryName[] = "*.*";
constexpr char kPluginExtension[] = ".tkv";
constexpr int kMaxDepth = 64;

void CollectFiles(const std::string& folder, int depth, std::vector<std::string>& files) {
    const std::string below = folder + SeparatorFor(folder.c_str());
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileA((below + kEveryName).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return;
    while (FindNextFileA(search, &entry)) {  // the first entry is the folder itself
        if (entry.cFileName[0] == '.') continue;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            files.push_back(below + entry.cFileName);
        } else if (depth < kMaxDepth) {
            CollectFiles(below + entry.cFileName, depth + 1, files);
        }
    }
    FindClose(search);
}

// Paths that differ in case alone keep one order as well.
bool IsBefore(const std::string& a, const std::string& b) {
    const int order = _stricmp(a.c_str(), b.c_str());
    return order != 0 ? order < 0 : a < b;
}

}  // namespace

void ScanFolder(const char* folder, std::vector<std::string>& files) {
    CollectFiles(folder, 0, files);
    std::sort(files.begin(), files.end(), IsBefore);
}

bool IsPluginFile(const char* path) {
    const char* extension = FindLastChar(FileNamePart(path), '.');
    return extension && _stricmp(extension, kPluginExtension) == 0;
}

}  // namespace tdkviz
