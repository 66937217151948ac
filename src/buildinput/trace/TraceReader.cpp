#include "buildinput/trace/TraceReader.h"

#include "buildinput/ProgramName.h"
#include "buildinput/trace/InvocationQueue.h"
#include "buildinput/trace/LineReader.h"
#include "buildinput/trace/ProcessTree.h"
#include "buildinput/trace/TraceCommand.h"
#include "buildinput/trace/TraceEnvironment.h"
#include "buildinput/trace/TraceText.h"
#include "buildinput/trace/TraceWarnings.h"
#include "buildinput/trace/TracedCall.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <map>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* AdviceForCutTexts =
    "the trace shows its arguments only in part (\"...\"): trace with strace -f -v -s 1048576";
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
        : warnings_(path, collector.MessageLog()), finder_(collector.Settings()), queue_(collector),
          tree_([this](const ProcessOrigin& origin) { warnings_.NeverStarted(origin.process, origin.line); }) {}

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
    void Complete(TraceProcess& process, TraceCall call, std::string_view text, std::size_t callLine);
    void AddUnreadable(TraceProcess& process, const TracedCall& call, const char* what, std::size_t callLine);
    bool Fold(TraceProcess& process, const TracedCall& call, std::string_view text, std::size_t callLine);
    void FoldStart(TraceProcess& process, const TracedCall& call, std::string_view text, std::size_t callLine);
    bool FoldExecution(TraceProcess& process, const TracedCall& call, std::size_t callLine);
    void TakeProgramPath(TraceProcess& process, const TracedCall& call);
    static void FoldFileChange(TraceProcess& process, const TracedCall& call);
    void FoldOpening(TraceProcess& process, const TracedCall& call);
    static void RememberOpened(TraceProcess& process, const TracedCall& call);
    void Execute(TraceProcess& process, TracedCommand command, std::size_t line);
    void Locate(TraceProcess& process, const std::string& path);
    void LocateByFile(TraceProcess& process, const std::optional<std::string>& path);
    void AddLaunchers(const TraceProcess& process);

    TraceWarnings warnings_;
    TracedCommandFinder finder_;
    InvocationQueue queue_;
    ProcessTree tree_;
    TraceEnvironments environments_;
    ExecutedProgram program_; // of the execution read last: used again, so that its arrays keep their memory
    std::map<std::string, std::size_t> passedOver_; // programs that look like compilers and are not known, with calls
    std::size_t number_ = 0;                        // of the line
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
    Complete(process, line.call, line.text, number_);
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
        Complete(process, call, whole, process.pendingLine);
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
    AddLaunchers(*process);
    tree_.End(*process);
    queue_.Flush();
}

/// A launcher counts when it has ended and started no compiler.
void TraceReader::AddLaunchers(const TraceProcess& process) {
    for (std::shared_ptr<TracedInvocation> launcher = process.invocation; launcher != nullptr;
         launcher = launcher->replaced) {
        if (launcher->isTransparent) {
            queue_.Add(launcher);
        }
    }
}

/// Follows a call that has ended and did not fail.
void TraceReader::Complete(TraceProcess& process, TraceCall call, std::string_view text, std::size_t callLine) {
    const TracedCall parsed = ParseTracedCall(call, text);
    // A call without success is read, and there is nothing to take over of it.
    const bool isRead = parsed.isReadable && (!parsed.HasSucceeded() || Fold(process, parsed, text, callLine));
    if (!isRead) {
        const char* const what = HasResult(text) ? "this call can't be read" : "this call is cut short";
        warnings_.Malformed(callLine, what);
        AddUnreadable(process, parsed, what, callLine);
    }
}

/// A compiler has been executed, but not all of the call is to be seen: its invocation has failed.
void TraceReader::AddUnreadable(TraceProcess& process, const TracedCall& call, const char* what, std::size_t callLine) {
    const bool isExecution = call.call == TraceCall::Execute || call.call == TraceCall::ExecuteAt;
    if (!isExecution || call.path.raw.empty()) {
        return;
    }
    TakeProgramPath(process, call);
    if (finder_.IsCompiler(program_.path)) {
        program_.environment.isWhole = false;
        TracedCommand command;
        command.arguments = {program_.path};
        command.fault = "line " + std::to_string(callLine) + " of the trace: " + what;
        Execute(process, std::move(command), callLine);
    }
}

