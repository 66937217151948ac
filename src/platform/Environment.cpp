#include "platform/Environment.h"

#include "platform/EnvironmentNames.h"

#include <algorithm>

namespace Orvanta {

const std::string* FindVariable(const Environment& environment, std::string_view name) {
    // A walk and no look-up in the map: on some systems two spellings name one variable.
    const auto found = std::find_if(environment.begin(), environment.end(),
                                    [name](const auto& variable) { return IsSameVariable(variable.first, name); });
    return found == environment.end() ? nullptr : &found->second;
}

std::optional<std::string> EnvironmentVariable(std::string_view name) {
    const std::string* const value = FindVariable(OwnEnvironment(), name);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

Environment WithChanges(const Environment& changes) {
    // The changes first: of two spellings of one name, theirs stays.
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
