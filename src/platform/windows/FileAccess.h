#pragma once

#include "platform/windows/Handle.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvanta {

/// The sharing of a file that others may read, write, rename and remove meanwhile.
inline constexpr unsigned long AnySharing = 7;

/// Whether a call failed because its path names nothing.
[[nodiscard]] bool IsAbsence(unsigned long error) noexcept;

/// Opens a file or a folder for questions about it, following links; not open when it fails.
[[nodiscard]] Handle OpenForLooking(const std::string& path);

/// Opens a file for writing, making it where there is none, with any sharing; not open when it fails.
[[nodiscard]] Handle OpenForWriting(const std::string& path);

/// Whether `file` is one on a disk: neither a console nor a pipe nor another device.
[[nodiscard]] bool IsOnDisk(const Handle& file);

/// Writes all of `bytes` where the handle stands; false, with the system's error set, when it can't.
[[nodiscard]] bool WriteAll(const Handle& file, std::string_view bytes);

/// Renames a file over another, or to a new name. Another program that looks at one of the two for a moment, as a
/// scanner for viruses does, is waited for.
/// \throws SystemFault
void RenameOver(const std::string& from, const std::string& to);

/// \throws FileException
[[noreturn]] void FailFile(const std::string& path, unsigned long error);

} // namespace Orvanta
