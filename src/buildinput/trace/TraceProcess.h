#pragma once

#include "buildinput/trace/TraceDirectory.h"
#include "buildinput/trace/TraceLine.h"
#include "platform/Environment.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A process is known while it lives. What others need of it afterwards are its origin, on which the directories of its
// children hang, and its invocation, within which they run: both live as long as somebody refers to them.

namespace Orvanta {

struct TracedInvocation;

/// What a process took over from the one that started it. Its first calls often stand in the trace before the return
/// of the call that started it, so that it is not known yet whose child it is.
struct ProcessOrigin {
    enum class State : std::uint8_t {
        Unknown, ///< its start may still come
        Started, ///< by a process of the trace
        Root,    ///< the trace does not tell its start
    };

    ProcessOrigin() = default;
    ProcessOrigin(const ProcessOrigin&) = delete;
    ProcessOrigin& operator=(const ProcessOrigin&) = delete;
    ~ProcessOrigin();

    State state = State::Unknown;
    ProcessId process = 0;
    std::size_t line = 0;                        ///< where it was seen first
    std::optional<TraceDirectory> directory;     ///< in which it began, once known
    std::string guessedDirectory;                ///< what its environment says about it; empty: nothing
    std::shared_ptr<TracedInvocation> enclosing; ///< the compiler that started it, directly or not; null: none, or
    std::shared_ptr<ProcessOrigin> outer;        ///< null, or the one that tells
};

/// A compiler that a traced process has executed.
struct TracedInvocation {
    TracedInvocation() = default;
    TracedInvocation(const TracedInvocation&) = delete;
    TracedInvocation& operator=(const TracedInvocation&) = delete;
    ~TracedInvocation();

    std::vector<std::string> arguments;             ///< the compiler first, by its path
    std::shared_ptr<const Environment> environment; ///< null: the trace does not show it
    TraceDirectory directory;
    std::shared_ptr<ProcessOrigin> origin;      ///< of its process
    std::shared_ptr<TracedInvocation> replaced; ///< the launcher that the process was before; null: none
    ProcessId process = 0;
    std::size_t line = 0;
    std::string fault;               ///< why it can't be used; empty: it can
    bool isTransparent = false;      ///< a launcher that counts only when it starts no compiler
    bool startedCompilation = false; ///< of a transparent one
    std::optional<bool> isWithin;    ///< of a transparent one, once known: whether it is part of a compiler's run
};

/// Who started a process within a compiler's run.
struct Enclosure {
    std::shared_ptr<TracedInvocation> invocation; ///< the innermost compiler; null: none, unless `unknown` is set
    std::shared_ptr<ProcessOrigin> unknown;       ///< the origin that would tell
};

/// What a process has open and may change its directory to.
struct OpenDirectory {
    TraceDirectory directory;
    bool closesOnExecute = false;
};

using OpenDirectories = std::map<std::int64_t, OpenDirectory>;

/// A process or thread while it lives.
struct TraceProcess {
    ProcessId id = 0;
    std::shared_ptr<ProcessOrigin> origin;
    std::shared_ptr<TraceDirectory> directory;    ///< threads share one
    std::shared_ptr<OpenDirectories> files;       ///< likewise
    std::shared_ptr<TracedInvocation> invocation; ///< the compiler that it has become; null: none

    // The call that the trace has begun to show but not ended.
    TraceCall pendingCall = TraceCall::Other;
    std::string pendingText;
    std::size_t pendingLine = 0;

    /// The compiler within whose run this process works: itself, when it has become one.
    [[nodiscard]] Enclosure FindEnclosure() const;
};

/// The innermost compiler within whose run a process with this origin was started.
[[nodiscard]] Enclosure EnclosureOf(const std::shared_ptr<ProcessOrigin>& origin);

/// The absolute path of a directory; no value while an origin on the way to it is unknown.
[[nodiscard]] std::optional<std::string> AbsoluteDirectory(const TraceDirectory& directory);

/// The origin whose directory is missing to make `directory` absolute; null when none is.
[[nodiscard]] ProcessOrigin* MissingOrigin(const TraceDirectory& directory);

} // namespace Orvanta
