// Resources as the program asks for them.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/kernel/ModuleResources.h"
#include "platform/kernel/Utf16Text.h"

namespace {

constexpr uintptr_t kLastNumber = 0xFFFF;

}  // namespace

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    const auto nameNumber = reinterpret_cast<uintptr_t>(name);
    const auto typeNumber = reinterpret_cast<uintptr_t>(type);
    tdkp::ResBytes entry;
    if (nameNumber <= kLastNumber && typeNumber <= kLastNumber) {
        entry = tdkp::FindResEntry(tdkp::ModuleResources(module), static_cast<uint16_t>(typeNumber),
                                   static_cast<uint16_t>(nameNumber));
    }
    if (entry.empty()) SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return reinterpret_cast<HRSRC>(const_cast<uint8_t*>(entry.data()));
}

HGLOBAL LoadResource(HMODULE, HRSRC resource) {
    if (resource == nullptr) return nullptr;
    return const_cast<uint8_t*>(tdkp::ResEntryData(reinterpret_cast<const uint8_t*>(resource)).data());
}

LPVOID LockResource(HGLOBAL data) {
    return data;
}

DWORD SizeofResource(HMODULE, HRSRC resource) {
    if (resource == nullptr) return 0;
    return static_cast<DWORD>(tdkp::ResEntryData(reinterpret_cast<const uint8_t*>(resource)).size());
}

INT LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, INT size) {
    if (buffer == nullptr || size <= 0) return 0;
    buffer[0] = '\0';
    if (id > kLastNumber) return 0;
    const auto number = static_cast<uint16_t>(id);
    const HRSRC block = FindResourceA(instance, MAKEINTRESOURCEA(tdkp::StringBlockName(number)), RT_STRING);
    if (block == nullptr) return 0;
    const std::string text =
        tdkp::TextFromUtf16(tdkp::StringInBlock(tdkp::ResEntryData(reinterpret_cast<const uint8_t*>(block)), number));
    size_t length = std::min(text.size(), static_cast<size_t>(size) - 1);
    // A text that is cut ends with a whole character.
    while (length > 0 && length < text.size() && tdkp::IsContinuation(text[length])) --length;
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return static_cast<INT>(length);
}