/// Takes what a call has changed over. False: its arguments can't be read.
bool TraceReader::Fold(TraceProcess& process, const TracedCall& call, std::string_view text, std::size_t callLine) {
    switch (call.call) {
    case TraceCall::Other:
        break;
    case TraceCall::Execute:
    case TraceCall::ExecuteAt:
        return FoldExecution(process, call, callLine);
    case TraceCall::Fork:
        FoldStart(process, call, text, callLine);
        break;
    case TraceCall::ChangeDirectory:
        process.directory->Change(call.path.Decode());
        break;
    case TraceCall::ChangeDirectoryFile:
        FoldFileChange(process, call);
        break;
    case TraceCall::GetDirectory:
        if (!call.path.isCut) {
            Locate(process, call.path.Decode());
            queue_.Flush();
        }
        break;
    case TraceCall::Open:
    case TraceCall::OpenAt:
        FoldOpening(process, call);
        break;
    }
    return true;
}

void TraceReader::FoldStart(TraceProcess& process, const TracedCall& call, std::string_view text,
                            std::size_t callLine) {
    tree_.Start(process, static_cast<ProcessId>(call.result->value), text, callLine, number_);
    queue_.Flush();
}

bool TraceReader::FoldExecution(TraceProcess& process, const TracedCall& call, std::size_t callLine) {
    TakeProgramPath(process, call);
    // Most programs of a build are no compilers, and their arguments may be long: they are read only where something
    // asks.
    const bool mayCompile = finder_.MayCompile(program_.path);
    // What a compiler that is known starts is part of its run, and not passed over.
    if (!mayCompile && LooksLikeCompiler(program_.path) && process.FindEnclosure().invocation == nullptr) {
        ++passedOver_[std::string(FileNameOf(program_.path, PathRules::Posix))];
    }
    const bool needsGuess = process.origin->guessedDirectory.empty() && process.directory->IsStartOf(process.origin);
    TraceTextReader reader(call.rest);
    if (mayCompile || needsGuess) {
        if (!reader.Take(", ") || !reader.TakeArray(program_.arguments) || !reader.Take(", ")) {
            return false;
        }
        if (needsGuess) {
            process.origin->guessedDirectory = DirectoryVariable(reader.Rest());
        }
    }
    // A program that is executed has a table of its own, even where its process shared one before.
    if (process.files != nullptr) {
        process.files = std::make_shared<OpenDirectories>(*process.files);
        std::erase_if(*process.files, [](const auto& opened) { return opened.second.closesOnExecute; });
    }
    if (mayCompile) {
        // Without -v the tracer shows an address and a number in its place.
        if (!reader.TakeArray(program_.environment)) {
            program_.environment.isWhole = false;
        }
        if (std::optional<TracedCommand> command = finder_.Find(program_)) {
            Execute(process, *std::move(command), callLine);
        }
    }
    return true;
}

/// Reads the path of a program that is executed, by its name or by a file that is open.
void TraceReader::TakeProgramPath(TraceProcess& process, const TracedCall& call) {
    call.path.DecodeInto(program_.path);
    if (call.call == TraceCall::Execute) {
        return;
    }
    std::optional<std::string> folder;
    if (!call.file) {
        LocateByFile(process, call.filePath);
    } else if (call.filePath) {
        folder = call.filePath;
    } else if (process.files != nullptr && process.files->contains(*call.file)) {
        folder = AbsoluteDirectory(process.files->at(*call.file).directory);
    }
    program_.path = JoinTracePath(folder.value_or(""), program_.path);
}

