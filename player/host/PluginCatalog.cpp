#include "player/host/PluginCatalog.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

#include "player/base/ExitCode.h"
#include "player/base/Joined.h"

namespace tdkplay {
namespace {

constexpr uint32_t kTextSize = 4096;
constexpr char kExtension[] = ".tkv";

bool Equals(const std::string& a, const std::string& b) {
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

bool BeginsWith(const std::string& text, const std::string& beginning) {
    return strncasecmp(text.c_str(), beginning.c_str(), beginning.size()) == 0;
}

bool IsFile(const std::string& path, const std::string& text) {
    std::error_code error;
    return text.find('/') != std::string::npos && (path == text || std::filesystem::equivalent(path, text, error));
}

bool IsCalled(const PluginInfo& plugin, const std::string& text) {
    return Equals(plugin.Name, text) || Equals(plugin.FileName(), text) ||
           Equals(plugin.FileName() + kExtension, text) || IsFile(plugin.Path, text);
}

bool IsCalledLike(const PluginInfo& plugin, const std::string& text) {
    return BeginsWith(plugin.Name, text) || BeginsWith(plugin.FileName(), text);
}

void RequirePlugins(const std::vector<PluginInfo>& plugins) {
    if (plugins.empty()) throw PlayerError(ExitCode::kNoPlugins, "there are no plug-ins in the folder Visualizations");
}

}  // namespace

std::string PluginInfo::RealPath() const {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(Path, error);
    return error ? Path : real.string();
}

std::string PluginInfo::File() const {
    return Path.substr(Path.find_last_of("/\\") + 1);
}

std::string PluginInfo::FileName() const {
    const std::string file = File();
    const size_t end = file.rfind('.');
    return end != std::string::npos && Equals(file.substr(end), kExtension) ? file.substr(0, end) : file;
}

std::vector<PluginInfo> ListPlugins(IMPAVizMgr& manager) {
    uint32_t ignored = 0;
    manager.GetPluginIndex("", &ignored);  // the first question about a plug-in makes the list

    std::vector<PluginInfo> plugins;
    std::array<char, kTextSize> name = {};
    std::array<char, kTextSize> path = {};
    for (uint32_t index = 0; index < manager.GetPluginCount();) {
        const uint32_t count = manager.GetPluginCount();
        if (SUCCEEDED(manager.GetPluginInfo(static_cast<uint16_t>(index), name.data(), path.data(), kTextSize))) {
            plugins.push_back({name.data(), path.data()});
            ++index;
        } else if (manager.GetPluginCount() >= count) {
            ++index;  // it stays in the list all the same
        }             // else it has left the list, and the next one is in its place
    }
    return plugins;
}

size_t FindPluginFile(const std::vector<PluginInfo>& plugins, const std::string& file) {
    RequirePlugins(plugins);
    const auto found = std::find_if(plugins.begin(), plugins.end(),
                                    [&file](const PluginInfo& plugin) { return Equals(plugin.File(), file); });
    return found == plugins.end() ? 0 : static_cast<size_t>(found - plugins.begin());
}

size_t FindPlugin(const std::vector<PluginInfo>& plugins, const std::string& text) {
    RequirePlugins(plugins);
    if (text.empty()) return 0;
    for (size_t i = 0; i < plugins.size(); ++i)
        if (IsCalled(plugins[i], text)) return i;

    std::optional<size_t> found;
    for (size_t i = 0; i < plugins.size(); ++i) {
        if (!IsCalledLike(plugins[i], text)) continue;
        if (found) throw PlayerError(ExitCode::kUnknownPlugin, "more than one plug-in begins with \"" + text + "\"");
        found = i;
    }
    if (found) return *found;
    throw PlayerError(ExitCode::kUnknownPlugin,
                      "no plug-in \"" + text + "\"; there are: " + Joined(plugins, ", ", &PluginInfo::Name));
}

void FillUp(std::vector<size_t>& chosen, size_t views, size_t plugins) {
    const auto isChosen = [&chosen](size_t index) {
        return std::find(chosen.begin(), chosen.end(), index) != chosen.end();
    };
    while (chosen.size() < views) {
        const size_t next = (chosen.back() + 1) % plugins;
        size_t other = next;
        for (size_t tries = 1; tries < plugins && isChosen(other); ++tries) other = (other + 1) % plugins;
        chosen.push_back(isChosen(other) ? next : other);
    }
}

}  // namespace tdkplay
