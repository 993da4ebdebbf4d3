// All keys and values as they stood in the file at one moment. Small enough to be read as a whole, it makes
// reading a key as cheap as a look into a map.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tdkp {

struct RegistryValue {
    std::string name;  // as it was first written
    uint32_t type = 0;
    std::string data;
};

struct RegistryKeyContents {
    std::string path;
    std::map<std::string, RegistryValue> values;  // by name with small letters
};

class Snapshot {
public:
    // Makes the key and its parents if they aren't there.
    RegistryKeyContents& Add(std::string_view path);

    // Null if there is no such key.
    const RegistryKeyContents* Find(std::string_view path) const;
    const RegistryValue* FindValue(std::string_view path, std::string_view name) const;
    // The names of the keys right below a key, sorted.
    std::vector<std::string> SubKeys(std::string_view path) const;

private:
    std::map<std::string, RegistryKeyContents> keys_;  // by path with small letters
};

}  // namespace tdkp
