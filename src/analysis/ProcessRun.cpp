#include "analysis/ProcessRun.h"

#include "platform/Text.h"

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
        const std::string_view line = Trim(TakeLine(output));
        // Compilers print warnings and "In file included from" before what stopped them.
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
