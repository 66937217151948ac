#pragma once

#include "platform/LockFile.h"

#include <string>

namespace Orvanta {

/// A folder of this run's own below the system's folder for temporary files, removed with all it holds by the
/// destructor. Making one also removes what killed runs have left there; folders of runs still alive are not touched.
class TemporaryFolder {
public:
    /// \throws ZelmException when no folder can be made
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, without a separator at its end.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
    LockFile lock_;
};

} // namespace Orvanta
