#include "buildinput/trace/TraceProcess.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

// Origins and invocations hang on each other in chains as long as a trace nests. What hangs on one that ends waits here
// for its turn: ended one inside the other, they would need a stack of that depth.
void EndLater(std::shared_ptr<void> part) {
    static thread_local std::vector<std::shared_ptr<void>> waiting;
    static thread_local bool isEnding = false;
    // Others hold it still: it does not end here.
    if (part.use_count() != 1) {
        return;
    }
    waiting.push_back(std::move(part));
    if (isEnding) {
        return;
    }
    isEnding = true;
    while (!waiting.empty()) {
        const std::shared_ptr<void> next = std::move(waiting.back());
        waiting.pop_back();
    }
    isEnding = false;
}

// Makes the directory of every origin on the way lead at once to the last one that is known: each question for one then
// takes a few steps, however deep the processes are nested.
void ShortenWay(ProcessOrigin* origin) {
    std::vector<ProcessOrigin*> way;
    for (; origin != nullptr && origin->directory; origin = origin->directory->base.get()) {
        way.push_back(origin);
    }
    // From the far end, so that each takes over a path that is short already. A way of one step has nothing to shorten.
    for (std::size_t i = way.size() < 2 ? 0 : way.size() - 1; i > 0; --i) {
        TraceDirectory& directory = *way[i - 1]->directory;
        const TraceDirectory& next = *way[i]->directory;
        directory.path = JoinTracePath(next.path, directory.path);
        const std::shared_ptr<ProcessOrigin> base = next.base;
        directory.base = base; // may end the next one: its own way is short already
    }
}

} // namespace

ProcessOrigin::~ProcessOrigin() {
    EndLater(std::move(enclosing));
    EndLater(std::move(outer));
    if (directory) {
        EndLater(std::move(directory->base));
    }
}

TracedInvocation::~TracedInvocation() {
    EndLater(std::move(replaced));
    EndLater(std::move(origin));
    EndLater(std::move(directory.base));
}

Enclosure EnclosureOf(const std::shared_ptr<ProcessOrigin>& origin) {
    std::shared_ptr<ProcessOrigin> last = origin;
    while (last != nullptr && last->state != ProcessOrigin::State::Unknown && last->enclosing == nullptr) {
        last = last->outer;
    }
    // Each on the way leads there at once from now on.
    for (std::shared_ptr<ProcessOrigin> current = origin; current != last;) {
        std::shared_ptr<ProcessOrigin> next = std::exchange(current->outer, last);
        current = std::move(next);
    }
    if (last == nullptr) {
        return {};
    }
    return last->state == ProcessOrigin::State::Unknown ? Enclosure{nullptr, last}
                                                        : Enclosure{last->enclosing, nullptr};
}

Enclosure TraceProcess::FindEnclosure() const {
    return invocation != nullptr ? Enclosure{invocation, nullptr} : EnclosureOf(origin);
}

std::optional<std::string> AbsoluteDirectory(const TraceDirectory& directory) {
    ShortenWay(directory.base.get());
    std::string path = directory.path;
    // One or two steps, now that the way is short.
    for (const ProcessOrigin* base = directory.base.get(); base != nullptr; base = base->directory->base.get()) {
        if (!base->directory) {
            return std::nullopt;
        }
        path = JoinTracePath(base->directory->path, path);
    }
    return path;
}

ProcessOrigin* MissingOrigin(const TraceDirectory& directory) {
    ShortenWay(directory.base.get());
    ProcessOrigin* base = directory.base.get();
    while (base != nullptr && base->directory) {
        base = base->directory->base.get();
    }
    return base;
}

} // namespace Orvanta
