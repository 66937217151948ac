#pragma once

#include "buildinput/CompileCommand.h"
#include "compilers/CompilerType.h"
#include "history/UnitIdentity.h"
#include "settings/RunSettings.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What makes the results of a run, beside the compilers.
struct ResultMakers {
    std::string corePath;
    std::string coreVersion; ///< what the core says stands behind it; empty when it doesn't say
    std::string ownVersion;  ///< of this program
};

/// To be raised when the driver gives other results for the same inputs, within one version.
inline constexpr std::uint64_t ResultVersion = 2;

/// How the history of a build knows these units: by their folder and source, and by all that decides their results
/// beside the files that they are made of. That is the command line, the variables of the invocation and those in which
/// compilers of its family look for more, the settings with the file of rules, and which compiler and core they are.
///
/// The programs themselves are among a unit's files, where their content counts: a compiler that was installed again,
/// or that lies in another layer of a container, has another stamp and is the same. But one that its path now leads to
/// elsewhere is another one, though it be a copy: it may look for its parts beside itself.
[[nodiscard]] std::vector<UnitIdentity> IdentifyUnits(std::span<const CompileCommand> units,
                                                      const RunSettings& settings, const ResultMakers& makers);

/// Of the settings with the file of rules, as far as they decide the results of units.
[[nodiscard]] Fingerprint FingerprintOfSettings(const RunSettings& settings);

/// Of what decides the results of all units alike: the settings with the file of rules, the core and the program.
[[nodiscard]] Fingerprint FingerprintOfRun(const RunSettings& settings, const ResultMakers& makers);

/// The names of the variables in which compilers of a family look for more: those of the driver's own environment that
/// count for its units. Constants, in the order of their bytes.
[[nodiscard]] std::vector<std::string_view> VariablesReadBy(CompilerType type);

} // namespace Orvanta
