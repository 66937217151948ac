#pragma once

#include "compilers/CompilerInfo.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Log.h"
#include "platform/OnceMap.h"
#include "platform/Paths.h"
#include "platform/Process.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Knows the environment in which the compilers of a Visual Studio find their headers: the one that its set-up script
/// makes. The script is run once for each compiler and target. Any thread may use it.
class VisualStudioEnvironment {
public:
    /// What it asks of the system.
    struct Host {
        PathRules rules = HostPathRules();
        std::function<bool(const std::string& path)> exists = [](const std::string& path) {
            return LookAt(path).IsThere();
        };
        std::function<std::string(const std::string& commandLine)> run = RunAndRead;
    };

    /// `log` gets a line for each compiler whose script is missing or fails, and must outlive this.
    explicit VisualStudioEnvironment(Log& log) : VisualStudioEnvironment(log, Host()) {}

    VisualStudioEnvironment(Log& log, Host host);

    /// The whole environment for a compiler of the MSVC family that makes programs for `platformWord` ("x64" or
    /// "Win32"); null where there is no script, or it fails: then the environment stays as it is. Blocks while the
    /// script runs.
    [[nodiscard]] std::shared_ptr<const Environment> VariablesFor(const CompilerInfo& compiler,
                                                                  const std::string& platformWord);

private:
    [[nodiscard]] std::shared_ptr<const Environment> Find(const CompilerInfo& compiler,
                                                          const std::string& platformWord);
    void Tell(const CompilerInfo& compiler, const std::string& text);

    Log& log_;
    Host host_;
    OnceMap<std::shared_ptr<const Environment>> environments_; // by compiler and target
    std::mutex mutex_;
    std::set<std::string> told_; // guarded by mutex_; paths of compilers
};

/// Where the set-up script of the Visual Studio that holds the compiler may stand, in its old layout and in its new
/// one; empty when the compiler lies in none.
[[nodiscard]] std::vector<std::string> SetUpScriptPlaces(std::string_view compilerPath, PathRules rules);

/// The command that runs the script and prints, behind a line of its own, the environment that it has made.
[[nodiscard]] std::string SetUpCommand(const std::string& script, std::string_view platformWord);

/// The variables that such a command has printed; absent when it didn't come that far.
[[nodiscard]] std::optional<Environment> PrintedVariables(std::string_view output);

} // namespace Orvanta
