// Finds the files of the plug-in folder.
#pragma once

#include <string>
#include <vector>

namespace tdkviz {

// Appends the full paths of all plain files below `folder` to `files`, and sorts them without regard to case.
// Names that begin with a dot are left out, files and folders alike. Folders more than 16 levels down aren't
// entered, so that a folder linked into itself comes to an end.
void ScanFolder(const char* folder, std::vector<std::string>& files);

// Whether the file's extension is ".tkv", in any case.
bool IsPluginFile(const char* path);

}  // namespace tdkviz
