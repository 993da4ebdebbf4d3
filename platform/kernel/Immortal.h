// Objects that are made at their first use and never destroyed: threads may still run while the process
// takes down its static objects.
#pragma once

#include <cstddef>
#include <memory>

namespace tdkp {

// The one object of its type; give each use a type of its own.
template <typename T>
T& Immortal() {
    alignas(T) static std::byte storage[sizeof(T)];
    static T* const object = std::construct_at(reinterpret_cast<T*>(storage));
    return *object;
}

}  // namespace tdkp
