#pragma once

#include "platform/LockFile.h"
#include "platform/StopFlag.h"

#include <string>

namespace Orvanta {

/// Keeps other runs from changing a base between this one's reading and writing of it, also one that they know by
/// another of its names (a hard link). Leaves no file behind.
class BaseLock {
public:
    /// Waits for a run that holds the base, for two minutes at most. Where no lock can be made, as in a folder that
    /// can't be written to, there is none; a file system without locks is told of.
    /// \throws ZelmException when the base is held for longer
    /// \throws OrvlogConverter::StoppedException
    BaseLock(const std::string& basePath, const StopFlag& stop);
    ~BaseLock();
    BaseLock(const BaseLock&) = delete;
    BaseLock& operator=(const BaseLock&) = delete;

private:
    LockFile lock_;
    LockFile sharedLock_; // of a base with several names
};

} // namespace Orvanta
