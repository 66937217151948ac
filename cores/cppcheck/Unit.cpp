#include "cppcheck/Unit.h"

#include "cppcheck/CppcheckRun.h"
#include "cppcheck/MarkedText.h"
#include "cppcheck/MergedFindings.h"
#include "cppcheck/ReportWriter.h"
#include "cppcheck/SystemTextCutter.h"
#include "cppcheck/TypeChecks.h"
#include "cppcheck/UnitInformation.h"
#include "platform/Files.h"
#include "report/MessageLine.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

using OrvlogConverter::ReportMessage;

// What collecting has found in the unit; nullopt when it has not, or in another text.
std::optional<std::vector<ReportMessage>> CollectedFindings(const UnitSettings& unit, std::string_view cutText) {
    if (unit.stage != IntermodularStage::Performing || !PathExists(unit.informationPath)) {
        return std::nullopt;
    }
    const UnitInformation information = ReadUnitInformation(unit.informationPath);
    // The source may have changed between the two stages, or Cppcheck's options.
    if (information.analysis != FingerprintOfAnalysis(unit, cutText)) {
        return std::nullopt;
    }
    std::vector<ReportMessage> findings;
    for (const std::string& line : information.findings) {
        findings.push_back(OrvlogConverter::ReadMessageLine(line));
    }
    return findings;
}

// The same for every task, so that a fingerprint of one compares with that of another.
CutText ReadCutText(const UnitSettings& unit, const std::string& currentDirectory) {
    CutText cut = CutSystemText(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory);
    BlankTypeChecks(cut.text);
    return cut;
}

} // namespace

std::string AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = ReadCutText(unit, currentDirectory);
    std::string otherText;
    std::optional<std::vector<ReportMessage>> messages = CollectedFindings(unit, cut.text);
    if (!messages) {
        CppcheckOutput output = RunCppcheck(unit, cut.text);
        // Before anything is written: what the unit gave before stays where it is.
        ThrowIfNotAnalyzed(output.findings, cut.files);
        messages = MakeReportMessages(output.findings, cut.files, cut.systemMacros);
        otherText = std::move(output.otherText);
    }
    if (unit.stage == IntermodularStage::Performing) {
        AddFindings(*messages, ReadMergedFindings(unit.mergedPath, cut.files));
    }
    std::string text;
    for (const ReportMessage& message : *messages) {
        OrvlogConverter::AppendMessageLine(text, message, unit.outputFormat);
        text += '\n';
    }
    // At the very end, and in one piece.
    OutputFile(unit.outputPath, OutputFile::Mode::Replace).Append(text);
    return otherText;
}

std::string CollectFacts(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = ReadCutText(unit, currentDirectory);
    CppcheckCollection collection = CollectWithCppcheck(unit, cut.text);
    ThrowIfNotAnalyzed(collection.output.findings, cut.files);

    UnitInformation information;
    information.facts = ReadAnalyzerInformation(collection.analyzerInformation);
    information.files = FilesOfFacts(information.facts, cut.files);
    information.analysis = FingerprintOfAnalysis(unit, cut.text);
    for (const ReportMessage& message : MakeReportMessages(collection.output.findings, cut.files, cut.systemMacros)) {
        OrvlogConverter::AppendMessageLine(information.findings.emplace_back(), message,
                                           OrvlogConverter::LineFormat::Json);
    }
    WriteUnitInformation(unit.informationPath, information);
    return std::move(collection.output.otherText);
}

std::string DependencyLines(const UnitSettings& unit, const std::string& currentDirectory) {
    std::string lines;
    for (const std::string& path :
         ListDependencies(ReadWholeFile(unit.preprocessedPath), unit.sourcePath, currentDirectory)) {
        // The form in which the driver looks for these lines among others.
        lines += "<}include{>" + path + "\n";
    }
    return lines;
}

} // namespace Orvanta
