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

    [[nodiscard]] const RunSettings& Settings() const noexcept { return settings_; }

    /// Hands over what was collected.
    [[nodiscard]] CollectedCommands Take();

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

    struct ContentLess {
        bool operator()(const std::shared_ptr<const Environment>& left,
                        const std::shared_ptr<const Environment>& right) const {
            return *left < *right;
        }
    };

    [[nodiscard]] std::optional<Refusal> Refuse(const std::vector<std::string>& arguments,
                                                const std::string& workingDirectory,
                                                const Environment& environment) const;
    [[nodiscard]] std::optional<Refusal> RefuseCompiler(const CompilerIdentifier::Result& identified,
                                                        const std::string& program);
    [[nodiscard]] std::optional<Refusal> Collect(std::vector<std::string>& arguments,
                                                 const std::string& workingDirectory, const Environment& environment,
                                                 EnvironmentScope scope);
    [[nodiscard]] std::optional<Refusal> CollectShellLine(std::vector<std::string>& arguments,
                                                          const std::string& workingDirectory,
                                                          const Environment& environment, EnvironmentScope scope);
    [[nodiscard]] std::optional<Refusal> CollectLaunched(std::vector<std::string>& arguments,
                                                         const std::string& workingDirectory,
                                                         const Environment& environment, EnvironmentScope scope);
    [[nodiscard]] bool IsCompiler(std::string_view program) const;
    [[nodiscard]] bool LooksLikeLauncher(const std::vector<std::string>& arguments) const;
    [[nodiscard]] std::vector<std::size_t> ValuesOfUnknown(const InvocationOutline& outline,
                                                           const std::vector<std::string>& arguments,
                                                           const std::string& directory) const;
    void Skip(const std::vector<std::string>& arguments, Refusal refusal);
    [[nodiscard]] bool PassesFilter(const std::vector<std::string>& arguments) const;
    [[nodiscard]] ResponseFileReading ReadingFor(const CompilerInfo& compiler);
    [[nodiscard]] std::shared_ptr<const CompilerInfo> OfDriverMode(const std::shared_ptr<const CompilerInfo>& compiler,
                                                                   const std::vector<std::string>& arguments);
    [[nodiscard]] const Compiler& ModelOf(CompilerType type);
    [[nodiscard]] const Directories& Share(const std::string& workingDirectory);
    [[nodiscard]] const std::shared_ptr<const Environment>& Share(const Environment& environment);

    const RunSettings& settings_;
    const CompilerRegistry& registry_;
    CompilerIdentifier& identifier_;
    Log& log_;
    std::string baseDirectory_; // empty: not set
    std::map<CompilerType, std::shared_ptr<const Compiler>> models_;
    std::map<std::string, std::shared_ptr<const CompilerInfo>> inClMode_; // by path
    std::set<std::string> toldResponseFiles_;
    std::unordered_map<std::string, Directories> directories_; // by the directory as written
    std::set<std::shared_ptr<const Environment>, ContentLess> environments_;
    const Directories* lastDirectories_ = nullptr; // of the invocation before: mostly the same again
    std::shared_ptr<const Environment> lastEnvironment_;
    CollectedCommands collected_;
    bool leavesOutDeleted_ = false;
};

} // namespace Orvanta
