#include "buildinput/trace/TraceProcess.h"

namespace Orvanta {

Enclosure EnclosureOf(const std::shared_ptr<ProcessOrigin>& origin) {
    std::shared_ptr<ProcessOrigin> current = origin;
    while (current != nullptr) {
        if (current->state == ProcessOrigin::State::Unknown) {
            return {nullptr, current};
        }
        if (current->enclosing != nullptr) {
            return {current->enclosing, nullptr};
        }
        current = current->outer;
    }
    return {};
}

Enclosure TraceProcess::FindEnclosure() const {
    return invocation != nullptr ? Enclosure{invocation, nullptr} : EnclosureOf(origin);
}

std::optional<std::string> AbsoluteDirectory(const TraceDirectory& directory) {
    std::string path = directory.path;
    for (const ProcessOrigin* base = directory.base.get(); base != nullptr; base = base->directory->base.get()) {
        if (!base->directory) {
            return std::nullopt;
        }
        path = JoinTracePath(base->directory->path, path);
    }
    return path;
}

ProcessOrigin* MissingOrigin(const TraceDirectory& directory) {
    ProcessOrigin* base = directory.base.get();
    while (base != nullptr && base->directory) {
        base = base->directory->base.get();
    }
    return base;
}

} // namespace Orvanta
