#pragma once

#include "platform/OnceMap.h"

#include <cstdint>
#include <string>

namespace Orvanta {

/// Tells which files have changed since an object of this class was made, by the clock of the file system that holds
/// `folder`. Looks at each file once. Any thread may ask.
class FileChanges {
public:
    /// \throws ZelmException when no file can be made in `folder`
    explicit FileChanges(const std::string& folder);

    /// Whether the file at `path` has changed, or may have, or is not there.
    [[nodiscard]] bool HasChanged(const std::string& path);

private:
    std::int64_t begin_; // in the units of FileStamp
    OnceMap<bool> answers_;
};

} // namespace Orvanta
