#pragma once

#include "app/AnalyzeOptions.h"
#include "platform/Process.h"

namespace Orvanta {

/// The words of `--launcher`, split as a command string of this system, its program by its absolute path: children have
/// folders and search paths of their own. Empty without the option.
/// \throws ZelmException for words that can't be split, and for a program that can't be started
[[nodiscard]] Arguments LauncherOf(const AnalyzeOptions& options);

/// Checks what the options say of a launcher, before any work.
/// \throws ZelmException for the first fault found
void ValidateLauncherOptions(const AnalyzeOptions& options);

} // namespace Orvanta
