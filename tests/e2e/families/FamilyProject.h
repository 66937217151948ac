#pragma once

#include "e2e/families/Family.h"
#include "e2e/support/Sandbox.h"

#include <string>
#include <vector>

namespace Orvanta {

/// A row with its places filled in for a sandbox.
struct FamilyUnit {
    const Family* family = nullptr;
    const UnitRow* row = nullptr;
    std::string directory; ///< in which the command runs
    std::string source;    ///< as the command writes it
    Arguments command;     ///< as the build writes it, the compiler's path first
    Arguments kept;        ///< what must be left of it for preprocessing, without the compiler

    /// The row's text with its marks filled in.
    [[nodiscard]] std::string Filled(std::string_view text) const;
};

/// Every row of every family.
[[nodiscard]] const std::vector<Family>& Families();

/// Writes a source, the option file and the compiler of every row into the sandbox. The families must outlive the
/// units.
[[nodiscard]] std::vector<FamilyUnit> WriteFamilyProject(const Sandbox& sandbox);

/// Checks the core's call for each unit, and what its compiler has understood, against its row.
void ExpectFamilyUnits(const Sandbox& sandbox, const std::vector<FamilyUnit>& units, const RunResult& result);

} // namespace Orvanta
