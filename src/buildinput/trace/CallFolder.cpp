#include "buildinput/trace/CallFolder.h"

#include "buildinput/ProgramName.h"
#include "buildinput/trace/InvocationQueue.h"
#include "buildinput/trace/ProcessTree.h"
#include "buildinput/trace/TraceText.h"
#include "buildinput/trace/TraceWarnings.h"
#include "platform/Paths.h"

#include <memory>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* AdviceForCutTexts =
    "the trace shows its arguments only in part (\"...\"): trace with strace -f -v -s 1048576";

} // namespace

/// Follows a call that has ended and did not fail.
void CallFolder::Fold(TraceProcess& process, TraceCall call, const CallText& text) {
    const TracedCall parsed = ParseTracedCall(call, text.text);
    // A call without success is read, and there is nothing to take over of it.
    const bool isRead = parsed.isReadable && (!parsed.HasSucceeded() || FoldParsed(process, parsed, text));
    if (!isRead) {
        const char* const what = HasResult(text.text) ? "this call can't be read" : "this call is cut short";
        warnings_.Malformed(text.begun, what);
        AddUnreadable(process, parsed, what, text.begun);
    }
}

/// A compiler has been executed, but not all of the call is to be seen: its invocation has failed.
void CallFolder::AddUnreadable(TraceProcess& process, const TracedCall& call, const char* what, std::size_t callLine) {
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
bool CallFolder::FoldParsed(TraceProcess& process, const TracedCall& call, const CallText& text) {
    switch (call.call) {
    case TraceCall::Other:
        break;
    case TraceCall::Execute:
    case TraceCall::ExecuteAt:
        return FoldExecution(process, call, text.begun);
    case TraceCall::Fork:
        tree_.Start(process, static_cast<ProcessId>(call.result->value), text.text, text.begun, text.ended);
        queue_.Flush();
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

bool CallFolder::FoldExecution(TraceProcess& process, const TracedCall& call, std::size_t callLine) {
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
void CallFolder::TakeProgramPath(TraceProcess& process, const TracedCall& call) {
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
void CallFolder::Execute(TraceProcess& process, TracedCommand command, std::size_t line) {
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

void CallFolder::FoldFileChange(TraceProcess& process, const TracedCall& call) {
    if (call.filePath) {
        // What the tracer shows itself counts more than what was opened under this number.
        process.directory->Set(*call.filePath);
    } else if (call.file && process.files != nullptr && process.files->contains(*call.file)) {
        *process.directory = process.files->at(*call.file).directory;
    }
}

/// The system itself has said where the process works.
void CallFolder::Locate(TraceProcess& process, const std::string& path) {
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

void CallFolder::LocateByFile(TraceProcess& process, const std::optional<std::string>& path) {
    // Nothing is learnt where the directory is absolute already, which it mostly is.
    if (path && process.directory->base != nullptr) {
        Locate(process, *path);
        queue_.Flush();
    }
}

void CallFolder::FoldOpening(TraceProcess& process, const TracedCall& call) {
    LocateByFile(process, call.file ? std::nullopt : call.filePath);
    // A directory is opened to be read, and never created by being opened.
    const bool isFile =
        call.rest.find("O_RDONLY") == std::string_view::npos || call.rest.find("O_CREAT") != std::string_view::npos;
    if (!isFile) {
        RememberOpened(process, call);
    }
}

/// Keeps a file that may be a directory, in the place of one that had the same number.
void CallFolder::RememberOpened(TraceProcess& process, const TracedCall& call) {
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

/// A launcher counts when it has ended and started no compiler.
void CallFolder::AddLaunchers(const TraceProcess& process) {
    for (std::shared_ptr<TracedInvocation> launcher = process.invocation; launcher != nullptr;
         launcher = launcher->replaced) {
        if (launcher->isTransparent) {
            queue_.Add(launcher);
        }
    }
}

} // namespace Orvanta
