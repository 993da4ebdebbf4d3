// The way to bitmaps, texts and dialog templates, through the resource manager library.
//
// Nothing fails without that library: there are no bitmaps then, and text buffers stay as they were. Each
// request tries again to find it. No locks: attach and detach, then the host's threads.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tdkviz {

// The add-on's own tag in the upper half of a resource id.
inline constexpr uint16_t kAddOnResourceTag = 1615;
// In the upper half of an id: the current tag, and no tag at all.
inline constexpr uint16_t kCurrentTagMark = 0;
inline constexpr uint16_t kNoTagMark = 0xFFFF;
// The id of the add-on's own resource of this number.
constexpr uint32_t AddOnResource(uint16_t number) {
    return uint32_t{kAddOnResourceTag} << 16 | number;
}

// Looks for the library in the host's folder for common libraries, then beside the executable.
void StartResourceAccess();
// A module that can't be registered now is registered when the access starts later.
void RegisterResourceModule(HMODULE module, uint32_t tag);
// Kept whether or not there is a manager.
void SetResourceTag(uint16_t tag);
// The caller's bitmap, or null.
HBITMAP LoadResourceBitmap(uint32_t id);
// What the manager answers, or 0.
int32_t LoadResourceString(uint32_t id, char* buffer, uint32_t size);
// The module to make a dialog from, or null. The tag of `id` goes as it stands.
HMODULE GetResourceInstance(uint32_t id, uint32_t kind);
// Withdraws the registered module and lets go of manager and library.
void StopResourceAccess();

}  // namespace tdkviz
