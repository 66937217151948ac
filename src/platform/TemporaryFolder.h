#pragma once

#include "platform/LockFile.h"

#include <string>

namespace Orvanta {

/// A folder of this run's own below the system's folder for temporary files, removed with all it holds by the
/// destructor. Making one also removes what killed runs have left there; folders of runs still alive are not touched.
///
/// In a folder that several machines share, only what runs of this machine have left is removed: a lock that another
/// machine holds need not be seen here. Where the file system has no locks, nothing is.
class TemporaryFolder {
public:
    /// \throws ZelmException when no folder can be made
    TemporaryFolder();
    /// The same below `shared`, which exists. \throws ZelmException when no folder can be made
    explicit TemporaryFolder(const std::string& shared);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, without a separator at its end.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    // `prefix` is what the names of folders that a killed run may have left begin with.
    TemporaryFolder(const std::string& parent, const std::string& prefix);

    std::string path_;
    LockFile lock_;
};

} // namespace Orvanta
