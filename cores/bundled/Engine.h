#pragma once

#include "bundled/Finding.h"
#include "bundled/SystemTextCutter.h"
#include "bundled/UnitSettings.h"
#include "platform/Process.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A unit's texts, which engines read.
struct UnitText {
    std::string preprocessed;     ///< as the compiler made it
    CutText cut;                  ///< without the text of system headers
    std::string currentDirectory; ///< from which relative names in the text are taken
};

/// What an engine says of a unit.
struct EngineResult {
    std::vector<Finding> findings;
    std::string otherText;   ///< what it wrote besides, such as complaints about its own set-up
    std::string notLookedAt; ///< why it could not read the unit, or not whole; empty when it has looked at it
};

/// A program that looks for faults in a unit. What it can't read is no failure of its: another one may.
class Engine {
public:
    virtual ~Engine() = default;

    /// Which one it is, for settings.
    [[nodiscard]] virtual EngineKind Kind() const = 0;

    /// How users call it.
    [[nodiscard]] virtual std::string_view Name() const = 0;

    /// Its version and which file it is, in a line.
    /// \throws ZelmException when it can't be started or fails
    [[nodiscard]] virtual std::string Version(const std::string& workingDirectory) const = 0;

    /// Looks at the unit. Files that it needs stand beside the preprocessed text for as long as that takes.
    /// \throws ZelmException when it can't be started or fails for a reason that is not the unit's
    [[nodiscard]] virtual EngineResult Analyze(const UnitSettings& unit, const UnitText& text) const = 0;

    /// All of the command that its findings depend on, apart from the text.
    [[nodiscard]] virtual Arguments CommandFor(const UnitSettings& unit) const = 0;
};

/// The engines that are to look at a unit: those that its settings name, or those that are installed.
/// \throws ZelmException when one that is named is missing, or all are
[[nodiscard]] std::vector<std::unique_ptr<Engine>> EnginesFor(const UnitSettings& unit);

/// What stands behind this core: in the first line, the engines that are installed, with their versions and files; in
/// lines below it, what a user is to be told before the first unit.
/// \throws ZelmException when none is installed
[[nodiscard]] std::string EngineVersions(const std::string& workingDirectory);

} // namespace Orvanta
