#include "src/support/RegistryKey.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace tdkviz {
namespace {

constexpr DWORD kReadAndWrite = 0x2001F;
constexpr size_t kNumberRoom = 8;

// Copies at most `size` bytes of `text` and fills up with zeros.
void CopyFilled(char* out, const char* text, uint32_t size) {
    const size_t length = text ? std::min<size_t>(std::strlen(text), size) : 0;
    if (length > 0) std::memcpy(out, text, length);
    if (length < size) std::memset(out + length, 0, size - length);
}

}  // namespace

RegistryKey::~RegistryKey() {
    Close();
}

bool RegistryKey::Open(HKEY root, const char* subKey) {
    Close();
    HKEY opened = nullptr;
    const LSTATUS status = RegCreateKeyExA(root, subKey, 0, nullptr, 0, kReadAndWrite, nullptr, &opened, nullptr);
    if (status == ERROR_SUCCESS) key_ = opened;
    return key_ != nullptr;
}

void RegistryKey::Close() {
    if (key_) RegCloseKey(key_);
    key_ = nullptr;
}

bool RegistryKey::SetString(const char* name, const char* text) {
    if (!key_ || !text) return false;
    const auto* bytes = reinterpret_cast<const BYTE*>(text);
    return RegSetValueExA(key_, name, 0, REG_SZ, bytes, static_cast<DWORD>(std::strlen(text) + 1)) == ERROR_SUCCESS;
}

bool RegistryKey::SetNumber(const char* name, uint32_t value) {
    if (!key_) return false;
    const auto* bytes = reinterpret_cast<const BYTE*>(&value);
    return RegSetValueExA(key_, name, 0, REG_DWORD, bytes, sizeof value) == ERROR_SUCCESS;
}

bool RegistryKey::GetString(const char* name, const char* fallback, char* out, uint32_t size) {
    if (!key_) return false;
    DWORD read = size + 1;
    const std::unique_ptr<BYTE[]> work(read ? new (std::nothrow) BYTE[read] : nullptr);
    if (!work) return false;
    DWORD type = REG_NONE;
    const LSTATUS status = RegQueryValueExA(key_, name, nullptr, &type, work.get(), &read);
    const bool isFound = status == ERROR_SUCCESS && type == REG_SZ;
    if (!isFound) {
        CopyFilled(out, fallback, size);
        return false;
    }
    std::memset(out, 0, size);
    std::memcpy(out, work.get(), std::min<size_t>(size, read));
    return true;
}

bool RegistryKey::GetNumber(const char* name, uint32_t fallback, uint32_t* out) {
    if (!key_) return false;
    BYTE work[kNumberRoom] = {};
    DWORD read = sizeof work;
    DWORD type = REG_NONE;
    const LSTATUS status = RegQueryValueExA(key_, name, nullptr, &type, work, &read);
    const bool isFound = status == ERROR_SUCCESS && type == REG_DWORD;
    *out = fallback;
    if (isFound) std::memcpy(out, work, sizeof *out);
    return isFound;
}

bool WriteNumberSetting(const char* name, uint32_t value, const char* subKey) {
    RegistryKey key;
    return key.Open(HKEY_CURRENT_USER, subKey) && key.SetNumber(name, value);
}

bool ReadNumberSetting(const char* name, uint32_t fallback, uint32_t* out, const char* subKey) {
    RegistryKey key;
    return key.Open(HKEY_CURRENT_USER, subKey) && key.GetNumber(name, fallback, out);
}

}  // namespace tdkviz
