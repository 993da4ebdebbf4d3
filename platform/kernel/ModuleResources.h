// Where a module keeps its resources: an ELF note of owner "TdkRes" and type 1, whose bytes are a .res file.
// Notes are mapped with the module and found through its program headers, so nothing has to be exported.
#pragma once

#include <windef.h>

#include "platform/kernel/ResFile.h"

namespace tdkp {

// Null is the executable. The bytes live as long as the module; empty if it has none or isn't loaded.
ResBytes ModuleResources(HMODULE module);

}  // namespace tdkp
