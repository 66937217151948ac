#pragma once

#include "buildinput/trace/TraceProcess.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

// The system uses the numbers of processes again, and a long build meets the same one more than once. So a number
// stands for the process that lives with it now, and for nothing else: whatever outlives a process refers to its
// origin.
//
// A process may be seen before the call that started it has returned. It has an origin of which nothing is known then;
// the return fills it in, and whoever has waited for it can go on. When no start is under way any more, none will.

namespace Orvanta {

/// The processes of a trace: who lives, who started whom, and the calls that are under way. What it holds grows with
/// the number of live processes, not with the length of the trace.
class ProcessTree {
public:
    /// Is told of each process whose start the trace does not show, except the first of all.
    using OrphanReceiver = std::function<void(const ProcessOrigin&)>;

    /// `tellOrphan` must not be empty. It is called from within the functions below.
    explicit ProcessTree(OrphanReceiver tellOrphan) : tellOrphan_(std::move(tellOrphan)) {}

    /// The live process with this number; one that is not known yet begins with `line`.
    TraceProcess& At(ProcessId id, std::size_t line);
    /// The live process with this number; null when there is none. Valid until it ends.
    [[nodiscard]] TraceProcess* Find(ProcessId id);

    /// Whether a call is under way that may start a process.
    [[nodiscard]] bool IsStarting() const noexcept { return pendingStarts_ > 0; }

    /// The only live process; null when there are several, or none.
    [[nodiscard]] TraceProcess* Only();

    /// Keeps the first part of a call. `more` follows what is there of the same call.
    void BeginCall(TraceProcess& process, TraceCall call, std::string_view text, std::size_t line);
    /// Appends what a later line shows of the call that has begun.
    static void ContinueCall(TraceProcess& process, std::string_view more);
    /// Forgets the process's call: it has ended, or will never.
    void EndCall(TraceProcess& process);

    /// A call of `parent`, which began with the line `callLine`, has started `child`. `arguments` are the call's.
    void Start(TraceProcess& parent, ProcessId child, std::string_view arguments, std::size_t callLine,
               std::size_t line);
    /// The process is gone, and the reference with it. What its children need of it lives on in its origin.
    void End(TraceProcess& process);
    /// The thread has executed a program: all other threads of the process end, and it takes the process's number.
    void Replace(ProcessId id, ProcessId thread);
    /// Gives a process its number, which the trace told late.
    void Rename(TraceProcess& process, ProcessId id);

    /// No more starts will come: every process whose origin is unknown is a root.
    void Settle();

    /// Whether any process was seen that the trace did not start.
    [[nodiscard]] bool HasRoot() const noexcept { return hasRoot_; }

    /// Calls `visit` with every live process.
    void ForEach(const std::function<void(TraceProcess&)>& visit);

private:
    /// Puts a process with an origin, and nothing else, in the place of one that has the number.
    TraceProcess& Create(ProcessId id);
    /// Settles that the start of the process will not come. All but the first are told to the receiver.
    void MakeRoot(ProcessOrigin& origin);
    /// Fills the origin as if the start had stood where it should. Where both share a directory that the child has
    /// changed already, the parent has changed it, too.
    void Adopt(const std::shared_ptr<ProcessOrigin>& origin, TraceProcess& parent, std::string_view arguments);

    OrphanReceiver tellOrphan_;
    std::unordered_map<ProcessId, std::unique_ptr<TraceProcess>> processes_;
    std::map<ProcessId, std::shared_ptr<ProcessOrigin>> unknown_; // of live processes, and of dead ones
    std::size_t pendingStarts_ = 0;                               // calls under way that may start a process
    bool hasRoot_ = false;
};

} // namespace Orvanta
