#include "buildinput/trace/ProcessTree.h"

#include <utility>

namespace Orvanta {

namespace {

/// Whether a start shares what the flag stands for. The trace writes flags by name; calls without any share nothing.
bool Shares(std::string_view arguments, std::string_view flag) {
    return arguments.find(flag) != std::string_view::npos;
}

/// Null where there is nothing to copy: most processes have no directory open.
std::shared_ptr<OpenDirectories> CopyOf(const std::shared_ptr<OpenDirectories>& files) {
    return files == nullptr || files->empty() ? nullptr : std::make_shared<OpenDirectories>(*files);
}

std::shared_ptr<OpenDirectories> InheritedFiles(TraceProcess& parent, std::string_view arguments) {
    if (!Shares(arguments, "CLONE_FILES")) {
        return CopyOf(parent.files);
    }
    // The parent may open its first directory later: the child has it then, too.
    if (parent.files == nullptr) {
        parent.files = std::make_shared<OpenDirectories>();
    }
    return parent.files;
}

std::shared_ptr<TraceDirectory> InheritedDirectory(const TraceProcess& parent, std::string_view arguments) {
    return Shares(arguments, "CLONE_FS") ? parent.directory : std::make_shared<TraceDirectory>(*parent.directory);
}

} // namespace

TraceProcess& ProcessTree::Create(ProcessId id) {
    auto process = std::make_unique<TraceProcess>();
    process->id = id;
    process->origin = std::make_shared<ProcessOrigin>();
    process->origin->process = id;
    return *(processes_[id] = std::move(process));
}

TraceProcess& ProcessTree::At(ProcessId id, std::size_t line) {
    if (TraceProcess* const known = Find(id)) {
        return *known;
    }
    TraceProcess& process = Create(id);
    process.origin->line = line;
    process.directory = std::make_shared<TraceDirectory>(TraceDirectory{"", process.origin});
    // With no start under way, no later line can tell who started it.
    if (pendingStarts_ == 0) {
        MakeRoot(*process.origin);
    } else {
        unknown_[id] = process.origin;
    }
    return process;
}

TraceProcess* ProcessTree::Find(ProcessId id) {
    const auto place = processes_.find(id);
    return place == processes_.end() ? nullptr : place->second.get();
}

TraceProcess* ProcessTree::Only() {
    return processes_.size() == 1 ? processes_.begin()->second.get() : nullptr;
}

void ProcessTree::BeginCall(TraceProcess& process, TraceCall call, std::string_view text, std::size_t line) {
    // A process makes one call at a time: the trace has not shown the end of the one before.
    EndCall(process);
    process.pendingCall = call;
    process.pendingText = text;
    process.pendingLine = line;
    if (call == TraceCall::Fork) {
        ++pendingStarts_;
    }
}

void ProcessTree::ContinueCall(TraceProcess& process, std::string_view more) {
    process.pendingText += more;
}

void ProcessTree::EndCall(TraceProcess& process) {
    const TraceCall call = std::exchange(process.pendingCall, TraceCall::Other);
    process.pendingText.clear();
    // All starts have returned: what is still without a parent has none in this trace.
    if (call == TraceCall::Fork && --pendingStarts_ == 0) {
        Settle();
    }
}

void ProcessTree::Start(TraceProcess& parent, ProcessId child, std::string_view arguments, std::size_t callLine,
                        std::size_t line) {
    if (child == parent.id) {
        return; // no trace says so
    }
    const auto unknown = unknown_.find(child);
    if (unknown != unknown_.end()) {
        const std::shared_ptr<ProcessOrigin> origin = unknown->second;
        unknown_.erase(unknown);
        // Seen after the call began, it is the child. One seen before it is another process, which had the number
        // first.
        if (origin->line > callLine) {
            Adopt(origin, parent, arguments);
            return;
        }
        MakeRoot(*origin);
    }
    if (TraceProcess* const former = Find(child)) {
        End(*former); // its number is in use again, so its end was not shown
    }
    TraceProcess& process = Create(child);
    process.origin->line = line;
    process.origin->state = ProcessOrigin::State::Started;
    // The directory of this moment: the parent may change its own at any time.
    process.origin->directory = *parent.directory;
    Enclosure enclosure = parent.FindEnclosure();
    process.origin->enclosing = std::move(enclosure.invocation);
    process.origin->outer = std::move(enclosure.unknown);
    process.directory = InheritedDirectory(parent, arguments);
    process.files = InheritedFiles(parent, arguments);
}

/// A process that was seen before its start turns out to be `parent`'s child.
void ProcessTree::Adopt(const std::shared_ptr<ProcessOrigin>& origin, TraceProcess& parent,
                        std::string_view arguments) {
    Enclosure enclosure = parent.FindEnclosure();
    if (enclosure.unknown == origin || MissingOrigin(*parent.directory) == origin.get()) {
        MakeRoot(*origin); // a trace out of order: nobody is his own ancestor
        return;
    }
    origin->state = ProcessOrigin::State::Started;
    origin->enclosing = std::move(enclosure.invocation);
    origin->outer = std::move(enclosure.unknown);
    if (!origin->directory) {
        origin->directory = *parent.directory;
    }
    TraceProcess* const process = Find(origin->process);
    if (process == nullptr || process->origin != origin) {
        return; // it has ended already
    }
    if (process->directory->IsStartOf(origin)) {
        process->directory = InheritedDirectory(parent, arguments);
    } else if (Shares(arguments, "CLONE_FS")) {
        *parent.directory = *process->directory;
        process->directory = parent.directory;
    }
    if (process->files == nullptr) {
        process->files = InheritedFiles(parent, arguments);
    }
}

void ProcessTree::End(TraceProcess& process) {
    EndCall(process);
    processes_.erase(process.id);
}

void ProcessTree::Replace(ProcessId id, ProcessId thread) {
    const auto place = processes_.find(thread);
    if (place == processes_.end() || id == thread) {
        return;
    }
    if (TraceProcess* const leader = Find(id)) {
        End(*leader);
    }
    // Ending one may not move the others: the map keeps them by pointer.
    std::unique_ptr<TraceProcess> process = std::move(processes_[thread]);
    processes_.erase(thread);
    process->id = id;
    processes_[id] = std::move(process);
}

// Moved in the same way as a thread that takes its process's number.
void ProcessTree::Rename(TraceProcess& process, ProcessId id) {
    process.origin->process = id;
    Replace(id, process.id);
}

void ProcessTree::Settle() {
    for (const auto& [id, origin] : std::exchange(unknown_, {})) {
        MakeRoot(*origin);
    }
}

void ProcessTree::MakeRoot(ProcessOrigin& origin) {
    origin.state = ProcessOrigin::State::Root;
    if (std::exchange(hasRoot_, true)) {
        tellOrphan_(origin);
    }
}

void ProcessTree::ForEach(const std::function<void(TraceProcess&)>& visit) {
    for (const auto& [id, process] : processes_) {
        visit(*process);
    }
}

} // namespace Orvanta
