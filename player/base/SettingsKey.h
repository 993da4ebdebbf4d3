// One key of the registry, in which the player and its companions keep what outlives a run.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tdkplay {

// The add-on's key below HKEY_CURRENT_USER, with a subkey for each plug-in that it knows.
inline constexpr char kAddOnKey[] = "Software\\Corvane\\Visualizations";

// A value of any kind, as it is stored.
struct StoredValue {
    std::string Name;
    DWORD Type = REG_NONE;
    std::string Bytes;

    std::optional<uint32_t> Number() const;   // none: not a REG_DWORD
    std::optional<std::string> Text() const;  // none: not a REG_SZ
};

// An open key below HKEY_CURRENT_USER. One that isn't there reads as empty. Each value is read and written whole,
// whatever other processes do. Throws PlayerError with kNoSettings if the registry can't be read or written.
class SettingsKey {
public:
    static SettingsKey OpenToRead(const std::string& path);
    // Makes the key if it isn't there.
    static SettingsKey OpenToWrite(const std::string& path);
    // Takes the key away with all in and below it; false if it wasn't there.
    static bool Remove(const std::string& path);

    SettingsKey(SettingsKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    ~SettingsKey();
    SettingsKey& operator=(const SettingsKey&) = delete;

    std::optional<StoredValue> Find(const char* name) const;
    void SetNumber(const char* name, uint32_t value);
    void SetText(const char* name, const std::string& text);

    // In the registry's own order.
    std::vector<StoredValue> Values() const;
    std::vector<std::string> SubKeys() const;

private:
    explicit SettingsKey(HKEY key) : key_(key) {}
    void Set(const char* name, DWORD type, const void* data, size_t size);

    HKEY key_;
};

}  // namespace tdkplay
