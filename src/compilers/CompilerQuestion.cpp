#include "compilers/CompilerQuestion.h"

#include <algorithm>
#include <string_view>

namespace Orvanta {

OutputReceiver ReceiveAnswer(std::string& target) {
    return [&target](std::string_view bytes) {
        constexpr std::size_t LongestAnswer = 65536; // what a program prints beyond is none
        target.append(bytes.substr(0, LongestAnswer - std::min(LongestAnswer, target.size())));
    };
}

// In the driver's own folder and with its own variables: the answer is to hold for all units of this compiler.
CapturedOutput AskCompiler(const std::string& path, const char* question, LauncherWords launcher) {
    CapturedOutput output;
    try {
        Process process({path, question}, {std::string(), OwnEnvironmentBlock(), ProcessGroup::Own, launcher},
                        ReceiveAnswer(output.standardOutput), ReceiveAnswer(output.standardError));
        const std::chrono::milliseconds longest = AnswerTimeout(CompilerQuestionTimeout, launcher);
        if (!WaitWithTimeout(process, longest, PollInterval, ProcessStopFlag()).finished) {
            process.kill(true);
        }
    } catch (const ProcessException&) {
        return {}; // the preprocessing that follows will say why it can't be started
    }
    return output;
}

} // namespace Orvanta
