#include "buildinput/trace/TraceReader.h"

#include "buildinput/trace/CallFolder.h"
#include "buildinput/trace/InvocationQueue.h"
#include "buildinput/trace/LineReader.h"
#include "buildinput/trace/ProcessTree.h"
#include "buildinput/trace/TraceText.h"
#include "buildinput/trace/TraceWarnings.h"
#include "buildinput/trace/TracedCall.h"

#include <utility>

namespace Orvanta {

namespace {

constexpr ProcessId UnnamedProcess = 0; // the number of no process

/// Whether a whole call changes what is known. Most don't: failed ones, and files opened only to be read. Who opens a
/// directory does not ask that it should not become the terminal, unless the call takes nothing but directories.
bool CanMatter(TraceCall call, std::string_view text) {
    if (HasFailed(text)) {
        return false;
    }
    if ((call != TraceCall::Open && call != TraceCall::OpenAt) || text.starts_with("AT_FDCWD<")) {
        return true;
    }
    const std::string_view flags = TailOf(text);
    return flags.find("O_NOCTTY") == std::string_view::npos || flags.find("O_DIRECTORY") != std::string_view::npos;
}

/// Follows a trace from its first line to its last.
class TraceReader {
public:
    TraceReader(const std::string& path, InvocationCollector& collector)
        : warnings_(path, collector.MessageLog()), queue_(collector),
          tree_([this](const ProcessOrigin& origin) { warnings_.NeverStarted(origin.process, origin.line); }),
          folder_(collector.Settings(), warnings_, queue_, tree_) {}

    void ReadLine(std::string_view text, std::size_t number);
    /// To be called behind the last line. False when no line is a trace's.
    /// \throws ZelmException "No roots found", "No pwd"
    bool Finish();

private:
    TraceProcess& ProcessOf(const TraceLine& line);
    bool IsUnnamed(const TraceProcess& unnamed, const TraceLine& line) const;
    void ReadCall(const TraceLine& line);
    void ReadResumption(TraceProcess& process, std::string_view text, bool isUnfinished);
    void ReadLooseEnd(const TraceLine& line);
    void ReadEnd(const TraceLine& line);

