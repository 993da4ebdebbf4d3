#include "player/settings/PrivateRegistry.h"

#include <stdlib.h>

namespace tdkplay {

PrivateRegistry::PrivateRegistry() {
    setenv("TDKVIZ_REGISTRY", folder_.File("registry.db").c_str(), 1);
}

}  // namespace tdkplay
