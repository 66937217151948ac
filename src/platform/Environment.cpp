#include "platform/Environment.h"

#include "platform/EnvironmentNames.h"

#include <algorithm>

namespace Orvanta {

std::optional<std::string> EnvironmentVariable(std::string_view name) {
    const Environment& environment = OwnEnvironment();
    const auto found = std::find_if(environment.begin(), environment.end(),
                                    [name](const auto& variable) { return IsSameVariable(variable.first, name); });
    if (found == environment.end()) {
        return std::nullopt;
    }
    return found->second;
}

Environment WithChanges(const Environment& changes) {
    Environment changed = changes;
    for (const auto& own : OwnEnvironment()) {
        const bool isChanged = std::any_of(changes.begin(), changes.end(), [&own](const auto& change) {
            return IsSameVariable(change.first, own.first);
        });
        if (!isChanged) {
            changed.insert(own);
        }
    }
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
