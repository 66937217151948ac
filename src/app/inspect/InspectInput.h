#pragma once

#include "app/AnalyzeOptions.h"
#include "buildinput/BuildInput.h"
#include "buildinput/InvocationTrail.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "settings/RunSettings.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// What `explain`, `doctor` and `verify` are for: to look at a build as `analyze` does, and to tell instead of to run.
// They take the options of `analyze` that say what is read and how it is understood, and ask the very code that a run
// asks (the collector, the planner, the history). Nothing is decided here a second time: where a reason was not kept,
// the code that decides hands it out.

namespace Orvanta {

/// The options of `analyze` that decide how a build is understood.
inline constexpr std::string_view InputOptionNames[] = {
    "output-file",  "cfg",          "file",        "compiler",     "compiler-path", "env",
    "exclude-path", "preprocessor", "platform",    "orvanta-path", "ignore-ccache", "analyze-specified-system-paths",
    "include-dir",  "cl-params",    "source-file", "analyze-only", "trace-dir",
};

/// What these commands have read before they look at anything.
struct InspectInput {
    /// \throws ZelmException for options that say nothing, or exclude each other
    explicit InspectInput(AnalyzeOptions given);

    AnalyzeOptions options;
    std::vector<std::string> keyWarnings; ///< about keys of the settings file; filled by the constructor
    RunSettings settings;
    CompilerRegistry registry;
    Log log;
};

/// The invocations of a build in which one file may stand, with how each was read.
struct FileInvocations {
    CollectedCommands commands;
    std::vector<InvocationTrail> trails;
    std::map<std::size_t, std::size_t> lines; ///< of a database's entries, by number; empty for a trace
};

/// Reads those invocations whose words may name a file of this name, or may get it from a response file. Of a database,
/// no other entry is parsed.
/// \throws what ReadBuildInput throws
[[nodiscard]] FileInvocations ReadInvocationsOf(std::string_view fileName, InspectInput& input);

/// Writes a document for another program: to standard output, indented, bytes that are no UTF-8 replaced.
void WriteDocument(const nlohmann::ordered_json& document);

} // namespace Orvanta
