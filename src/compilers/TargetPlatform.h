#pragma once

#include "platform/OnceMap.h"
#include "platform/Process.h"

#include <optional>
#include <string>
#include <string_view>

// A cross compiler of GCC's kind makes programs of one target without any flag that says so. Its name mostly has the
// triple in front; then it is worth asking, and a unit's platform follows from the answer. One with a plain name is
// taken for a compiler of this machine: asking each would cost a start for nothing.

namespace Orvanta {

/// What is known of a target by its triple.
struct TargetPlatform {
    std::string triple;
    std::string_view word;            ///< for the core, as "platform"
    bool isPlainCharUnsigned = false; ///< of its compilers, when no flag says otherwise
};

/// The platform of a triple such as "arm-none-eabi"; absent for one that the core has no word for.
[[nodiscard]] std::optional<TargetPlatform> PlatformOfTriple(std::string_view triple);

/// Whether a compiler's file name says that it compiles for another machine: "arm-none-eabi-gcc".
[[nodiscard]] bool IsNamedAfterForeignTarget(std::string_view path);

/// Knows the targets of cross compilers, each asked once per path ("-dumpmachine"). Any thread may use it.
class CompilerPlatforms {
public:
    explicit CompilerPlatforms(LauncherWords launcher) : launcher_(launcher.begin(), launcher.end()) {}

    /// Absent for a compiler of this machine, and for one that doesn't tell. May start it and wait for it.
    [[nodiscard]] std::optional<TargetPlatform> Get(const std::string& path);

private:
    Arguments launcher_;
    OnceMap<std::optional<TargetPlatform>> platforms_; // by path
};

} // namespace Orvanta
