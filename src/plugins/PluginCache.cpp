#include "src/plugins/PluginCache.h"

#include <windows.h>

#include <cstring>

#include <tdkviz/plugin.h>

#include "src/plugins/FileStamp.h"
#include "src/plugins/VizPlugin.h"
#include "src/support/PathName.h"
#include "src/support/RegistryKey.h"

namespace tdkviz {
namespace {

bool OpenCacheKey(const CVizPlugin& plugin, RegistryKey& key) {
    const char* subKey = plugin.GetCacheKey();
    return *subKey != 0 && key.Open(HKEY_CURRENT_USER, subKey);
}

// A cached text, with a terminator behind the longest one.
template <uint32_t size>
struct CachedText {
    char Text[size + 1] = {};
    bool Read(RegistryKey& key, const char* name) { return key.GetString(name, "", Text, size); }
};

struct CachedTexts {
    CachedText<kPluginTextSize> Name;
    CachedText<kPluginTextSize> Creator;
    CachedText<kPluginTextSize> Description;
    CachedText<kChecksumSize> Checksum;

    // False if the entry isn't complete.
    bool Read(RegistryKey& key) {
        return Name.Read(key, kCacheName) && Creator.Read(key, kCacheCreator) &&
               Description.Read(key, kCacheDescription) && Checksum.Read(key, kCacheChecksum);
    }
    void Give(CVizPlugin& plugin) const {
        plugin.SetName(Name.Text);
        plugin.SetCreator(Creator.Text);
        plugin.SetDescription(Description.Text);
        plugin.SetChecksum(Checksum.Text);
    }
};

}  // namespace

CNQString PluginCacheKey(const char* path) {
    const char* name = FileNamePart(path);
    if (std::strlen(name) >= MAX_PATH) return CNQString();
    return CNQString(kSettingsKey) + "\\" + name;
}

bool ReadCache(CVizPlugin& plugin) {
    RegistryKey key;
    if (!OpenCacheKey(plugin, key)) return false;
    CachedTexts texts;
    if (!texts.Read(key)) return false;
    uint32_t supportsConfigure = 0;
    uint32_t renderMode = 0;
    key.GetNumber(kCacheSupportsConfigure, 0, &supportsConfigure);
    key.GetNumber(kCacheRenderMode, 0, &renderMode);

    texts.Give(plugin);
    plugin.SetSupportsConfigure(supportsConfigure != 0);
    plugin.SetRenderMode(renderMode);
    plugin.SetInfoValid();
    return true;
}

void RefreshFromCache(CVizPlugin& plugin) {
    RegistryKey key;
    CachedTexts texts;
    if (!OpenCacheKey(plugin, key) || !texts.Read(key)) return;
    char checksum[kChecksumSize];
    uint32_t size = sizeof checksum;
    if (!ComputeChecksum(plugin.GetPath(), checksum, &size)) return;
    if (std::strcmp(texts.Checksum.Text, checksum) == 0) texts.Give(plugin);
}

bool WriteCache(CVizPlugin& plugin) {
    RegistryKey key;
    if (!OpenCacheKey(plugin, key)) return false;
    key.SetString(kCacheName, plugin.GetName());
    key.SetString(kCacheCreator, plugin.GetCreator());
    key.SetString(kCacheDescription, plugin.GetDescription());
    key.SetString(kCacheChecksum, plugin.GetChecksum());
    return true;
}

}  // namespace tdkviz
