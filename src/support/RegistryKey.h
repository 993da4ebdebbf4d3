// RegistryKey: all registry work. Texts and 32-bit numbers, nothing else.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tdkviz {

// The add-on's own key, below HKEY_CURRENT_USER. Its values are the settings; each subkey is what is kept of a plug-in.
inline constexpr char kSettingsKey[] = "Software\\Corvane\\Visualizations";

// Closed when made, closed at its end. Used by one thread at a time. Every failure is a false.
class RegistryKey {
public:
    RegistryKey() = default;
    ~RegistryKey();
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    // Closes what is open, then opens `subKey` below `root`, making it if needed.
    bool Open(HKEY root, const char* subKey);
    void Close();

    // False when closed.
    bool SetString(const char* name, const char* text);
    bool SetNumber(const char* name, uint32_t value);
    // On a closed key false with `out` untouched. Otherwise true with the value, or false with `fallback`, in
    // `out`, which has `size` bytes, the rest zero. A text of `size` bytes fills it without a terminator.
    bool GetString(const char* name, const char* fallback, char* out, uint32_t size);
    // The same for a number.
    bool GetNumber(const char* name, uint32_t fallback, uint32_t* out);

private:
    HKEY key_ = nullptr;
};

// One-shot forms below HKEY_CURRENT_USER.
bool WriteNumberSetting(const char* name, uint32_t value, const char* subKey);
// False with `out` untouched if the key can't be opened; else as GetNumber.
bool ReadNumberSetting(const char* name, uint32_t fallback, uint32_t* out, const char* subKey);

}  // namespace tdkviz
