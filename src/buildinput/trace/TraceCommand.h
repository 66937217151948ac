#pragma once

#include "buildinput/trace/TraceText.h"
#include "settings/RunSettings.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// A database lists compilers; a trace shows whatever the build has run. So only programs count here that the settings
// name as compilers, or that start such a one; the collector then asks what they are.

namespace Orvanta {

/// What a traced process has executed, as far as the trace shows it.
struct ExecutedProgram {
    std::string path;
    TraceArray arguments;   ///< the program's own name first
    TraceArray environment; ///< "NAME=VALUE" texts; not whole when the trace shows only their number
};

/// A compiler's command that a traced process has executed.
struct TracedCommand {
    std::vector<std::string> arguments; ///< the compiler, or ccache, by its path first
    bool isCut = false;                 ///< the trace shows some argument only in part, or not all of them
    std::string fault;                  ///< why it can't be used; empty: it can, unless it is cut
    bool isTransparent = false;         ///< a launcher that is not looked into: what it starts counts in its place
};

/// Tells which executed programs are compilers: by their file name, run by the dynamic loader or by a launcher too.
class TracedCommandFinder {
public:
    /// `settings` must outlive the finder.
    explicit TracedCommandFinder(const RunSettings& settings) : settings_(settings) {}

    /// Whether a program with this path may be a compiler or start one in its own process; spares the reading of
    /// the arguments of all others.
    [[nodiscard]] bool MayCompile(const std::string& path);

    /// The compiler's command; no value when the program is none.
    [[nodiscard]] std::optional<TracedCommand> Find(const ExecutedProgram& program) const;

    /// Whether a program with this path counts as a compiler.
    [[nodiscard]] bool IsCompiler(std::string_view path) const;

private:
    /// Whether the program takes a compiler's command and starts it, perhaps where no trace sees it.
    [[nodiscard]] bool IsLauncher(std::string_view path) const;
    /// The compiler's command within the words, which are not empty; no value when there is none. "ccache" stays in
    /// front.
    [[nodiscard]] std::optional<TracedCommand> Unwrap(std::vector<std::string> words) const;

    const RunSettings& settings_;
    std::unordered_map<std::string, bool>
        answers_; // of MayCompile: a build executes the same few programs over and over
};

} // namespace Orvanta
