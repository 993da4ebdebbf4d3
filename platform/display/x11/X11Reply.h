// Owners of what the X client library hands out to be freed.
#pragma once

#include <cstdlib>
#include <memory>

namespace tdkp {

struct X11Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename T>
using X11Owned = std::unique_ptr<T, X11Free>;

// Takes over a reply, an event or an error; null is fine. An error that the library is given no place for it frees
// itself.
template <typename T>
X11Owned<T> X11Reply(T* reply) {
    return X11Owned<T>(reply);
}

}  // namespace tdkp
