#include "platform/Environment.h"

namespace Orvanta {

std::optional<std::string> EnvironmentVariable(std::string_view name) {
    const Environment& environment = OwnEnvironment();
    const auto found = environment.find(std::string(name));
    if (found == environment.end()) {
        return std::nullopt;
    }
    return found->second;
}

Environment WithChanges(const Environment& changes) {
    Environment changed = changes;
    changed.insert(OwnEnvironment().begin(), OwnEnvironment().end());
    return changed;
}

EnvironmentBlock::EnvironmentBlock(const Environment& variables) {
    entries_.reserve(variables.size());
    for (const auto& [name, value] : variables) {
        std::string& entry = entries_.emplace_back();
        entry.reserve(name.size() + 1 + value.size());
        entry.append(name).append(1, '=').append(value);
    }
}

const EnvironmentBlock& OwnEnvironmentBlock() {
    static const EnvironmentBlock block(OwnEnvironment());
    return block;
}

} // namespace Orvanta
