// Texts of the kind text/uri-list (RFC 2483), as drags carry them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tdkp {

// The paths of the files of this machine that the list names, in its order; what else it names is left out.
std::vector<std::string> LocalFilesOf(std::string_view uriList);

}  // namespace tdkp
