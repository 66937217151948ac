#pragma once

#include "platform/LockFile.h"

#include <memory>
#include <string>

namespace Orvanta {

// What LockFile asks of the system.

/// Opens the lock file at `path`, making it where there is none, and locks it without waiting. `holder` keeps it open
/// when the answer is `Held`.
[[nodiscard]] LockFile::State OpenLocked(const std::string& path, std::shared_ptr<void>& holder);

/// Gives up what `holder` holds and removes its file, so that whoever waits for the lock gets it all the same.
void RemoveLocked(const std::string& path, std::shared_ptr<void>& holder) noexcept;

} // namespace Orvanta
