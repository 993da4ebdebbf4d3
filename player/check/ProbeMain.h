// The inside of a process that tries a plug-in.
#pragma once

#include <string>

namespace tdkplay::check {

// Runs the check of this name on the plug-in and ends the process. Its files are those of ChildProcess. Throws
// PlayerError with kUsage if there is no such check or the files aren't there.
[[noreturn]] void RunProbe(const std::string& name, const std::string& path, double effort);

}  // namespace tdkplay::check
