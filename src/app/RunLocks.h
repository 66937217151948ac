#pragma once

#include "platform/LockFile.h"

#include <string>

namespace Orvanta {

/// Keeps two runs from writing one report, or one folder ".Orvanta", at once. A lock lies where the thing that it
/// guards really lies, links resolved, and has its name: however a run spells the way there, it finds the same lock.
class RunLocks {
public:
    /// \throws ZelmException "Another run is writing to " and the report
    void TakeReport(const std::string& reportPath);

    /// Of standard output, which runs in one folder share.
    /// \throws ZelmException "Another run is writing to " and the folder
    void TakeOutputOf(const std::string& folder);

    /// Of the folder ".Orvanta", which need not exist.
    /// \throws ZelmException "Another run is using " and the folder
    void TakeShared(const std::string& orvantaFolder);

private:
    LockFile report_;
    LockFile shared_;
};

} // namespace Orvanta
