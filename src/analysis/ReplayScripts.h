#pragma once

#include "platform/Process.h"

#include <string>

namespace Orvanta {

/// Where a replay leaves its findings, in the folder of its bundle.
inline constexpr const char* ReplayedFindingsName = "replayed.findings";

/// What replays a bundle on either system; need nothing of a machine but its shell and a core.
struct ReplayScripts {
    std::string posix;
    std::string windows;
};

/// Run the core, which their first argument names, else ORVANTA_CORE, else the bundled one's name, and end with its
/// code. `flags` stand behind the settings file; none has a character that a shell reads.
[[nodiscard]] ReplayScripts ScriptsOfCore(const Arguments& flags);

/// For a unit that the core never saw: they show what the compiler said, and end with its code.
[[nodiscard]] ReplayScripts ScriptsWithoutText(int compilerCode);

} // namespace Orvanta
