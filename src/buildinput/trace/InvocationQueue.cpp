#include "buildinput/trace/InvocationQueue.h"

#include "platform/Paths.h"
#include "platform/Process.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

// With so many waiting, the first one's folder is taken from what its environment says.
constexpr std::size_t MostWaiting = 1024;

/// The launcher or compiler within whose run this one was started.
Enclosure EnclosureOf(const TracedInvocation& invocation) {
    return invocation.replaced != nullptr ? Enclosure{invocation.replaced, nullptr} : EnclosureOf(invocation.origin);
}

/// Whether the command could make an object file; a launcher also has sources only preprocessed.
bool MayCompile(const std::vector<std::string>& arguments) {
    return std::none_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
        return argument == "-E" || argument == "-M" || argument == "-MM" || argument == "--version";
    });
}

} // namespace

void InvocationQueue::Add(std::shared_ptr<TracedInvocation> invocation) {
    waiting_.push_back(std::move(invocation));
    Flush();
}

void InvocationQueue::Flush() {
    // In the order in which they began: one that has to wait holds up those behind it.
    while (!waiting_.empty() && TakeFirst(waiting_.size() > MostWaiting)) {
    }
}

void InvocationQueue::Finish() {
    while (!waiting_.empty()) {
        (void)TakeFirst(true);
    }
}

/// Hands the first one over, or drops it; false when it has to wait.
bool InvocationQueue::TakeFirst(bool mayGuess) {
    TracedInvocation& invocation = *waiting_.front();
    const Place place = PlaceOf(invocation);
    if (place == Place::Unknown && !mayGuess) {
        return false;
    }
    if (place != Place::Within && !invocation.fault.empty()) {
        HandOver(invocation, {}); // in whatever folder
    } else if (place != Place::Within && !(invocation.isTransparent && invocation.startedCompilation)) {
        std::optional<std::string> directory = AbsoluteDirectory(invocation.directory);
        if (!directory) {
            if (!mayGuess) {
                return false;
            }
            GuessDirectory(invocation);
            directory = AbsoluteDirectory(invocation.directory);
        }
        HandOver(invocation, ResolveTracePath(*directory));
    }
    // The processes that it started refer to it still, but not to what it was called with.
    invocation.arguments = {};
    invocation.environment.reset();
    waiting_.pop_front();
    return true;
}

InvocationQueue::Place InvocationQueue::PlaceOf(const TracedInvocation& invocation) {
    // A launcher says nothing of itself while its own place is open: what is around it decides.
    Enclosure enclosure = EnclosureOf(invocation);
    while (enclosure.invocation != nullptr && enclosure.invocation->isTransparent && !enclosure.invocation->isWithin) {
        enclosure = EnclosureOf(*enclosure.invocation);
    }
    if (enclosure.unknown != nullptr) {
        return Place::Unknown;
    }
    // A compiler has no such mark, and what it starts is within its run; a launcher passes its own place on.
    const bool isWithin = enclosure.invocation != nullptr && enclosure.invocation->isWithin.value_or(true);
    // So that a chain of launchers is gone through once, not once for each.
    for (Enclosure passed = EnclosureOf(invocation);
         passed.invocation != nullptr && passed.invocation->isTransparent && !passed.invocation->isWithin;
         passed = EnclosureOf(*passed.invocation)) {
        passed.invocation->isWithin = isWithin;
    }
    return isWithin ? Place::Within : Place::OfItsOwn;
}

/// The launchers around a compilation don't count: it counts in their place.
void InvocationQueue::TellLaunchers(const TracedInvocation& invocation) {
    for (Enclosure enclosure = EnclosureOf(invocation);
         enclosure.invocation != nullptr && !enclosure.invocation->startedCompilation;
         enclosure = EnclosureOf(*enclosure.invocation)) {
        enclosure.invocation->startedCompilation = true;
    }
}

void InvocationQueue::HandOver(TracedInvocation& invocation, const std::string& directory) {
    // Where the trace does not show the environment, the driver's own stands in for it, unchanged.
    static const Environment none;
    if (MayCompile(invocation.arguments)) {
        TellLaunchers(invocation);
    }
    if (!invocation.fault.empty()) {
        collector_.AddUnreadable(invocation.arguments, std::move(invocation.fault));
    } else if (invocation.environment == nullptr) {
        collector_.AddInvocationFrom(invocation.arguments, directory, none, EnvironmentScope::Changes);
    } else {
        collector_.AddInvocationFrom(invocation.arguments, directory, *invocation.environment, EnvironmentScope::Whole);
    }
}

/// Takes what the environment says for the directory, else what the user says.
void InvocationQueue::GuessDirectory(const TracedInvocation& invocation) const {
    // There is one: a directory with none missing is absolute.
    ProcessOrigin& origin = *MissingOrigin(invocation.directory);
    std::string guess = origin.guessedDirectory;
    if (guess.empty() && collector_.Settings().traceDirectory) {
        guess = *collector_.Settings().traceDirectory;
    }
    if (guess.empty()) {
        collector_.MessageLog().Line("The trace doesn't tell in which folder process " +
                                     std::to_string(invocation.process) + " ran at line " +
                                     std::to_string(invocation.line) + ": " + CommandLineText(invocation.arguments) +
                                     "\nTrace with -v and with getcwd among the calls, or give the folder in which the "
                                     "build was started with --trace-dir.");
        throw ZelmException("No pwd");
    }
    origin.directory = TraceDirectory{std::move(guess), nullptr};
}

} // namespace Orvanta
