#include "analysis/CoreVersion.h"

#include "platform/Environment.h"
#include "platform/Text.h"

#include <chrono>

namespace Orvanta {

namespace {

// A core that takes the flag for a file name may wait for something: the run goes on without an answer.
constexpr std::chrono::seconds LongestWait{10};
constexpr std::size_t LongestVersion = 4096; // bytes; what a core prints beyond them is no version

// Goes on receiving behind the limit: a core that nobody listens to would block on a full pipe.
OutputReceiver ReceiveUpToLimit(std::string& target) {
    return [&target](std::string_view bytes) {
        target.append(bytes.substr(0, LongestVersion - target.size()));
    };
}

} // namespace

CoreAnswer AskCoreVersion(const std::string& corePath, const std::string& folder, const StopFlag& stop,
                          LauncherWords launcher) {
    std::string output;
    std::string errors;
    Process process({corePath, "--version"}, {folder, OwnEnvironmentBlock(), ProcessGroup::Own, launcher},
                    ReceiveUpToLimit(output), ReceiveUpToLimit(errors));
    const WaitResult end = WaitWithTimeout(process, AnswerTimeout(LongestWait, launcher), PollInterval, stop);
    if (!end.finished) {
        return {};
    }
    // What stands in the output of a failure is no version.
    if (end.exitCode != 0) {
        return {"", "", std::string(Trim(errors))};
    }
    std::string_view rest = output;
    CoreAnswer answer;
    answer.version = Trim(TakeLine(rest));
    answer.notes = Trim(rest);
    return answer;
}

} // namespace Orvanta
