#include "player/list/TrackList.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>

#include "player/list/NaturalOrder.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

// What libsndfile opens, by the usual names.
constexpr std::array kAudioExtensions = {".wav",  ".flac", ".ogg", ".oga", ".opus", ".mp3", ".aif", ".aiff",
                                         ".aifc", ".au",   ".snd", ".w64", ".rf64", ".caf", ".voc", ".wve"};
constexpr std::array kListExtensions = {".m3u", ".m3u8"};
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
constexpr char kTitleTag[] = "#EXTINF:";

template <size_t count>
bool HasExtension(const fs::path& path, const std::array<const char*, count>& extensions) {
    const std::string own = path.extension().string();
    return std::any_of(extensions.begin(), extensions.end(),
                       [&own](const char* extension) { return strcasecmp(own.c_str(), extension) == 0; });
}

bool IsHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

bool ComesBeforePath(const fs::path& a, const fs::path& b) {
    return ComesBefore(a.filename().string(), b.filename().string());
}

std::string Trimmed(const std::string& text) {
    constexpr char kBlanks[] = " \t\r";
    const size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

class TrackReader {
public:
    std::vector<Track> Tracks;

    void Add(const fs::path& path, const std::string& title) {
        std::error_code ignored;
        const bool isFolder = fs::is_directory(path, ignored);
        const size_t before = Tracks.size();
        if (isFolder || HasExtension(path, kListExtensions)) {
            // Links and lists may lead back to where they came from.
            if (!inside_.insert(fs::weakly_canonical(path, ignored)).second) return;
            isFolder ? AddFolder(path) : AddList(path);
            inside_.erase(fs::weakly_canonical(path, ignored));
        }
        if (Tracks.size() == before) Tracks.push_back({path.string(), title});
    }

private:
    void AddFolder(const fs::path& folder) {
        std::vector<fs::path> files;
        std::vector<fs::path> folders;
        std::error_code error;
        for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
            std::error_code ignored;
            if (IsHidden(each->path())) continue;
            if (each->is_directory(ignored))
                folders.push_back(each->path());
            else if (HasExtension(each->path(), kAudioExtensions))
                files.push_back(each->path());
        }
        std::sort(files.begin(), files.end(), ComesBeforePath);
        std::sort(folders.begin(), folders.end(), ComesBeforePath);
        for (const fs::path& file : files) Tracks.push_back({file.string(), {}});
        for (const fs::path& inner : folders) AddSubfolder(inner);
    }

    // One without music is no fault.
    void AddSubfolder(const fs::path& folder) {
        std::error_code ignored;
        const fs::path place = fs::weakly_canonical(folder, ignored);
        if (!inside_.insert(place).second) return;
        AddFolder(folder);
        inside_.erase(place);
    }

    void AddList(const fs::path& list) {
        std::ifstream file(list);
        std::string title;
        bool isFirst = true;
        for (std::string line; std::getline(file, line); isFirst = false) {
            if (isFirst && line.starts_with(kByteOrderMark)) line.erase(0, sizeof(kByteOrderMark) - 1);
            line = Trimmed(line);
            if (line.starts_with(kTitleTag)) {
                const size_t comma = line.find(',');
                title = comma == std::string::npos ? "" : Trimmed(line.substr(comma + 1));
            } else if (!line.empty() && !line.starts_with('#')) {
                Add(PlaceOf(line, list), title);
                title.clear();
            }
        }
    }

    // Lists of other systems part their folders with a backslash, which a name may also hold here.
    static fs::path PlaceOf(std::string line, const fs::path& list) {
        std::error_code ignored;
        const fs::path asWritten = list.parent_path() / line;
        if (fs::exists(asWritten, ignored)) return asWritten;
        std::replace(line.begin(), line.end(), '\\', '/');
        return list.parent_path() / line;
    }

    std::set<fs::path> inside_;  // folders and lists that are being read
};

}  // namespace

std::vector<Track> ReadTracks(const std::vector<std::string>& paths) {
    TrackReader reader;
    if (paths.empty()) reader.Tracks.emplace_back();
    for (const std::string& path : paths) reader.Add(path, {});
    return std::move(reader.Tracks);
}

}  // namespace tdkplay
