#include "cppcheck/Unit.h"

#include "cppcheck/CppcheckRun.h"
#include "cppcheck/MarkedText.h"
#include "cppcheck/MergedFindings.h"
#include "cppcheck/ReportWriter.h"
#include "cppcheck/SystemTextCutter.h"
#include "cppcheck/TallyLines.h"
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

/// What is told of a unit, and what was said on the way to it.
struct UnitFindings {
    std::vector<ReportMessage> messages;
    UnitWords words;
};

// What collecting has found in the unit; nullopt when it has not, or in another text.
std::optional<UnitFindings> CollectedFindings(const UnitSettings& unit, std::string_view cutText) {
    if (unit.stage != IntermodularStage::Performing || !PathExists(unit.informationPath)) {
        return std::nullopt;
    }
    const UnitInformation information = ReadUnitInformation(unit.informationPath);
    // The source may have changed between the two stages, or Cppcheck's options.
    if (information.analysis != FingerprintOfAnalysis(unit, cutText)) {
        return std::nullopt;
    }
    UnitFindings collected;
    for (const std::string& line : information.findings) {
        collected.messages.push_back(OrvlogConverter::ReadMessageLine(line));
    }
    collected.words.tallies = information.tallies;
    return collected;
}

// The messages of what the engine has found.
UnitFindings Report(const UnitSettings& unit, CppcheckOutput output, const CutText& cut) {
    ThrowIfNotAnalyzed(output.findings, cut.files);
    ReportedFindings reported =
        MakeReportMessages(output.findings, {cut.files, cut.systemMacros, cut.text, unit.choice});
    UnitFindings findings;
    findings.messages = std::move(reported.messages);
    findings.words.otherText = std::move(output.otherText);
    for (const ReportMessage& message : reported.hidden) {
        const OrvlogConverter::MessagePosition& place = message.positions.front();
        AppendTally(findings.words.tallies, "Findings hidden by marks in the sources",
                    place.file + ":" + std::to_string(place.line) + " " +
                        message.message.substr(0, message.message.find(' ')));
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

UnitWords AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = ReadCutText(unit, currentDirectory);
    std::optional<UnitFindings> findings = CollectedFindings(unit, cut.text);
    // Before anything is written: what the unit gave before stays where it is when it can't be analyzed.
    if (!findings) {
        findings = Report(unit, RunCppcheck(unit, cut.text), cut);
    }
    // What the linking finds are faults, whichever unit they are told for.
    if (unit.stage == IntermodularStage::Performing && unit.choice.Has(CheckGroup::General)) {
        AddFindings(findings->messages, ReadMergedFindings(unit.mergedPath, cut.files));
    }
    std::string text;
    for (const ReportMessage& message : findings->messages) {
        OrvlogConverter::AppendMessageLine(text, message, unit.outputFormat);
        text += '\n';
    }
    // At the very end, and in one piece.
    OutputFile(unit.outputPath, OutputFile::Mode::Replace).Append(text);
    return std::move(findings->words);
}

UnitWords CollectFacts(const UnitSettings& unit, const std::string& currentDirectory) {
    const CutText cut = ReadCutText(unit, currentDirectory);
    CppcheckCollection collection = CollectWithCppcheck(unit, cut.text);
    UnitFindings findings = Report(unit, std::move(collection.output), cut);

    UnitInformation information;
    information.facts = ReadAnalyzerInformation(collection.analyzerInformation);
    information.files = FilesOfFacts(information.facts, cut.files);
    information.analysis = FingerprintOfAnalysis(unit, cut.text);
    for (const ReportMessage& message : findings.messages) {
        OrvlogConverter::AppendMessageLine(information.findings.emplace_back(), message,
                                           OrvlogConverter::LineFormat::Json);
    }
    information.tallies = std::move(findings.words.tallies);
    WriteUnitInformation(unit.informationPath, information);
    return {"", std::move(findings.words.otherText)};
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
