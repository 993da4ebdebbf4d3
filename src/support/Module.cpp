#include "src/support/Module.h"

namespace tdkviz {

Relaxed<HMODULE> ModuleHandle;
Relaxed<IUnknown*> HostContext;

}  // namespace tdkviz