    TraceWarnings warnings_;
    InvocationQueue queue_;
    ProcessTree tree_;
    CallFolder folder_;
    std::size_t number_ = 0; // of the line
    bool isTrace_ = false;
    ProcessId unnamed_ = UnnamedProcess;        // what the process without a number turned out to be
    std::optional<ProcessId> interrupted_ = {}; // whose call a message of the tracer's own has interrupted
};

void TraceReader::ReadLine(std::string_view text, std::size_t number) {
    number_ = number;
    const TraceLine line = ParseTraceLine(text);
    switch (line.kind) {
    case TraceLine::Kind::Other:
        break;
    case TraceLine::Kind::LooseEnd:
        ReadLooseEnd(line);
        return;
    case TraceLine::Kind::Event:
        isTrace_ = true;
        break;
    case TraceLine::Kind::Call:
        isTrace_ = true;
        // An unfinished call is kept whatever it is: how it ends stands in another line.
        if (line.call != TraceCall::Other && (line.isUnfinished || CanMatter(line.call, line.text))) {
            ReadCall(line);
        }
        break;
    case TraceLine::Kind::Resumption:
        isTrace_ = true;
        if (line.call != TraceCall::Other) {
            TraceProcess& process = ProcessOf(line);
            // A trace that began in the middle resumes calls of which it has not shown the beginning.
            if (process.pendingCall == line.call) {
                ReadResumption(process, line.text, line.isUnfinished);
            }
        }
        break;
    case TraceLine::Kind::End:
        isTrace_ = true;
        ReadEnd(line);
        break;
    case TraceLine::Kind::Replacement:
        isTrace_ = true;
        tree_.Replace(ProcessOf(line).id, line.otherProcess);
        break;
    }
}

/// Whether the process without a number may be the one that this line names for the first time. A line of its child
/// can only come while it is starting one.
bool TraceReader::IsUnnamed(const TraceProcess& unnamed, const TraceLine& line) const {
    return line.kind == TraceLine::Kind::Resumption ? unnamed.pendingCall == line.call
                                                    : unnamed.pendingCall == TraceCall::Other;
}

/// The process of a line. A log on a terminal names it only while there are several.
TraceProcess& TraceReader::ProcessOf(const TraceLine& line) {
    if (line.process) {
        TraceProcess* const unnamed = tree_.Find(UnnamedProcess);
        if (unnamed != nullptr && tree_.Find(*line.process) == nullptr && IsUnnamed(*unnamed, line)) {
            tree_.Rename(*unnamed, *line.process);
            unnamed_ = *line.process;
        }
        return tree_.At(*line.process, number_);
    }
    if (TraceProcess* const only = tree_.Only()) {
        return *only;
    }
    return tree_.At(tree_.Find(unnamed_) != nullptr ? unnamed_ : UnnamedProcess, number_);
}

void TraceReader::ReadCall(const TraceLine& line) {
    TraceProcess& process = ProcessOf(line);
    if (line.isUnfinished) {
        tree_.BeginCall(process, line.call, line.text, number_);
        interrupted_ = process.id;
        return;
    }
    // A call that stands in one line: whatever the process had begun before will not be resumed.
    tree_.EndCall(process);
    folder_.Fold(process, line.call, {line.text, number_, number_});
}

void TraceReader::ReadResumption(TraceProcess& process, std::string_view text, bool isUnfinished) {
    ProcessTree::ContinueCall(process, text);
    if (isUnfinished) {
        interrupted_ = process.id;
        return;
    }
    const TraceCall call = process.pendingCall;
    // Taken out of the process, which may end before the views into its text do.
    const std::string whole = std::exchange(process.pendingText, {});
    const ProcessId id = process.id;
    if (!HasFailed(whole)) {
        folder_.Fold(process, call, {whole, process.pendingLine, number_});
    }
    // Ended only when it has been followed: with no start under way, its child would be taken for a root.
    if (TraceProcess* const still = tree_.Find(id)) {
        tree_.EndCall(*still);
        queue_.Flush();
    }
}

/// What the tracer's own message has cut off a call: "strace: Process 12 attached".
void TraceReader::ReadLooseEnd(const TraceLine& line) {
    TraceProcess* const process = interrupted_ ? tree_.Find(*interrupted_) : nullptr;
    interrupted_.reset();
    if (process != nullptr && process->pendingCall != TraceCall::Other && !line.isUnfinished && HasResult(line.text)) {
        ReadResumption(*process, line.text, false);
    }
}

void TraceReader::ReadEnd(const TraceLine& line) {
    TraceProcess* process = line.process ? tree_.Find(*line.process) : &ProcessOf(line);
    if (process == nullptr && !tree_.IsStarting()) {
        warnings_.NeverStarted(*line.process, number_);
        return;
    }
    if (process == nullptr) {
        process = &tree_.At(*line.process, number_); // gone before the call that started it has returned
    }
    folder_.AddLaunchers(*process);
    tree_.End(*process);
    queue_.Flush();
}

bool TraceReader::Finish() {
    // An empty file may be a trace of nothing; one with lines, none of them a trace's, is another kind of file.
    if (!isTrace_ && number_ > 0) {
        return false;
    }
    // What lives still will show no end, for which a launcher waits otherwise.
    tree_.ForEach([this](const TraceProcess& process) { folder_.AddLaunchers(process); });
    tree_.Settle();
    warnings_.Finish();
    warnings_.PassedOver(folder_.PassedOver());
    if (!tree_.HasRoot()) {
        throw ZelmException("No roots found");
    }
    queue_.Finish();
    return true;
}

} // namespace

bool ReadTrace(std::istream& input, const std::string& path, InvocationCollector& collector) {
    // Configure scripts are traced with the build, and remove what they have compiled.
    collector.LeaveOutDeletedSources();
    LineReader lines(input);
    TraceReader reader(path, collector);
    for (std::string_view line; lines.Next(line);) {
        reader.ReadLine(line, lines.Number());
    }
    if (!reader.Finish()) {
        return false;
    }
    if (collector.Invocations() == 0) {
        throw NoCompilerInvocationsFound(NoCompilerInvocationsFound::Hint::NameTheCompiler);
    }
    return true;
}

} // namespace Orvanta
