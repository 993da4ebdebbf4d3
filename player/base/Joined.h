// Lists as people read them.
#pragma once

#include <functional>
#include <string>

namespace tdkplay {

// The texts of all items with `between` between them. `textOf` gives an item's text: a field, or anything that can be
// called with the item.
template <typename Items, typename TextOf = std::identity>
std::string Joined(const Items& items, const char* between, TextOf textOf = {}) {
    std::string all;
    const char* before = "";
    for (const auto& item : items) {
        all.append(before).append(std::invoke(textOf, item));
        before = between;
    }
    return all;
}

}  // namespace tdkplay
