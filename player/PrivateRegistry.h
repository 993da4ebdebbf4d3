// A registry of its own for one run, so that a picture doesn't depend on what the user has set.
#pragma once

#include <string>

namespace tdkplay {

// Made before anything reads the registry; its files go with it.
class PrivateRegistry {
public:
    PrivateRegistry();
    ~PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

private:
    std::string folder_;
};

}  // namespace tdkplay
