#pragma once

#include "compilers/CompilerInfo.h"
#include "compilers/CompilerType.h"
#include "platform/Environment.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"
#include "settings/RunSettings.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Which family a compiler is of. Its name decides where names are told apart for certain; every other program is asked
// with "--version", because a name such as "cc" says nothing and vendors rename their compilers. Asking is the
// costliest part of reading a build: it is done once for each path, and what a word of a command leads to on the disk
// is looked up once for each word, folder and search path. The folder and the environment of one entry can be what
// keeps a program from starting.

namespace Orvanta {

/// How identification of one invocation ended.
enum class IdentificationVerdict {
    Known,
    Launcher, ///< a ccache command, and ccache commands are not to be unwrapped
    Missing,  ///< there is no such program
    Unusable, ///< it can't be started
    Unknown,  ///< it did not answer
};

/// Decides which family a compiler belongs to, by its name or by what it prints for "--version". A path is looked up,
/// and a compiler asked, once. One thread at a time.
class CompilerIdentifier {
public:
    enum class Query {
        IfPresent, ///< ask only programs that are there
        Always,    ///< ask even when nothing is seen at the path
    };

    struct Result {
        IdentificationVerdict verdict = IdentificationVerdict::Unknown;
        std::shared_ptr<const CompilerInfo> compiler; ///< null for Launcher; else at least the path is set
        bool wrapped = false;                         ///< a leading "ccache" was removed from the arguments
    };

    /// All must outlive the identifier.
    CompilerIdentifier(const RunSettings& settings, Log& log, const StopFlag& stop);

    /// `arguments[0]` is the compiler; a leading "ccache" is removed from `arguments` where the settings say so.
    /// `workingDirectory` is absolute. `environment` holds the invocation's own variables, which go over the driver's.
    Result IdentifyCompiler(std::vector<std::string>& arguments, const std::string& workingDirectory,
                            const Environment& environment, Query query = Query::IfPresent);

private:
    // What the first word of a command leads to.
    struct LookUp {
        std::shared_ptr<const CompilerInfo> compiler; // until it is judged: of the type Unknown, with the path set
        bool exists = false;
        bool isJudged = false;
    };

    struct TextHash {
        using is_transparent = void;

        std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
    };

    // Where the word leads, from memory if it was met in the same circumstances. The reference stays valid: the map
    // does not move what it holds.
    LookUp& LookUpOf(const std::string& program, const std::string& workingDirectory, const Environment& environment);
    // Makes the record for a word that has been looked up; nothing is judged yet.
    LookUp& Remember(std::string key, std::string path, bool exists);
    // The value of PATH that counts for an invocation: the run's changes, then its own variables, then the driver's.
    // Empty when none of them has it.
    const std::string& SearchPath(const Environment& environment) const;
    // The family of the program at `path`, by name or by asking; not null. May start it and wait for it.
    std::shared_ptr<const CompilerInfo> Judge(const std::string& path, const std::string& workingDirectory,
                                              const Environment& environment);
    // Fills the version text and the type, or the fault. Blocks until the program has ended, or for its time limit.
    bool AskForVersion(CompilerInfo& compiler, const std::string& workingDirectory, const Environment& environment);

    const RunSettings& settings_;
    Log& log_;
    const StopFlag& stop_;
    std::unordered_map<std::string, LookUp, TextHash, std::equal_to<>> lookUps_; // by what the answer depends on
    std::map<std::string, std::shared_ptr<const CompilerInfo>> judged_;          // by path
    std::vector<std::string> searchPaths_;                                       // each value of PATH met so far
    std::string key_;                                                            // of the look-up under way
};

/// A family, and the rule that has told it, as a user reads it.
struct FamilyRuling {
    CompilerType type = CompilerType::Unknown;
    std::string_view rule; ///< a constant of the program
};

/// The family by the compiler's file name, as far as the name tells it.
[[nodiscard]] std::optional<FamilyRuling> FamilyByName(std::string_view path);

/// The family by the text that "--version" printed, standard output first.
[[nodiscard]] FamilyRuling FamilyByVersionText(std::string_view text);

} // namespace Orvanta
