#pragma once

#include "buildinput/BuildInput.h"
#include "buildinput/ResponseFile.h"
#include "compilers/CompilerIdentifier.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "settings/RunSettings.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

// Each invocation of the input, whatever reader brought it, goes through these steps: it is refused where it can't be
// one (no words, zero bytes, another compiler than asked for), its compiler is identified, variables and files with
// further arguments are put in place, its outline is taken, and each of its sources becomes a unit. It ends as units or
// as one SkippedInvocation with a reason: nothing is dropped in silence, and what is wrong with one is never an error
// of the run. A build has a hundred thousand of them, so that folders, environments and compilers are held once, and a
// unit is little more than its packed words.

namespace Orvanta {

struct InvocationOutline;

/// Takes the invocations of a build one by one, identifies their compilers and keeps the units that they compile.
/// One thread at a time.
class InvocationCollector {
public:
    /// All must outlive the collector.
    InvocationCollector(const RunSettings& settings, const CompilerRegistry& registry, CompilerIdentifier& identifier,
                        Log& log);

    /// Relative working directories are taken from here on from `directory`; until set, from the current directory.
    void SetBaseDirectory(std::string directory);

    /// Takes one invocation: compiler first; no arguments when its command string can't be split.
    /// \throws nothing for what is wrong with the invocation itself: that is its fate
    void AddInvocation(std::vector<std::string> arguments, const std::string& workingDirectory,
                       const Environment& environment);

    /// The same for a caller that fills one vector again and again; what it holds afterwards is unspecified.
    void AddInvocationFrom(std::vector<std::string>& arguments, const std::string& workingDirectory,
                           const Environment& environment, EnvironmentScope scope);

    /// Takes an invocation of which the input does not tell enough.
    void AddUnreadable(const std::vector<std::string>& arguments, std::string reason);

    /// From now on an invocation none of whose sources exists is left out: a build that ended long ago may have removed
    /// them.
    void LeaveOutDeletedSources() noexcept { leavesOutDeleted_ = true; }

    /// The number of invocations taken so far.
    [[nodiscard]] std::size_t Invocations() const noexcept { return collected_.invocations; }

    /// The settings of the run, for readers that need some themselves.
    [[nodiscard]] const RunSettings& Settings() const noexcept { return settings_; }

    /// Hands over what was collected.
    [[nodiscard]] CollectedCommands Take();

    /// Where readers say what is wrong with the input as a whole; what is wrong with one invocation is its fate.
    [[nodiscard]] Log& MessageLog() noexcept { return log_; }

private:
    /// A working directory as written, and where it is.
    struct Directories {
        std::shared_ptr<const std::string> written;
        std::shared_ptr<const std::string> absolute;
    };

    /// Why an invocation gives no unit.
    struct Refusal {
        InvocationFate fate;
        std::string reason;
        std::string what = {}; // empty: what the command's words say
    };

    /// Tells environments apart by what they hold, not by where they lie.
    struct ContentLess {
        bool operator()(const std::shared_ptr<const Environment>& left,
                        const std::shared_ptr<const Environment>& right) const {
            return *left < *right;
        }
    };

