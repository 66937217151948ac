#pragma once

#include "platform/LockFile.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"

#include <string>
#include <vector>

namespace Orvanta {

/// Keeps two runs from writing one report, or using one folder ".Orvanta", at once. The lock files lie in ".Orvanta",
/// which is made for them where there is none and is hidden from version control. Leaves no lock file behind, unless
/// the run is killed, and no folder that holds nothing else.
class RunLocks {
public:
    RunLocks() = default;
    ~RunLocks();
    RunLocks(RunLocks&&) = default;
    RunLocks& operator=(RunLocks&&) = delete;

    /// Waits a moment for another run to end, and no longer than `stop` lets it. Where the file system has no locks,
    /// the log says so. \throws ZelmException "Another run is writing to " and the report
    void TakeReport(const std::string& reportPath, const StopFlag& stop, Log& log);

    /// Of the folder ".Orvanta".
    /// \throws ZelmException "Another run is using " and the folder
    void TakeShared(const std::string& orvantaFolder, const StopFlag& stop, Log& log);

    /// The folder ".Orvanta" of the locks, in which this run may keep things for later ones; empty when there is none.
    [[nodiscard]] std::string Folder() const { return folders_.empty() ? std::string() : folders_.back(); }

private:
    std::vector<std::string> folders_; // that hold the lock files
    LockFile report_;
    LockFile shared_;
};

} // namespace Orvanta
