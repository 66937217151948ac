#include "analysis/FileChanges.h"

#include "platform/FileStamp.h"

#include <optional>

namespace Orvanta {

bool FileChanges::HasChanged(const std::string& path) {
    return answers_.Get(path, [&] {
        const std::optional<FileStamp> stamp = StampOf(path);
        // The stamp alone: there is no earlier one to compare with, only the moment since when the text is to be good.
        return !stamp || clock_.IsSinceStart(*stamp);
    });
}

} // namespace Orvanta
