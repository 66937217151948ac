#pragma once

#include <string>

namespace Orvanta {

// What TemporaryFolder asks of the system.

/// The absolute path of the system's folder for temporary files.
[[nodiscard]] std::string SystemTemporaryFolder();

/// The name by which networks know this machine; empty when it has none.
[[nodiscard]] std::string HostName();

/// Makes a folder that only this user can look into; false when the name is taken.
/// \throws FileException when it can't be made
[[nodiscard]] bool MakePrivateFolder(const std::string& path);

/// What a folder looks like from outside.
enum class FolderState {
    NotOurs, ///< no folder, or another user's
    Fresh,   ///< changed within the last day
    Old,
};

/// Links are not followed: one with the right name could lead into another user's files.
[[nodiscard]] FolderState LookAtFolder(const std::string& path);

/// Removes a folder with all it holds, as far as that is possible now.
void RemoveTree(const std::string& folder) noexcept;

} // namespace Orvanta
