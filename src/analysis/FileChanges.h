#pragma once

#include "platform/FileSystemClock.h"
#include "platform/OnceMap.h"

#include <string>

namespace Orvanta {

/// Tells which files have changed since an object of this class was made, by the clock of the file system that holds
/// `folder`. Looks at each file once. Any thread may ask.
class FileChanges {
public:
    /// \throws ZelmException when no file can be made in `folder`
    explicit FileChanges(const std::string& folder) : clock_(folder) {}

    /// Whether the file at `path` has changed, or may have, or is not there.
    [[nodiscard]] bool HasChanged(const std::string& path);

private:
    // The file system's own: it may be another machine's, with another time than this one's.
    FileSystemClock clock_;
    // By path: most headers are asked for by many units.
    OnceMap<bool> answers_;
};

} // namespace Orvanta
