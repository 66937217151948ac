#pragma once

#include "buildinput/BuildInput.h"
#include "compilers/CompilerIdentifier.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "settings/RunSettings.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace Orvanta {

/// Takes the invocations of a build one by one, identifies their compilers and keeps the units that they compile.
/// One thread at a time.
class InvocationCollector {
public:
    /// All must outlive the collector. `baseDirectory` is where relative working directories are taken from.
    InvocationCollector(const RunSettings& settings, const CompilerRegistry& registry, CompilerIdentifier& identifier,
                        Log& log);

    /// Relative working directories are taken from here on from `directory`; until set, from the current directory.
    void SetBaseDirectory(std::string directory);

    /// Takes one invocation: compiler first; no arguments when its command string can't be split.
    /// \throws nothing for what is wrong with the invocation itself: that is its fate
    void AddInvocation(std::vector<std::string> arguments, const std::string& workingDirectory,
                       const Environment& environment);

    /// Hands over what was collected.
    [[nodiscard]] CollectedCommands Take();

    [[nodiscard]] Log& MessageLog() noexcept { return log_; }

private:
    // see the source
    const RunSettings& settings_;
    const CompilerRegistry& registry_;
    CompilerIdentifier& identifier_;
    Log& log_;
    CollectedCommands collected_;
};

} // namespace Orvanta
