#include "bundled/CppcheckEngine.h"

#include "bundled/CppcheckCommand.h"
#include "bundled/CppcheckRun.h"
#include "bundled/ProgramRun.h"
#include "bundled/ReportWriter.h"

namespace Orvanta {

std::string CppcheckEngine::Version(const std::string& workingDirectory) const {
    return VersionAnswer(program_, Name(), workingDirectory) + ", " + ProgramIdentity(program_);
}

EngineResult CppcheckEngine::Analyze(const UnitSettings& unit, const UnitText& text) const {
    if (std::string reason = ReasonNotToRun(unit, text.cut.text); !reason.empty()) {
        return {{}, "", std::move(reason)};
    }
    CppcheckOutput output = RunCppcheck(unit, text.cut.text);
    std::string reason = ReasonNotRead(output.findings, text.cut.files);
    return {std::move(output.findings), std::move(output.otherText), std::move(reason)};
}

Arguments CppcheckEngine::CommandFor(const UnitSettings& unit) const {
    // Without paths that are others in each run; the platform's word stands for its file.
    UnitSettings anywhere = unit;
    anywhere.preprocessedPath = unit.platform;
    return CppcheckCommand(program_, anywhere, "");
}

} // namespace Orvanta
