#pragma once

#include "buildinput/CompileCommand.h"
#include "platform/Exceptions.h"

#include <cstddef>
#include <string>
#include <vector>

// What this room is for: to learn from one file which commands a build has run. A compilation database says it entry by
// entry, a trace call by call (trace/); both end in the InvocationCollector, so that nothing behind it can tell where a
// unit came from. Databases and traces are read as streams: their length does not count, only what is kept of them.

namespace Orvanta {

/// A build input was read, but it holds no invocation of a known compiler. Only the entry catches it.
class NoCompilerInvocationsFound : public ZelmException {
public:
    /// What may help the user: a trace may show calls of a compiler whose name is not among those that are looked for.
    enum class Hint { None, NameTheCompiler };
    /// The text is the same whatever the hint is: who catches it puts the hint into words.
    explicit NoCompilerInvocationsFound(Hint hint);

    /// What to add to the message.
    [[nodiscard]] Hint HintForUser() const noexcept { return hint_; }

private:
    Hint hint_;
};

/// Why an invocation of the input gave no unit.
enum class InvocationFate {
    NotACompilation,
    UnknownCompiler,
    OtherCompiler, ///< left out by the compiler filter
    SkippedLauncher,
    CompilerUnusable,  ///< there is no such program, or it can't be started
    Unreadable,        ///< its command string, its arguments or a response file can't be read
    DeletedSinceTrace, ///< its sources are not there any more: a configure script's, say
};

/// An invocation that gave no unit.
struct SkippedInvocation {
    std::size_t invocation = 0; ///< number in the input, from 1
    InvocationFate fate = InvocationFate::NotACompilation;
    std::string what; ///< the command's own words for it: its source, output or compiler
    std::string reason;
};

/// What a build input holds: every invocation is either among the units or among the skipped ones.
struct CollectedCommands {
    std::vector<CompileCommand> units; ///< in the order of the input
    std::vector<SkippedInvocation> skipped;
    std::size_t invocations = 0;
};

class InvocationCollector;

/// Reads the build input at `path`, a compilation database (".json") or a trace, into the collector, and says so.
/// \throws ZelmException, NoCompilerInvocationsFound, and the JSON library's exceptions
void ReadBuildInput(const std::string& path, InvocationCollector& collector);

} // namespace Orvanta