/// A compiler has begun to run.
void TraceReader::Execute(TraceProcess& process, TracedCommand command, std::size_t line) {
    if (process.invocation != nullptr && !process.invocation->isTransparent) {
        return; // a compiler that goes on as another one is one run
    }
    auto invocation = std::make_shared<TracedInvocation>();
    invocation->arguments = std::move(command.arguments);
    invocation->environment = environments_.Get(program_.environment);
    invocation->directory = *process.directory;
    invocation->origin = process.origin;
    invocation->replaced = process.invocation;
    invocation->process = process.id;
    invocation->line = line;
    invocation->isTransparent = command.isTransparent;
    invocation->fault = std::move(command.fault);
    if (command.isCut) {
        invocation->fault = "line " + std::to_string(line) + " of the trace: " + AdviceForCutTexts;
    }
    process.invocation = invocation;
    // A launcher waits for its end, see AddLaunchers.
    if (!invocation->isTransparent) {
        queue_.Add(std::move(invocation));
    }
}

void TraceReader::FoldFileChange(TraceProcess& process, const TracedCall& call) {
    if (call.filePath) {
        // What the tracer shows itself counts more than what was opened under this number.
        process.directory->Set(*call.filePath);
    } else if (call.file && process.files != nullptr && process.files->contains(*call.file)) {
        *process.directory = process.files->at(*call.file).directory;
    }
}

/// The system itself has said where the process works.
void TraceReader::Locate(TraceProcess& process, const std::string& path) {
    if (!IsAbsolutePath(path, PathRules::Posix)) {
        return; // "(unreachable)/..."
    }
    const std::shared_ptr<ProcessOrigin> base = process.directory->base;
    // It has not moved since it began, so that its beginning is known as well, and with it where its children are.
    if (base != nullptr && !base->directory && process.directory->path.empty()) {
        base->directory = TraceDirectory{path, nullptr};
    }
    process.directory->Set(path);
}

void TraceReader::LocateByFile(TraceProcess& process, const std::optional<std::string>& path) {
    // Nothing is learnt where the directory is absolute already, which it mostly is.
    if (path && process.directory->base != nullptr) {
        Locate(process, *path);
        queue_.Flush();
    }
}

void TraceReader::FoldOpening(TraceProcess& process, const TracedCall& call) {
    LocateByFile(process, call.file ? std::nullopt : call.filePath);
    // A directory is opened to be read, and never created by being opened.
    const bool isFile =
        call.rest.find("O_RDONLY") == std::string_view::npos || call.rest.find("O_CREAT") != std::string_view::npos;
    if (!isFile) {
        RememberOpened(process, call);
    }
}

/// Keeps a file that may be a directory, in the place of one that had the same number.
void TraceReader::RememberOpened(TraceProcess& process, const TracedCall& call) {
    if (process.files == nullptr) {
        process.files = std::make_shared<OpenDirectories>();
    }
    OpenDirectory& entry = (*process.files)[call.result->value];
    entry.closesOnExecute = call.rest.find("O_CLOEXEC") != std::string_view::npos;
    if (std::optional<std::string> shown = TracePath(call.result->comment)) {
        entry.directory.Set(*std::move(shown));
    } else if (call.path.raw.starts_with('/')) {
        entry.directory.base.reset();
        call.path.DecodeInto(entry.directory.path); // keeps the memory of the one before
    } else {
        if (call.filePath) {
            entry.directory.Set(*call.filePath);
        } else if (!call.file) {
            entry.directory = *process.directory;
        } else if (process.files->contains(*call.file)) {
            entry.directory = TraceDirectory(process.files->at(*call.file).directory);
        }
        entry.directory.Change(call.path.Decode());
    }
}

bool TraceReader::Finish() {
    // An empty file may be a trace of nothing; one with lines, none of them a trace's, is another kind of file.
    if (!isTrace_ && number_ > 0) {
        return false;
    }
    // What lives still will show no end, for which a launcher waits otherwise.
    tree_.ForEach([this](const TraceProcess& process) { AddLaunchers(process); });
    tree_.Settle();
    warnings_.Finish();
    warnings_.PassedOver(passedOver_);
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
