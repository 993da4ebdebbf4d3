#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/KeyPath.h"
#include "platform/registry/Registry.h"

namespace tdkp {
namespace {

std::string_view NameOf(LPCSTR name) {
    return name != nullptr ? name : "";
}

std::string_view BytesOf(const BYTE* data, DWORD size) {
    return {reinterpret_cast<const char*>(data), data != nullptr ? size : 0};
}

template <typename Value>
void Tell(Value* out, Value value) {
    if (out != nullptr) *out = value;
}

LSTATUS TellData(const RegistryValue& value, DWORD* type, BYTE* data, DWORD* size) {
    Tell(type, DWORD{value.type});
    if (size == nullptr) return data == nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    const DWORD room = *size;
    *size = static_cast<DWORD>(value.data.size());
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < *size) return ERROR_MORE_DATA;
    std::copy(value.data.begin(), value.data.end(), data);
    return ERROR_SUCCESS;
}

// `length` counts the terminating zero on the way in and leaves it out on the way out.
LSTATUS TellName(std::string_view name, LPSTR out, DWORD* length) {
    if (out == nullptr || length == nullptr) return ERROR_INVALID_PARAMETER;
    if (*length <= name.size()) return ERROR_MORE_DATA;
    std::copy(name.begin(), name.end(), out);
    out[name.size()] = '\0';
    *length = static_cast<DWORD>(name.size());
    return ERROR_SUCCESS;
}

// The same bytes again need no write.
bool Stands(const RegistryValue* value, DWORD type, std::string_view data) {
    return value != nullptr && value->type == type && value->data == data;
}

}  // namespace
}  // namespace tdkp

using namespace tdkp;

TDKP_API LSTATUS RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD, LPSTR, DWORD, REGSAM access,
                                 const SECURITY_ATTRIBUTES*, HKEY* out, DWORD* disposition) {
    if (out == nullptr || subKey == nullptr) return ERROR_INVALID_PARAMETER;
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, 0, &path);
    if (found != ERROR_SUCCESS) return found;
    path = JoinKeyPath(path, subKey);
    const bool exists = registry->FindKey(path) != nullptr;
    if (!exists) {
        const LSTATUS made = registry->Write(&Database::CreateKey, path);
        if (made != ERROR_SUCCESS) return made;
    }
    *out = registry->OpenKey(std::move(path), access);
    Tell(disposition, DWORD{exists ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY});
    return ERROR_SUCCESS;
}

TDKP_API LSTATUS RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD, REGSAM access, HKEY* out) {
    if (out == nullptr) return ERROR_INVALID_PARAMETER;
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, 0, &path);
    if (found != ERROR_SUCCESS) return found;
    path = JoinKeyPath(path, subKey);
    if (registry->FindKey(path) == nullptr) return ERROR_FILE_NOT_FOUND;
    *out = registry->OpenKey(std::move(path), access);
    return ERROR_SUCCESS;
}

TDKP_API LSTATUS RegCloseKey(HKEY key) {
    const Registry::Session registry;
    return registry->CloseKey(key);
}

TDKP_API LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, KEY_QUERY_VALUE, &path);
    if (found != ERROR_SUCCESS) return found;
    const RegistryValue* value = registry->Contents().FindValue(path, NameOf(name));
    return value != nullptr ? TellData(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
}

TDKP_API LSTATUS RegSetValueExA(HKEY key, LPCSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    if (data == nullptr && size != 0) return ERROR_INVALID_PARAMETER;
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, KEY_SET_VALUE, &path);
    if (found != ERROR_SUCCESS) return found;
    std::string_view bytes = BytesOf(data, size);
    std::string terminated;
    // A text is stored with its zero, even if the caller didn't count it.
    if ((type == REG_SZ || type == REG_EXPAND_SZ) && (bytes.empty() || bytes.back() != '\0')) {
        terminated.assign(bytes).push_back('\0');
        bytes = terminated;
    }
    if (Stands(registry->Contents().FindValue(path, NameOf(name)), type, bytes)) return ERROR_SUCCESS;
    return registry->Write(&Database::SetValue, path, NameOf(name), type, bytes);
}

TDKP_API LSTATUS RegDeleteTreeA(HKEY key, LPCSTR subKey) {
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, 0, &path);
    if (found != ERROR_SUCCESS) return found;
    const std::string target = JoinKeyPath(path, subKey);
    const bool keepKey = target == path;
    if (registry->FindKey(target) == nullptr) return ERROR_FILE_NOT_FOUND;
    return registry->Write(&Database::DeleteTree, target, keepKey);
}

TDKP_API LSTATUS RegEnumValueA(HKEY key, DWORD index, LPSTR name, DWORD* nameLength, DWORD*, DWORD* type, BYTE* data,
                               DWORD* size) {
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, KEY_QUERY_VALUE, &path);
    if (found != ERROR_SUCCESS) return found;
    const auto& values = registry->FindKey(path)->values;
    if (index >= values.size()) return ERROR_NO_MORE_ITEMS;
    const RegistryValue& value = std::next(values.begin(), static_cast<ptrdiff_t>(index))->second;
    const LSTATUS told = TellName(value.name, name, nameLength);
    return told == ERROR_SUCCESS ? TellData(value, type, data, size) : told;
}

TDKP_API LSTATUS RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, DWORD* nameLength, DWORD*, LPSTR keyClass,
                               DWORD* classLength, FILETIME* lastWrite) {
    const Registry::Session registry;
    std::string path;
    const LSTATUS found = registry->PathOf(key, KEY_ENUMERATE_SUB_KEYS, &path);
    if (found != ERROR_SUCCESS) return found;
    const std::vector<std::string> names = registry->Contents().SubKeys(path);
    if (index >= names.size()) return ERROR_NO_MORE_ITEMS;
    if (keyClass != nullptr && classLength != nullptr && *classLength > 0) *keyClass = '\0';
    Tell(classLength, DWORD{0});
    Tell(lastWrite, FILETIME{});
    return TellName(names[index], name, nameLength);
}