    /// What can be refused without a look at the disk; no value when nothing is wrong so far. `arguments` is not empty.
    [[nodiscard]] std::optional<Refusal> Refuse(const std::vector<std::string>& arguments,
                                                const std::string& workingDirectory,
                                                const Environment& environment) const;
    /// Turns the verdict on the compiler into a fate; no value for a compiler of a known family. `program` is the
    /// compiler as the command names it.
    [[nodiscard]] std::optional<Refusal> RefuseCompiler(const CompilerIdentifier::Result& identified,
                                                        const std::string& program);
    /// Takes a command with its compiler in front, and appends a unit for each source; no value when it gave any.
    /// Expands `arguments` in place, as far as it comes.
    [[nodiscard]] std::optional<Refusal> Collect(std::vector<std::string>& arguments,
                                                 const std::string& workingDirectory, const Environment& environment,
                                                 EnvironmentScope scope);
    /// Takes each command of the line that names a compiler. No value when one gave units, else the last one's refusal.
    [[nodiscard]] std::optional<Refusal> CollectShellLine(const std::vector<std::string>& arguments,
                                                          const std::string& workingDirectory,
                                                          const Environment& environment, EnvironmentScope scope);
    /// Takes a command behind launchers, or none. What these set for it goes over the invocation's own.
    [[nodiscard]] std::optional<Refusal> CollectLaunched(std::vector<std::string>& arguments,
                                                         const std::string& workingDirectory,
                                                         const Environment& environment, EnvironmentScope scope);
    /// Whether the name is a compiler's: one that compilers have, or one that the user has named.
    [[nodiscard]] bool IsCompiler(std::string_view program) const;
    /// Such a command is refused with advice instead of being asked for its version: the program may do anything.
    [[nodiscard]] bool LooksLikeLauncher(const std::vector<std::string>& arguments) const;
    /// Places in `arguments`, in rising order. Looks at the disk, for the words in question only.
    [[nodiscard]] std::vector<std::size_t> ValuesOfUnknown(const InvocationOutline& outline,
                                                           const std::vector<std::string>& arguments,
                                                           const std::string& directory) const;
    /// Adds what variables and response files say to the arguments, in the order in which the compiler reads them.
    void CompleteArguments(std::vector<std::string>& arguments, const CompilerInfo& compiler,
                           const std::string& directory, const Environment& environment, EnvironmentScope scope);
    /// What the command does, the values of unknown flags told from its inputs.
    [[nodiscard]] InvocationOutline Outline(const Compiler& model, const std::vector<std::string>& arguments,
                                            const std::string& directory) const;
    /// Why a command that could be read gives no unit; no value when it gives some.
    [[nodiscard]] std::optional<Refusal> RefuseOutline(const InvocationOutline& outline,
                                                       const std::vector<std::string>& arguments,
                                                       const std::string& directory) const;
    /// Records the present invocation as one that gave no unit.
    void Skip(const std::vector<std::string>& arguments, Refusal refusal);
    /// Whether the compiler filter lets the command through; an empty filter lets all. Behind "ccache" the compiler
    /// counts.
    [[nodiscard]] bool PassesFilter(const std::vector<std::string>& arguments) const;
    /// The result refers to the collector: differences are told in its log, once for each file.
    [[nodiscard]] ResponseFileReading ReadingFor(const CompilerInfo& compiler);
    /// `compiler` itself, or the record of the same program in the mode that the command asks for, one for each path.
    [[nodiscard]] std::shared_ptr<const CompilerInfo> OfDriverMode(const std::shared_ptr<const CompilerInfo>& compiler,
                                                                   const std::vector<std::string>& arguments);
    /// Held from the first use on: the registry hands out shares, which are not free. The type must be that of a
    /// family.
    [[nodiscard]] const Compiler& ModelOf(CompilerType type);
    /// The one record of the directory. Valid until the base directory is set.
    [[nodiscard]] const Directories& Share(const std::string& workingDirectory);
    /// The one record of an environment with this content. Valid until the next call: take a share of it.
    [[nodiscard]] const std::shared_ptr<const Environment>& Share(const Environment& environment);

    const RunSettings& settings_;
    const CompilerRegistry& registry_;
    CompilerIdentifier& identifier_;
    Log& log_;
    std::string baseDirectory_; // empty: not set
    std::map<CompilerType, std::shared_ptr<const Compiler>> models_;
    std::map<std::string, std::shared_ptr<const CompilerInfo>> inClMode_; // by path
    std::set<std::string> toldResponseFiles_;
    std::string plainCompiler_; // the last first word of a command that is a compiler and no launcher: mostly the same
    std::unordered_map<std::string, Directories> directories_; // by the directory as written
    std::set<std::shared_ptr<const Environment>, ContentLess> environments_;
    const Directories* lastDirectories_ = nullptr; // of the invocation before: mostly the same again
    std::shared_ptr<const Environment> lastEnvironment_;
    CollectedCommands collected_;
    bool leavesOutDeleted_ = false;
};

} // namespace Orvanta
