#include "buildinput/trace/TraceReader.h"

#include "buildinput/trace/InvocationQueue.h"
#include "buildinput/trace/LineReader.h"
#include "buildinput/trace/ProcessTree.h"
#include "buildinput/trace/TraceCommand.h"
#include "buildinput/trace/TraceEnvironment.h"
#include "buildinput/trace/TraceText.h"
#include "buildinput/trace/TraceWarnings.h"
#include "platform/Paths.h"
#include "platform/Text.h"

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

/// How a trace names what a call has opened.
struct OpenedPath {
    const TraceLiteral& literal;
    const std::optional<std::int64_t>& folder;    // from which a relative path counts; none: the working directory
    const std::optional<std::string>& folderPath; // of it, where the trace shows that
    std::optional<std::string> shown;             // the whole path, where the trace shows that
};

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
    bool CompleteStart(TraceProcess& process, std::string_view text, std::size_t callLine);
    bool CompleteExecution(TraceProcess& process, TraceCall call, std::string_view text, std::size_t callLine);
    bool TakeProgramPath(TraceProcess& process, TraceCall call, TraceTextReader& reader);
    bool CompleteChange(TraceProcess& process, std::string_view text);
    bool CompleteFileChange(TraceProcess& process, std::string_view text);
    bool CompleteQuestion(TraceProcess& process, std::string_view text);
    bool CompleteOpening(TraceProcess& process, TraceCall call, std::string_view text);
    static void RememberOpened(TraceProcess& process, std::int64_t number, std::string_view flags,
                               const OpenedPath& opened);
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
    std::size_t number_ = 0;  // of the line
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
        if (line.call != TraceCall::Other && (line.isUnfinished || CanMatter(line.call, line.text))) {
            ReadCall(line);
        }
        break;
    case TraceLine::Kind::Resumption:
        isTrace_ = true;
        if (line.call != TraceCall::Other) {
            TraceProcess& process = ProcessOf(line);
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
    const std::string whole = std::exchange(process.pendingText, {});
    const ProcessId id = process.id;
    if (!HasFailed(whole)) {
        Complete(process, call, whole, process.pendingLine);
    }
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
    if (process == nullptr) {
        warnings_.NeverStarted(*line.process, number_);
        return;
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
    bool isRead = true;
    switch (call) {
    case TraceCall::Other:
        break;
    case TraceCall::Execute:
    case TraceCall::ExecuteAt:
        isRead = CompleteExecution(process, call, text, callLine);
        break;
    case TraceCall::Fork:
        isRead = CompleteStart(process, text, callLine);
        break;
    case TraceCall::ChangeDirectory:
        isRead = CompleteChange(process, text);
        break;
    case TraceCall::ChangeDirectoryFile:
        isRead = CompleteFileChange(process, text);
        break;
    case TraceCall::GetDirectory:
        isRead = CompleteQuestion(process, text);
        break;
    case TraceCall::Open:
    case TraceCall::OpenAt:
        isRead = CompleteOpening(process, call, text);
        break;
    }
    if (!isRead) {
        warnings_.Malformed(callLine, HasResult(text) ? "this call can't be read" : "this call is cut short");
    }
}

// Each of the following reads a call that did not fail, and returns false when its text is not as it should be. A call
// without a result never returned: its process was killed.

bool TraceReader::CompleteStart(TraceProcess& process, std::string_view text, std::size_t callLine) {
    TraceTextReader reader(text);
    const std::optional<TraceResult> result = reader.TakeResult();
    if (result && result->value > 0) {
        tree_.Start(process, static_cast<ProcessId>(result->value), text, callLine, number_);
        queue_.Flush();
    }
    return result || HasResult(text);
}

bool TraceReader::CompleteExecution(TraceProcess& process, TraceCall call, std::string_view text,
                                    std::size_t callLine) {
    const std::optional<TraceResult> result = TraceTextReader(TailOf(text)).TakeResult();
    if (!result || result->value != 0) {
        return result || HasResult(text);
    }
    TraceTextReader reader(text);
    if (!TakeProgramPath(process, call, reader) || !reader.Take(", ")) {
        return false;
    }
    const bool mayCompile = finder_.MayCompile(program_.path);
    const bool needsGuess = process.origin->guessedDirectory.empty() && process.directory->IsStartOf(process.origin);
    if (mayCompile || needsGuess) {
        if (!reader.TakeArray(program_.arguments) || !reader.Take(", ")) {
            return false;
        }
        if (needsGuess) {
            process.origin->guessedDirectory = DirectoryVariable(reader.Rest());
        }
    }
    if (process.files != nullptr) {
        process.files = std::make_shared<OpenDirectories>(*process.files);
        std::erase_if(*process.files, [](const auto& opened) { return opened.second.closesOnExecute; });
    }
    if (mayCompile) {
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
bool TraceReader::TakeProgramPath(TraceProcess& process, TraceCall call, TraceTextReader& reader) {
    std::optional<std::int64_t> file;
    std::optional<std::string> filePath;
    TraceLiteral path;
    if (call == TraceCall::ExecuteAt && (!reader.TakeFile(file, filePath) || !reader.Take(", "))) {
        return false;
    }
    if (!reader.TakeLiteral(path)) {
        return false;
    }
    path.DecodeInto(program_.path);
    if (call == TraceCall::Execute) {
        return true;
    }
    if (!file) {
        LocateByFile(process, filePath);
        filePath.reset();
    } else if (!filePath && process.files != nullptr && process.files->contains(*file)) {
        filePath = AbsoluteDirectory(process.files->at(*file).directory);
    }
    program_.path = JoinTracePath(filePath.value_or(""), program_.path);
    return true;
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
    if (command.isCut) {
        invocation->fault = "line " + std::to_string(line) + " of the trace: " + AdviceForCutTexts;
    }
    process.invocation = invocation;
    if (!invocation->isTransparent) {
        queue_.Add(std::move(invocation));
    }
}

bool TraceReader::CompleteChange(TraceProcess& process, std::string_view text) {
    TraceTextReader reader(text);
    TraceLiteral path;
    if (!reader.TakeLiteral(path)) {
        return false;
    }
    const std::optional<TraceResult> result = reader.TakeResult();
    if (result && result->value == 0) {
        process.directory->Change(path.Decode());
    }
    return result || HasResult(text);
}

bool TraceReader::CompleteFileChange(TraceProcess& process, std::string_view text) {
    TraceTextReader reader(text);
    std::optional<std::int64_t> file;
    std::optional<std::string> path;
    if (!reader.TakeFile(file, path)) {
        return false;
    }
    const std::optional<TraceResult> result = reader.TakeResult();
    if (!result || result->value != 0) {
        return result || HasResult(text);
    }
    if (path) {
        process.directory->Set(*std::move(path));
    } else if (file && process.files != nullptr && process.files->contains(*file)) {
        *process.directory = process.files->at(*file).directory;
    }
    return true;
}

bool TraceReader::CompleteQuestion(TraceProcess& process, std::string_view text) {
    TraceTextReader reader(text);
    TraceLiteral path;
    if (!reader.TakeLiteral(path)) {
        return HasResult(text); // an address, where the buffer was too small
    }
    const std::optional<TraceResult> result = reader.TakeResult();
    if (result && result->value > 0 && !path.isCut) {
        Locate(process, path.Decode());
        queue_.Flush();
    }
    return result || HasResult(text);
}

/// The system itself has said where the process works.
void TraceReader::Locate(TraceProcess& process, const std::string& path) {
    if (!IsAbsolutePath(path, PathRules::Posix)) {
        return; // "(unreachable)/..."
    }
    const std::shared_ptr<ProcessOrigin> base = process.directory->base;
    if (base != nullptr && !base->directory && process.directory->path.empty()) {
        base->directory = TraceDirectory{path, nullptr};
    }
    process.directory->Set(path);
}

void TraceReader::LocateByFile(TraceProcess& process, const std::optional<std::string>& path) {
    if (path && process.directory->base != nullptr) {
        Locate(process, *path);
        queue_.Flush();
    }
}

bool TraceReader::CompleteOpening(TraceProcess& process, TraceCall call, std::string_view text) {
    TraceTextReader reader(text);
    std::optional<std::int64_t> file;
    std::optional<std::string> filePath;
    TraceLiteral path;
    if (call == TraceCall::OpenAt && (!reader.TakeFile(file, filePath) || !reader.Take(", "))) {
        return false;
    }
    if (!reader.TakeLiteral(path)) {
        return false;
    }
    const std::string_view flags = reader.Rest();
    const std::optional<TraceResult> result = reader.TakeResult();
    if (!result || result->value < 0) {
        return result || HasResult(text);
    }
    LocateByFile(process, file ? std::nullopt : filePath);
    if (flags.find("O_RDONLY") == std::string_view::npos || flags.find("O_CREAT") != std::string_view::npos) {
        return true; // no directory
    }
    RememberOpened(process, result->value, flags, {path, file, filePath, TracePath(result->comment)});
    return true;
}

/// Keeps a file that may be a directory, in the place of one that had the same number.
void TraceReader::RememberOpened(TraceProcess& process, std::int64_t number, std::string_view flags,
                                 const OpenedPath& opened) {
    if (process.files == nullptr) {
        process.files = std::make_shared<OpenDirectories>();
    }
    OpenDirectory& entry = (*process.files)[number];
    entry.closesOnExecute = flags.find("O_CLOEXEC") != std::string_view::npos;
    if (opened.shown) {
        entry.directory.Set(*opened.shown);
    } else if (opened.literal.raw.starts_with('/')) {
        entry.directory.base.reset();
        opened.literal.DecodeInto(entry.directory.path); // keeps the memory of the one before
    } else {
        if (opened.folderPath) {
            entry.directory.Set(*opened.folderPath);
        } else if (!opened.folder) {
            entry.directory = *process.directory;
        } else if (process.files->contains(*opened.folder)) {
            entry.directory = TraceDirectory(process.files->at(*opened.folder).directory);
        }
        entry.directory.Change(opened.literal.Decode());
    }
}

bool TraceReader::Finish() {
    if (!isTrace_ && number_ > 0) {
        return false;
    }
    tree_.ForEach([this](const TraceProcess& process) { AddLaunchers(process); });
    tree_.Settle();
    warnings_.Finish();
    if (!tree_.HasRoot()) {
        throw ZelmException("No roots found");
    }
    queue_.Finish();
    return true;
}

} // namespace

bool ReadTrace(std::istream& input, const std::string& path, InvocationCollector& collector) {
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
