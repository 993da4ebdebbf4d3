#include "player/base/SettingsKey.h"

#include <array>
#include <cstring>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr DWORD kLongestName = 16384;  // characters, by the registry's own rule

PlayerError Failure(const char* what, LSTATUS status) {
    const char* const why = status == ERROR_ACCESS_DENIED ? "access is denied" : "the registry can't be used";
    return {ExitCode::kNoSettings, std::string("the store of the settings can't be ") + what + ": " + why + " (error " +
                                       std::to_string(status) + ")"};
}

bool IsMissing(LSTATUS status) {
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

}  // namespace

std::optional<uint32_t> StoredValue::Number() const {
    uint32_t number = 0;
    if (Type != REG_DWORD || Bytes.size() != sizeof(number)) return std::nullopt;
    std::memcpy(&number, Bytes.data(), sizeof(number));
    return number;
}

std::optional<std::string> StoredValue::Text() const {
    if (Type != REG_SZ) return std::nullopt;
    return Bytes.substr(0, Bytes.find('\0'));
}

SettingsKey SettingsKey::OpenToRead(const std::string& path) {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
    if (status != ERROR_SUCCESS && !IsMissing(status)) throw Failure("read", status);
    return SettingsKey(status == ERROR_SUCCESS ? key : nullptr);
}

SettingsKey SettingsKey::OpenToWrite(const std::string& path) {
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                           KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS) throw Failure("opened", status);
    return SettingsKey(key);
}

bool SettingsKey::Remove(const std::string& path) {
    const LSTATUS status = RegDeleteTreeA(HKEY_CURRENT_USER, path.c_str());
    if (status != ERROR_SUCCESS && !IsMissing(status)) throw Failure("cleared", status);
    return status == ERROR_SUCCESS;
}

SettingsKey::~SettingsKey() {
    if (key_) RegCloseKey(key_);
}

std::optional<StoredValue> SettingsKey::Find(const char* name) const {
    for (StoredValue value = {name, REG_NONE, {}}; key_;) {
        auto size = static_cast<DWORD>(value.Bytes.size());
        auto* const bytes = reinterpret_cast<BYTE*>(value.Bytes.data());
        const LSTATUS status = RegQueryValueExA(key_, name, nullptr, &value.Type, size ? bytes : nullptr, &size);
        const bool isComplete = status == ERROR_SUCCESS && size <= value.Bytes.size();
        value.Bytes.resize(size);
        if (isComplete) return value;
        // The size came first; or somebody has stored a longer value since.
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) break;
    }
    return std::nullopt;
}

void SettingsKey::Set(const char* name, DWORD type, const void* data, size_t size) {
    const LSTATUS status =
        RegSetValueExA(key_, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
    if (status != ERROR_SUCCESS) throw Failure("written", status);
}

void SettingsKey::SetNumber(const char* name, uint32_t value) {
    Set(name, REG_DWORD, &value, sizeof(value));
}

void SettingsKey::SetText(const char* name, const std::string& text) {
    Set(name, REG_SZ, text.c_str(), text.size() + 1);
}

std::vector<StoredValue> SettingsKey::Values() const {
    std::vector<StoredValue> values;
    std::vector<char> name(kLongestName);
    for (DWORD index = 0; key_; ++index) {
        auto length = static_cast<DWORD>(name.size());
        if (RegEnumValueA(key_, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        if (auto value = Find(name.data())) values.push_back(*std::move(value));
    }
    return values;
}

std::vector<std::string> SettingsKey::SubKeys() const {
    std::vector<std::string> names;
    std::vector<char> name(kLongestName);
    for (DWORD index = 0; key_; ++index) {
        auto length = static_cast<DWORD>(name.size());
        if (RegEnumKeyExA(key_, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name.data());
    }
    return names;
}

}  // namespace tdkplay
