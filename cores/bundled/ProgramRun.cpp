#include "bundled/ProgramRun.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Fingerprint.h"
#include "platform/Paths.h"
#include "platform/Text.h"

namespace Orvanta {

ProgramEnd RunProgram(const Arguments& command, const std::string& workingDirectory) {
    ProgramEnd end;
    const StartConditions conditions{workingDirectory, OwnEnvironmentBlock(), ProcessGroup::Inherited};
    Process process(command, conditions, MakeRedirectToStringProcessor(end.standardOutput),
                    MakeRedirectToStringProcessor(end.standardError));
    end.exitCode = process.get_exit_status();
    return end;
}

std::string VersionAnswer(const std::string& program, std::string_view name, const std::string& workingDirectory) {
    const ProgramEnd end = RunProgram({program, "--version"}, workingDirectory);
    if (end.exitCode != 0) {
        throw ZelmException(std::string(name) + " ended with code " + std::to_string(end.exitCode));
    }
    return std::string(Trim(end.standardOutput));
}

std::string ProgramIdentity(const std::string& program) {
    const ContentFingerprint content = FingerprintOfFile(program).value_or(ContentFingerprint());
    return ResolveLinks(program) + ", " + std::to_string(content.bytes.low);
}

} // namespace Orvanta
