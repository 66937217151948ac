#include "history/WantedFiles.h"

#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <filesystem>
#include <system_error>

namespace Orvanta {

namespace {

// The path with all links resolved in the part of it that exists.
std::string ResolvedPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(NativePath(path), error);
    return error ? path : PathText(resolved);
}

std::string ComparableForm(const std::string& path) {
    return ComparablePath(NormalizePath(path));
}

template <typename Map>
void Append(std::vector<std::size_t>& places, const Map& map, const typename Map::key_type& key) {
    if (const auto found = map.find(key); found != map.end()) {
        places.insert(places.end(), found->second.begin(), found->second.end());
    }
}

} // namespace

WantedFiles::WantedFiles(std::span<const std::string> paths) : isMissing_(paths.size()) {
    for (std::size_t place = 0; place < paths.size(); ++place) {
        byPath_[ComparableForm(paths[place])].push_back(place);
        if (const std::optional<FileStamp> stamp = StampOf(paths[place])) {
            byFile_[{stamp->volume, stamp->index}].push_back(place);
        } else {
            // Its own links are gone with it; those of the folders on its way may still lead where a unit's path does.
            isMissing_[place] = true;
            byPath_[ComparableForm(ResolvedPath(paths[place]))].push_back(place);
        }
    }
}

std::vector<std::size_t> WantedFiles::PlacesOf(const std::string& path, const std::optional<FileStamp>& stamp) const {
    std::vector<std::size_t> places;
    // By text first, which finds what is gone too. A place may come twice: whoever asks sets a mark.
    Append(places, byPath_, ComparableForm(path));
    if (stamp) {
        Append(places, byFile_, std::pair(stamp->volume, stamp->index));
    } else if (!path.empty()) {
        Append(places, byPath_, ComparableForm(ResolvedPath(path)));
    }
    return places;
}

} // namespace Orvanta
