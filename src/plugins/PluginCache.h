// The cache of plug-in descriptions in the registry: one key for each file name, so that known plug-ins need
// not be loaded.
#pragma once

#include "src/support/NQString.h"

namespace tdkviz {

class CVizPlugin;

// Names of the values: texts, the last two 32-bit numbers.
inline constexpr char kCacheName[] = "Name";
inline constexpr char kCacheCreator[] = "Creator";
inline constexpr char kCacheDescription[] = "Description";
inline constexpr char kCacheChecksum[] = "Checksum";
inline constexpr char kCacheSupportsConfigure[] = "SupportsConfigure";
inline constexpr char kCacheRenderMode[] = "RenderMode";

// Subkey of HKEY_CURRENT_USER for a plug-in's file; the folder plays no part. Empty if the file's name has
// 260 characters or more.
CNQString PluginCacheKey(const char* path);
// Describes the plug-in from its entry. False, with the plug-in untouched, if that isn't complete.
bool ReadCache(CVizPlugin& plugin);
// Gives the plug-in the texts of its entry if that is of the file as it stands, and leaves it to the plug-in to
// describe itself: numbers aren't read, and the first question for a text loads it.
void RefreshFromCache(CVizPlugin& plugin);
// Stores texts and stamp. Asks for the texts, which loads a plug-in that isn't described. False without a key.
bool WriteCache(CVizPlugin& plugin);

}  // namespace tdkviz
