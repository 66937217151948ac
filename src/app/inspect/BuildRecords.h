#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

// What a build tool has left beside its database. Only what it writes in a form of its own is read: no build file of a
// person is interpreted.

namespace Orvanta {

/// A compiler as the build was configured with it.
struct ConfiguredCompiler {
    std::string path;    ///< absolute, as a rule
    std::string version; ///< such as "12.2.0"; empty when it is not recorded
    std::string record;  ///< the file that says so
};

/// The compilers that CMake has recorded in a build folder; none when it is no such folder.
[[nodiscard]] std::vector<ConfiguredCompiler> ConfiguredCompilersIn(const std::string& buildFolder);

/// The build files in these folders and those above them, up to the root of a checkout, that are newer than the
/// database: what people write for CMake, Meson and Automake. Beside the database itself, also what is generated, where
/// it is more than a minute newer.
[[nodiscard]] std::vector<std::string> BuildFilesNewerThan(const std::string& database,
                                                           const std::set<std::string>& sourceFolders);

/// The nearest folder that is, or is above, `folder` and is the root of a checkout.
[[nodiscard]] std::optional<std::string> CheckoutOf(std::string folder);

} // namespace Orvanta
