#include "platform/registry/Snapshot.h"

#include "platform/registry/KeyPath.h"

namespace tdkp {

RegistryKeyContents& Snapshot::Add(std::string_view path) {
    const auto [place, added] = keys_.try_emplace(FoldCase(path));
    if (added) {
        place->second.path = path;
        const std::string_view parent = ParentOf(path);
        if (!parent.empty()) Add(parent);
    }
    return place->second;
}

const RegistryKeyContents* Snapshot::Find(std::string_view path) const {
    const auto place = keys_.find(FoldCase(path));
    return place != keys_.end() ? &place->second : nullptr;
}

const RegistryValue* Snapshot::FindValue(std::string_view path, std::string_view name) const {
    const RegistryKeyContents* key = Find(path);
    if (key == nullptr) return nullptr;
    const auto place = key->values.find(FoldCase(name));
    return place != key->values.end() ? &place->second : nullptr;
}

std::vector<std::string> Snapshot::SubKeys(std::string_view path) const {
    std::vector<std::string> names;
    const std::string prefix = FoldCase(path) + kKeySeparator;
    for (auto place = keys_.lower_bound(prefix); place != keys_.end() && place->first.starts_with(prefix); ++place) {
        if (place->first.find(kKeySeparator, prefix.size()) == std::string::npos)
            names.push_back(place->second.path.substr(prefix.size()));
    }
    return names;
}

}  // namespace tdkp
