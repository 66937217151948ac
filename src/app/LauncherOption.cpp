#include "app/LauncherOption.h"

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

} // namespace Orvanta
