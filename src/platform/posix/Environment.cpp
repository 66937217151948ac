#include "platform/Environment.h"

#include "platform/EnvironmentNames.h"

#include <unistd.h>

namespace Orvanta {

namespace {

Environment ReadOwnEnvironment() {
    Environment environment;
    for (char** entry = ::environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string_view::npos) {
            // Of a name that stands twice, the first counts, as it does for getenv.
            environment.emplace(text.substr(0, equals), text.substr(equals + 1));
        }
    }
    return environment;
}

} // namespace

const Environment& OwnEnvironment() {
    // Copied once, on the first call: others may change the process's variables later.
    static const Environment environment = ReadOwnEnvironment();
    return environment;
}

bool IsSameVariable(std::string_view left, std::string_view right) noexcept {
    return left == right;
}

} // namespace Orvanta
