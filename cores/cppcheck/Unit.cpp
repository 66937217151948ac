#include "cppcheck/Unit.h"

#include "cppcheck/CppcheckRun.h"
#include "cppcheck/MarkedText.h"
#include "cppcheck/MergedFindings.h"
#include "cppcheck/ReportWriter.h"
#include "cppcheck/SystemTextCutter.h"
#include "cppcheck/UnitInformation.h"
#include "platform/Files.h"
#include "report/MessageLine.h"

#include <utility>
#include <vector>

namespace Orvanta {

std::string AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = CutSystemText(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory);
    CppcheckOutput output = RunCppcheck(unit, cut.text);
    ThrowIfNotAnalyzed(output.findings, cut.files);

    std::vector<OrvlogConverter::ReportMessage> messages = MakeReportMessages(output.findings, cut.files);
    if (unit.stage == IntermodularStage::Performing) {
        AddFindings(messages, ReadMergedFindings(unit.mergedPath, cut.files));
    }
    std::string text;
    for (const OrvlogConverter::ReportMessage& message : messages) {
        OrvlogConverter::AppendMessageLine(text, message, unit.outputFormat);
        text += '\n';
    }
    OutputFile(unit.outputPath, OutputFile::Mode::Replace).Append(text);
    return std::move(output.otherText);
}

std::string CollectFacts(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = CutSystemText(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory);
    CppcheckCollection collection = CollectWithCppcheck(unit, cut.text);
    ThrowIfNotAnalyzed(collection.output.findings, cut.files);
    WriteUnitInformation(unit.informationPath,
                         MakeUnitInformation(ReadAnalyzerInformation(collection.analyzerInformation), cut.files));
    return std::move(collection.output.otherText);
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
