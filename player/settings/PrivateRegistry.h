// A registry of its own for one run, so that a picture doesn't depend on what the user has set.
#pragma once

#include "player/base/ScratchFolder.h"

namespace tdkplay {

// Made before anything reads the registry; its files go with it.
class PrivateRegistry {
public:
    // Throws PlayerError with kCannotWrite.
    PrivateRegistry();

private:
    const ScratchFolder folder_;
};

}  // namespace tdkplay
