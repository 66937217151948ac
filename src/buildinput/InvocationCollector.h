#pragma once

#include "buildinput/BuildInput.h"
#include "buildinput/InvocationReader.h"
#include "buildinput/InvocationTrail.h"
#include "buildinput/SharedRecords.h"
#include "compilers/CompilerIdentifier.h"
#include "platform/Log.h"
#include "settings/RunSettings.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

// Each invocation of the input, whatever reader brought it, goes through these steps: it is refused where it can't be
// one (no words, zero bytes, another compiler than asked for), its compiler is identified, variables and files with
// further arguments are put in place, its outline is taken, and each of its sources becomes a unit. It ends as units or
// as one SkippedInvocation with a reason: nothing is dropped in silence, and what is wrong with one is never an error
// of the run. A build has a hundred thousand of them, so that folders, environments and compilers are held once, and a
// unit is little more than its packed words.

namespace Orvanta {

class CompilerRegistry;

/// Why an invocation gives no unit.
struct InvocationRefusal {
    InvocationFate fate;
    std::string reason;
    std::string what = {}; // empty: what the command's words say
};

/// Takes the invocations of a build one by one, identifies their compilers and keeps the units that they compile.
/// One thread at a time.
class InvocationCollector {
public:
    /// All must outlive the collector.
    InvocationCollector(const RunSettings& settings, const CompilerRegistry& registry, CompilerIdentifier& identifier,
                        Log& log);

    /// Relative working directories are taken from here on from `directory`; until set, from the current directory.
    void SetBaseDirectory(std::string directory) { records_.SetBaseDirectory(std::move(directory)); }

    /// From now on only what the sieve wants is taken, and it gets the trail of each. It outlives the collector.
    void TakeBy(InvocationSieve& sieve);

    /// The next invocation is this one of the input, counted from 1: those between are passed over.
    void ContinueAt(std::size_t invocation) noexcept { collected_.invocations = invocation - 1; }

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
    /// Takes a command with its compiler in front, and appends a unit for each source; no value when it gave any.
    /// Expands `arguments` in place, as far as it comes.
    [[nodiscard]] std::optional<InvocationRefusal> Collect(std::vector<std::string>& arguments,
                                                           const std::string& workingDirectory,
                                                           const Environment& environment, EnvironmentScope scope);
    /// Takes each command of the line that names a compiler. No value when one gave units, else the last one's refusal.
    [[nodiscard]] std::optional<InvocationRefusal> CollectShellLine(const std::vector<std::string>& arguments,
                                                                    const std::string& workingDirectory,
                                                                    const Environment& environment,
                                                                    EnvironmentScope scope);
    /// Takes a command behind launchers, or none. What these set for it goes over the invocation's own.
    [[nodiscard]] std::optional<InvocationRefusal> CollectLaunched(std::vector<std::string>& arguments,
                                                                   const std::string& workingDirectory,
                                                                   const Environment& environment,
                                                                   EnvironmentScope scope);
    /// Why a command that could be read gives no unit; no value when it gives some.
    [[nodiscard]] std::optional<InvocationRefusal> RefuseOutline(const InvocationOutline& outline,
                                                                 const std::vector<std::string>& arguments,
                                                                 const std::string& directory) const;
    /// Whether the sieve, where there is one, wants the invocation; begins its trail.
    [[nodiscard]] bool IsWanted(const std::vector<std::string>& arguments, const std::string& workingDirectory);
    /// Notes in the trail which words were taken off in front of the compiler; `before` had them all.
    void NoteLaunchers(std::vector<std::string> before, const std::vector<std::string>& arguments);
    /// Records the present invocation as one that gave no unit.
    void Skip(const std::vector<std::string>& arguments, InvocationRefusal refusal);

    const RunSettings& settings_;
    CompilerIdentifier& identifier_;
    Log& log_;
    SharedRecords records_;
    InvocationReader reader_;
    std::string plainCompiler_; // the last first word of a command that is a compiler and no launcher: mostly the same
    CollectedCommands collected_;
    InvocationSieve* sieve_ = nullptr; // null: all are taken, and leave no trail
    bool leavesOutDeleted_ = false;
};

} // namespace Orvanta
