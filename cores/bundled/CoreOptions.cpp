#include "bundled/CoreOptions.h"

#include "platform/Exceptions.h"

namespace Orvanta {

namespace {

constexpr std::string_view Usage = "usage: Orvanta.exe --version | --cfg FILE [--display-dependencies --skip-analysis]";

} // namespace

CoreOptions ReadCoreOptions(std::span<const std::string_view> arguments) {
    CoreOptions options;
    if (arguments.size() == 1 && arguments.front() == "--version") {
        options.task = CoreTask::TellVersion;
        return options;
    }
    bool displayDependencies = false;
    bool skipAnalysis = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--cfg" && i + 1 < arguments.size()) {
            options.settingsPath = arguments[++i];
        } else if (arguments[i] == "--display-dependencies") {
            displayDependencies = true;
        } else if (arguments[i] == "--skip-analysis") {
            skipAnalysis = true;
        } else {
            throw ZelmException("argument \"" + std::string(arguments[i]) + "\" is not understood; " +
                                std::string(Usage));
        }
    }
    if (options.settingsPath.empty()) {
        throw ZelmException("no settings file is named; " + std::string(Usage));
    }
    // The driver gives both or neither; with one alone, what is asked for would be a guess.
    if (displayDependencies != skipAnalysis) {
        throw ZelmException("--display-dependencies and --skip-analysis go together; " + std::string(Usage));
    }
    options.task = displayDependencies ? CoreTask::ListDependencies : CoreTask::Analyze;
    return options;
}

} // namespace Orvanta
