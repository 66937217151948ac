#pragma once

#include "buildinput/trace/TraceCommand.h"
#include "buildinput/trace/TraceEnvironment.h"
#include "buildinput/trace/TraceProcess.h"
#include "buildinput/trace/TracedCall.h"
#include "settings/RunSettings.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

class InvocationQueue;
class ProcessTree;
class TraceWarnings;

/// A call behind its name, and the lines of the trace in which it began and ended.
struct CallText {
    std::string_view text;
    std::size_t begun = 0;
    std::size_t ended = 0;
};

/// Takes over what each call has changed: which process is where, what it runs, and so which compilers were called.
class CallFolder {
public:
    /// All outlive the object.
    CallFolder(const RunSettings& settings, TraceWarnings& warnings, InvocationQueue& queue, ProcessTree& tree)
        : warnings_(warnings), queue_(queue), tree_(tree), finder_(settings) {}

    /// Follows a call that has ended and did not fail.
    void Fold(TraceProcess& process, TraceCall call, const CallText& text);

    /// The launchers of a process that has ended: one counts when it has started no compiler.
    void AddLaunchers(const TraceProcess& process);

    /// Programs that look like compilers and are not known, and how often each was called.
    [[nodiscard]] const std::map<std::string, std::size_t>& PassedOver() const noexcept { return passedOver_; }

private:
    bool FoldParsed(TraceProcess& process, const TracedCall& call, const CallText& text);
    bool FoldExecution(TraceProcess& process, const TracedCall& call, std::size_t callLine);
    static void FoldFileChange(TraceProcess& process, const TracedCall& call);
    void FoldOpening(TraceProcess& process, const TracedCall& call);
    static void RememberOpened(TraceProcess& process, const TracedCall& call);
    void AddUnreadable(TraceProcess& process, const TracedCall& call, const char* what, std::size_t callLine);
    void TakeProgramPath(TraceProcess& process, const TracedCall& call);
    void Execute(TraceProcess& process, TracedCommand command, std::size_t line);
    void Locate(TraceProcess& process, const std::string& path);
    void LocateByFile(TraceProcess& process, const std::optional<std::string>& path);

    TraceWarnings& warnings_;
    InvocationQueue& queue_;
    ProcessTree& tree_;
    TracedCommandFinder finder_;
    TraceEnvironments environments_;
    ExecutedProgram program_; // of the execution read last: used again, so that its arrays keep their memory
    std::map<std::string, std::size_t> passedOver_;
};

} // namespace Orvanta
