#include "cppcheck/Unit.h"

#include "cppcheck/CppcheckRun.h"
#include "cppcheck/MarkedText.h"
#include "cppcheck/ReportWriter.h"
#include "cppcheck/SystemTextCutter.h"
#include "platform/Files.h"
#include "report/MessageLine.h"

namespace Orvanta {

std::string AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = CutSystemText(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory);
    CppcheckOutput output = RunCppcheck(unit, cut.text);
    ThrowIfNotAnalyzed(output.findings, cut.files);

    std::string text;
    for (const OrvlogConverter::ReportMessage& message : MakeReportMessages(output.findings, cut.files)) {
        OrvlogConverter::AppendMessageLine(text, message, unit.outputFormat);
        text += '\n';
    }
    OutputFile(unit.outputPath, OutputFile::Mode::Replace).Append(text);
    return std::move(output.otherText);
}

std::string DependencyLines(const UnitSettings& unit, const std::string& currentDirectory) {
    std::string lines;
    for (const std::string& path :
         ListDependencies(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory)) {
        lines += "<}include{>" + path + "\n";
    }
    return lines;
}

} // namespace Orvanta
