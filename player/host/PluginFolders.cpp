#include "player/host/PluginFolders.h"

#include <stdlib.h>
#include <tdkplatform.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <system_error>

#include "player/host/AddOn.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

constexpr char kPluginFolder[] = "Visualizations";
constexpr char kProgramFile[] = "tdkplay";
// Names of links. The user's own come first in the list: of two plug-ins of one name they are the ones that are meant.
constexpr char kOwnPlace[] = "Own";
constexpr char kSharedPlace[] = "Shared";

std::string Variable(const char* name) {
    const char* const value = getenv(name);
    return value ? value : "";
}

// Empty if there is no home.
std::string UsersPluginFolder() {
    fs::path data = Variable("XDG_DATA_HOME");
    const fs::path home = Variable("HOME");
    if (!data.is_absolute() && home.is_absolute()) data = home / ".local" / "share";
    return data.is_absolute() ? (data / "tdkviz" / kPluginFolder).string() : "";
}

bool LiesBelow(const fs::path& path, const fs::path& folder) {
    std::error_code error;
    const fs::path way = fs::relative(path, folder, error);  // without links in it
    return !error && !way.empty() && *way.begin() != "..";
}

// Where plug-ins lie elsewhere than beside the player, by the name of the link to it.
std::map<fs::path, fs::path> OtherPlaces(const fs::path& shared, const std::vector<std::string>& plugins) {
    std::map<fs::path, fs::path> places;
    std::error_code error;
    const fs::path own = fs::canonical(UsersPluginFolder(), error);
    const bool hasOwn = !error && fs::is_directory(own, error) && !LiesBelow(own, shared);
    if (hasOwn) places[kOwnPlace] = own;
    for (const fs::path plugin : plugins) {
        if (!plugin.has_parent_path() || !fs::is_regular_file(plugin, error)) continue;
        const fs::path file = fs::canonical(plugin, error);
        const bool isListed = error || LiesBelow(file, shared) || (hasOwn && LiesBelow(file, own));
        // In a folder of its own: others may have the same name.
        if (!isListed) places[fs::path(std::to_string(places.size())) / plugin.filename()] = file;
    }
    return places;
}

}  // namespace

PluginFolders::PluginFolders(const std::vector<std::string>& plugins) {
    const fs::path shared = fs::path(OwnFolder()) / kPluginFolder;
    std::map<fs::path, fs::path> places = OtherPlaces(shared, plugins);
    if (places.empty()) return;
    std::error_code error;
    const auto own = places.find(kOwnPlace);
    const bool comesWithOwn = own != places.end() && LiesBelow(shared, own->second);
    if (fs::is_directory(shared, error) && !comesWithOwn) places[kSharedPlace] = shared;
    try {
        program_.emplace();
        const fs::path folder = program_->File(kPluginFolder);
        fs::create_directory(folder);
        for (const auto& [name, place] : places) {
            fs::create_directories((folder / name).parent_path());
            fs::create_symlink(place, folder / name);
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tdkplay: only the plug-ins beside the player can be shown: %s\n", failure.what());
        program_.reset();
        return;
    }
    TdkpUseProgramPath(program_->File(kProgramFile).c_str());
}

PluginFolders::~PluginFolders() {
    if (program_) TdkpUseProgramPath(nullptr);
}

}  // namespace tdkplay
