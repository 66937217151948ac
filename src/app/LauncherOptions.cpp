#include "app/LauncherOptions.h"

#include "buildinput/CommandStringSplitter.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <string>

namespace Orvanta {

Arguments LauncherOf(const AnalyzeOptions& options) {
    if (!options.launcher) {
        return {};
    }
    const std::string fault = "Wrong value of --launcher: " + InQuotes(*options.launcher);
    if (Trim(*options.launcher).empty()) {
        throw ZelmException(fault + ", expected a program");
    }
    Arguments words = SplitCommandString(*options.launcher, HostCommandStringRules());
    if (words.empty()) {
        throw ZelmException(fault + ", a quote is not closed");
    }
    std::string& program = words.front();
    const bool isBareName = FileNameOf(program).size() == program.size();
    const std::string path = isBareName ? FindExecutable(program) : ProgramFileOf(AbsolutePath(program));
    if (path.empty() || !IsExecutableFile(path)) {
        throw ZelmException(fault + ", there is no program " + InQuotes(program));
    }
    program = AbsolutePath(path);
    return words;
}

void ValidateLauncherOptions(const AnalyzeOptions& options) {
    if (!options.launcher) {
        return;
    }
    if (!options.shared) {
        throw ZelmException("--launcher needs --shared, a folder that all machines see under the same path");
    }
    if (options.maxMemory) {
        throw ZelmException("Flags --launcher and --max-memory cannot be used together",
                            "What is measured here is the launcher");
    }
    static_cast<void>(LauncherOf(options)); // for its errors only
}

} // namespace Orvanta
