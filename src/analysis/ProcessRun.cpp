#include "analysis/ProcessRun.h"

#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

ProcessOutcome RunSupervised(const Arguments& command, ProcessPlace place, const StopFlag& stop,
                             CapturedOutput& output) {
    Process process(command, place.workingDirectory, place.environment,
                    MakeRedirectToStringProcessor(output.standardOutput),
                    MakeRedirectToStringProcessor(output.standardError));
    const WaitResult result = WaitUntilEndOrStop(process, stop);
    return JudgeEnd(command, result, process, output);
}

std::string_view TellingLine(std::string_view output) {
    std::string_view firstLine;
    while (!output.empty()) {
        const std::size_t end = std::min(output.find('\n'), output.size());
        const std::string_view line = Trim(output.substr(0, end));
        output.remove_prefix(std::min(end + 1, output.size()));
        if (ContainsIgnoringCase(line, "error")) {
            return line;
        }
        if (firstLine.empty()) {
            firstLine = line;
        }
    }
    return firstLine;
}

} // namespace Orvanta
