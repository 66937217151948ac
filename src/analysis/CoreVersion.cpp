#include "analysis/CoreVersion.h"

#include "platform/Environment.h"
#include "platform/Process.h"
#include "platform/Text.h"

#include <chrono>

namespace Orvanta {

namespace {

constexpr std::chrono::seconds LongestWait{10};
constexpr std::size_t LongestVersion = 4096; // bytes; what a core prints beyond them is no version

OutputReceiver ReceiveUpToLimit(std::string& target) {
    return [&target](std::string_view bytes) {
        target.append(bytes.substr(0, LongestVersion - target.size()));
    };
}

} // namespace

std::string AskCoreVersion(const std::string& corePath, const std::string& folder, const StopFlag& stop) {
    std::string output;
    Process process({corePath, "--version"}, folder, OwnEnvironmentBlock(), ReceiveUpToLimit(output),
                    [](std::string_view) {});
    const WaitResult end = WaitWithTimeout(process, LongestWait, PollInterval, stop);
    if (!end.finished || end.exitCode != 0) {
        return "";
    }
    return std::string(Trim(std::string_view(output).substr(0, output.find('\n'))));
}

} // namespace Orvanta
