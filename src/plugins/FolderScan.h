// Finds the files of the plug-in folder.
#pragma once

#include <string>
#include <vector>

namespace tdkviz {

// Appends the full paths of all plain files below `folder` to `files`, and sorts them without regard to case.
// Names that begin with a dot are left out, files and folders alike. Folders more than 64 levels down aren't
// entered: where the system's search follows a folder that is linked into itself, the walk must end all the same.
void ScanFolder(const char* folder, std::vector<std::string>& files);

// Whether the file's extension is ".tkv", in any case.
bool IsPluginFile(const char* path);

}  // namespace tdkviz
