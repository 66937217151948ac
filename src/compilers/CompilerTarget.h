#pragma once

#include "compilers/TargetBits.h"
#include "platform/OnceMap.h"
#include "platform/Process.h"

#include <optional>
#include <string>
#include <string_view>

// The core has to be told whether a unit is compiled for 32 or 64 bits, and no flag tells it of cl: each target has a
// compiler of its own, in a folder that is named after it. clang-cl is one program for all targets, and lies in a
// folder that is named after its host. So the path is believed where it tells, and the compiler is asked where it does
// not.

namespace Orvanta {

/// The target that a compiler's place in Visual Studio tells, such as "Hostx64\x86"; both separators count.
[[nodiscard]] std::optional<TargetBits> TargetByCompilerPath(std::string_view path);

/// The target of a triple such as "i686-pc-windows-msvc", or of its first part alone.
[[nodiscard]] std::optional<TargetBits> TargetByTriple(std::string_view triple);

/// The target that a banner or version text names: its first word that is one.
[[nodiscard]] std::optional<TargetBits> TargetByVersionText(std::string_view text);

/// Knows the targets of compilers, each learnt once per path. Any thread may use it.
class CompilerTargets {
public:
    enum class PathMeaning {
        Target, ///< the compiler's folder is named after its target
        Host,   ///< after the system that the compiler runs on: it has to be asked
    };

    explicit CompilerTargets(LauncherWords launcher) : launcher_(launcher.begin(), launcher.end()) {}

    /// The target of the compiler at `path`; of one that doesn't tell, 64 bits. May start the compiler and wait for it.
    [[nodiscard]] TargetBits TargetOf(const std::string& path, PathMeaning meaning);

private:
    Arguments launcher_;
    OnceMap<TargetBits> targets_; // by path
};

} // namespace Orvanta
